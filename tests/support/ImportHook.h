// Replaces a function that a loaded module imports by name, for as long as the hook lives. Reaches calls that the
// module makes itself through its import table, not those that it looks up at run time.
#pragma once

#include <windows.h>

// The platform's own function, for a replacement that passes calls on. By its plain name it would be a stub that goes
// through the import table which the hook changes.
template <class Function>
Function* Own(const wchar_t* library, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)));
}

class ImportHook {
 public:
  // Fails the current test when the module imports no such function.
  template <class Function>
  ImportHook(HMODULE module, const char* function, Function* replacement)
      : ImportHook(module, function, reinterpret_cast<void*>(replacement)) {}
  ImportHook(HMODULE module, const char* function, void* replacement);
  ImportHook(const ImportHook&) = delete;
  ImportHook& operator=(const ImportHook&) = delete;
  ~ImportHook();

 private:
  static void Write(void** slot, void* value);

  void** slot_ = nullptr;
  void* original_ = nullptr;
};
