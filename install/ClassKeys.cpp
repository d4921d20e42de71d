#include "install/ClassKeys.h"

#include <algorithm>

#include "engine/ProductIds.h"

namespace {

#define ROOT_CLASS "CLASSES_ROOT\\CLSID\\"
#define MACHINE_CLASS "MACHINE\\Software\\Classes\\CLSID\\"
#define MACHINE_INTERFACE "MACHINE\\Software\\Classes\\Interface\\"
#define MACHINE_PLUGINS "MACHINE\\Software\\Microsoft\\Internet Explorer\\NavigatorPluginsList\\Tidewater Lumen\\"
#define MACHINE_LIBRARY "MACHINE\\Software\\Classes\\TypeLib\\"

// The sixth generation is this build's own; its registration is removed where it is written.
constexpr const char* kEarlierBrokers[] = {
    MACHINE_CLASS LUMEN_BROKER_CLASS_ID_1, MACHINE_INTERFACE LUMEN_BROKER_INTERFACE_ID_1,
    MACHINE_CLASS LUMEN_BROKER_CLASS_ID_2, MACHINE_INTERFACE LUMEN_BROKER_INTERFACE_ID_2,
    MACHINE_CLASS LUMEN_BROKER_CLASS_ID_3, MACHINE_INTERFACE LUMEN_BROKER_INTERFACE_ID_3,
    MACHINE_CLASS LUMEN_BROKER_CLASS_ID_4, MACHINE_INTERFACE LUMEN_BROKER_INTERFACE_ID_4,
    MACHINE_CLASS LUMEN_BROKER_CLASS_ID_5, MACHINE_INTERFACE LUMEN_BROKER_INTERFACE_ID_5,
};

constexpr const char* kControl[] = {
    MACHINE_CLASS LUMEN_CONTROL_CLASS_ID,
    MACHINE_INTERFACE LUMEN_CONTROL_INTERFACE_ID,
    MACHINE_LIBRARY LUMEN_CONTROL_LIBRARY_ID,
};

constexpr const char* kSecondControl[] = {
    MACHINE_CLASS LUMEN_FACTORY_CLASS_ID,
    MACHINE_CLASS LUMEN_PROPERTY_CLASS_ID,
    MACHINE_LIBRARY LUMEN_FACTORY_LIBRARY_ID,
};

constexpr const char* kClassRootHead[] = {
    ROOT_CLASS LUMEN_CONTROL_CLASS_ID,
    ROOT_CLASS LUMEN_FACTORY_CLASS_ID,
    "CLASSES_ROOT\\Interface\\" LUMEN_CONTROL_INTERFACE_ID,
    "CLASSES_ROOT\\TypeLib\\" LUMEN_CONTROL_LIBRARY_ID,
    "CLASSES_ROOT\\TypeLib\\" LUMEN_FACTORY_LIBRARY_ID,
    "CLASSES_ROOT\\.fgl",
    "CLASSES_ROOT\\.twl",
    "CLASSES_ROOT\\.hcp",
    "CLASSES_ROOT\\.sol",
    "CLASSES_ROOT\\.sor",
    "CLASSES_ROOT\\LumenFactory.LumenFactory",
    "CLASSES_ROOT\\LumenFactory.LumenFactory.1",
    "CLASSES_ROOT\\LumenProp.LumenProp",
    "CLASSES_ROOT\\LumenProp.LumenProp.1",
};

// No version 2 was ever registered under this name.
constexpr const char* kProgramIds[] = {
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.1",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.3",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.4",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.5",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.6",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.7",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.8",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.9",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.10",
    "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.11",
    "CLASSES_ROOT\\MIME\\Database\\Content Type\\application/futureglint",
    "CLASSES_ROOT\\MIME\\Database\\Content Type\\application/x-tidewater-lumen",
};

// The content types stand here again, behind the names that use them: the walk passes them twice.
constexpr const char* kClassRootTail[] = {
    "CLASSES_ROOT\\HalcyonicsLumenPaper.HalcyonicsLumenPaper",
    "CLASSES_ROOT\\MIME\\Database\\Content Type\\application/futureglint",
    "CLASSES_ROOT\\MIME\\Database\\Content Type\\application/x-tidewater-lumen",
    (ROOT_CLASS LUMEN_PAPER_CLASS_ID),
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.1",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.3",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.4",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.5",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.6",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.7",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.8",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.9",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.10",
    "MACHINE\\Software\\Classes\\TidewaterLumen.TidewaterLumen.11",
    (MACHINE_CLASS LUMEN_PAPER_CLASS_ID),
    (MACHINE_PLUGINS "application/futureglint"),
    (MACHINE_PLUGINS "application/x-tidewater-lumen"),
};

#undef ROOT_CLASS
#undef MACHINE_CLASS
#undef MACHINE_INTERFACE
#undef MACHINE_PLUGINS
#undef MACHINE_LIBRARY

template <size_t Count>
void Visit(const char* const (&keys)[Count], ClassKeyVisitor visit, void* context) {
  for (const char* key : keys) visit(key, context);
}

bool IsNumeric(std::string_view name) {
  return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void VisitClassKeys(ClassKeyFamily family, ClassKeyVisitor visit, void* context) {
  switch (family) {
    case ClassKeyFamily::MachineClasses:
      Visit(kEarlierBrokers, visit, context);
      Visit(kControl, visit, context);
      break;
    case ClassKeyFamily::Control: Visit(kControl, visit, context); break;
    case ClassKeyFamily::SecondControl: Visit(kSecondControl, visit, context); break;
    case ClassKeyFamily::ClassRoot:
      Visit(kClassRootHead, visit, context);
      Visit(kProgramIds, visit, context);
      Visit(kClassRootTail, visit, context);
      break;
    case ClassKeyFamily::ProgramIds: Visit(kProgramIds, visit, context); break;
  }
}

int CompareKeyNames(std::string_view a, std::string_view b) {
  const bool aIsNumeric = IsNumeric(a);
  if (aIsNumeric != IsNumeric(b)) return aIsNumeric ? 1 : -1;
  if (aIsNumeric) {
    // Without leading zeros the longer number is the greater one, however long it is.
    a.remove_prefix(std::min(a.find_first_not_of('0'), a.size()));
    b.remove_prefix(std::min(b.find_first_not_of('0'), b.size()));
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  }
  return a.compare(b);
}
