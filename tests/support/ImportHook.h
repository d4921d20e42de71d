// Replaces a function that a loaded module imports by name, for as long as the hook lives. Reaches calls that the
// module makes itself through its import table, not those that it looks up at run time.
#pragma once

#include <windows.h>

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
