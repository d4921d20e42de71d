// The fixed lists of registry keys that the ActiveX control and the broker of all generations have left in the class
// registry. A list is a walk in a fixed order; what happens to each key is the visitor's business.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Called with a full key name, which begins with "MACHINE\" or "CLASSES_ROOT\", and the walk's context.
using ClassKeyVisitor = void (*)(const char* key, void* context);

enum class ClassKeyFamily {
  MachineClasses,  // the broker's classes and interfaces of the first five generations, then Control
  Control,         // the control's class, interface and type library
  SecondControl,   // the classes beside it and their type library
  ClassRoot,       // all that the control's file types, names and classes have put there; holds ProgramIds
  ProgramIds,      // the control's names of all versions and the content types
};

void VisitClassKeys(ClassKeyFamily family, ClassKeyVisitor visit, void* context);

// Orders two key names as the lists have them: names of digits alone, the empty one included, after all others and by
// value; others byte for byte. Below, equal to or above 0. Comes with the lists; nothing in the product sorts them.
[[nodiscard]] int CompareKeyNames(std::string_view a, std::string_view b);

// What is left to delete of the class registry.
enum class ClassKeySelection {
  Machine,  // MachineClasses: what installers wrote
  Control,  // SecondControl and ClassRoot: what the control's own registration wrote
};

#ifdef _WIN32
// Deletes a key under "MACHINE\" with all below it and gives the platform's error. A name with any other beginning is
// left alone and gives nothing: the class root is a view, reached through "MACHINE\Software\Classes\".
[[nodiscard]] std::optional<int32_t> DeleteMachineKey(const char* key);

// Deletes the selection's keys. Each is tried, whatever became of the others; true when none is left.
bool DeleteClassKeys(ClassKeySelection selection);

// Gives administrators and the system full access, and users reading, to all the control's keys that exist, so that a
// registration that was refused can be tried again.
void RepairClassKeyAccess();
#endif
