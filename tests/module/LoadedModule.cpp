#include "tests/module/LoadedModule.h"

HMODULE LoadedModule() {
  static const HMODULE module = [] {
    wchar_t path[MAX_PATH] = {};
    GetFullPathNameW(L"bin\\LumenUtil.dll", MAX_PATH, path, nullptr);
    return LoadLibraryW(path);
  }();
  return module;
}

void ModuleFixture::SetUp() {
  const HMODULE module = LoadedModule();
  ASSERT_NE(module, nullptr) << "bin\\LumenUtil.dll did not load: " << GetLastError();
  auto* const start = reinterpret_cast<decltype(&Start)>(reinterpret_cast<void*>(GetProcAddress(module, "Start")));
  ASSERT_NE(start, nullptr);
  shim = start(&host);
  ASSERT_NE(shim, nullptr);
  host.shim = shim;
}

void ModuleFixture::TearDown() {
  if (shim != nullptr) shim->Destroy(1);
}

SavedValue::SavedValue(HKEY rootKey, const wchar_t* keyPath, const wchar_t* valueName)
    : root(rootKey), key(keyPath), name(valueName) {
  DWORD size = 0;
  constexpr DWORD kAnyType = RRF_RT_ANY | RRF_NOEXPAND;
  if (RegGetValueW(root, key.c_str(), name.c_str(), kAnyType, &type, nullptr, &size) != ERROR_SUCCESS) return;
  before.resize(size);
  existed = RegGetValueW(root, key.c_str(), name.c_str(), kAnyType, &type, before.data(), &size) == ERROR_SUCCESS;
}

SavedValue::~SavedValue() {
  if (existed) {
    Set(type, before.data(), before.size());
  } else {
    Delete();
  }
}

void SavedValue::SetNumber(uint32_t number) {
  Set(REG_DWORD, &number, sizeof(number));
}
void SavedValue::SetText(const wchar_t* text) {
  Set(REG_SZ, text, (WideView(text).size() + 1) * sizeof(wchar_t));
}
void SavedValue::Delete() {
  RegDeleteKeyValueW(root, key.c_str(), name.c_str());
}
bool SavedValue::Exists() const {
  return RegGetValueW(root, key.c_str(), name.c_str(), RRF_RT_ANY, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

void SavedValue::Set(DWORD newType, const void* data, size_t size) {
  EXPECT_EQ(RegSetKeyValueW(root, key.c_str(), name.c_str(), newType, data, static_cast<DWORD>(size)), ERROR_SUCCESS);
}
