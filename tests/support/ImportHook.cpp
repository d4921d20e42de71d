#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

template <class T>
T* At(HMODULE module, uint64_t offset) {
  return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(module) + offset);
}

// The import table's entry of `function`, whichever library it comes from; null when there is none.
void** FindImport(HMODULE module, const char* function) {
  const auto* const dos = At<const IMAGE_DOS_HEADER>(module, 0);
  const auto* const headers = At<const IMAGE_NT_HEADERS64>(module, static_cast<uint64_t>(dos->e_lfanew));
  const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (auto* library = At<const IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); library->Name != 0;
       ++library) {
    const auto* name = At<const IMAGE_THUNK_DATA64>(module, library->OriginalFirstThunk);
    auto* bound = At<IMAGE_THUNK_DATA64>(module, library->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++bound) {
      if ((name->u1.Ordinal & IMAGE_ORDINAL_FLAG64) != 0) continue;
      const auto* const byName = At<const IMAGE_IMPORT_BY_NAME>(module, name->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(byName->Name), function) == 0) {
        return reinterpret_cast<void**>(&bound->u1.Function);
      }
    }
  }
  return nullptr;
}

}  // namespace

ImportHook::ImportHook(HMODULE module, const char* function, void* replacement) {
  slot_ = FindImport(module, function);
  if (slot_ == nullptr) {
    ADD_FAILURE() << "the module does not import " << function;
    return;
  }
  original_ = *slot_;
  Write(slot_, replacement);
}

ImportHook::~ImportHook() {
  if (slot_ != nullptr) Write(slot_, original_);
}

void ImportHook::Write(void** slot, void* value) {
  DWORD old = 0;
  ASSERT_TRUE(VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &old));
  *slot = value;
  VirtualProtect(slot, sizeof(*slot), old, &old);
}
