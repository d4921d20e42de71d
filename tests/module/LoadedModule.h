// The product's own LumenUtil.dll, loaded for a test, and a shim started with a recording host.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "engine/LumenBrokerShim.h"
#include "tests/support/RecordingHost.h"

// Loaded on first use and kept to the end, as texts that it made may live as long.
[[nodiscard]] inline HMODULE LoadedModule() {
  static const HMODULE module = [] {
    wchar_t path[MAX_PATH] = {};
    GetFullPathNameW(L"bin\\LumenUtil.dll", MAX_PATH, path, nullptr);
    return LoadLibraryW(path);
  }();
  return module;
}

[[nodiscard]] inline LumenBrokerShim* StartModule(HostCallbacks* host) {
  auto* const start =
      reinterpret_cast<decltype(&Start)>(reinterpret_cast<void*>(GetProcAddress(LoadedModule(), "Start")));
  return host->shim = start == nullptr ? nullptr : start(host);
}

class ModuleFixture : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(shim = StartModule(&host), nullptr) << GetLastError(); }
  void TearDown() override {
    if (shim != nullptr) shim->Destroy(1);
  }

  RecordingHost host;
  LumenBrokerShim* shim = nullptr;
};

// One registry value, gone at the end of a test.
class TestValue {
 public:
  TestValue(HKEY rootKey, const wchar_t* keyPath, const wchar_t* valueName)
      : root(rootKey), key(keyPath), name(valueName) {}
  TestValue(const TestValue&) = delete;
  TestValue& operator=(const TestValue&) = delete;
  ~TestValue() { Delete(); }

  void SetText(const wchar_t* text) {
    RegSetKeyValueW(root, key, name, REG_SZ, text, static_cast<DWORD>((WideView(text).size() + 1) * sizeof(wchar_t)));
  }
  void Delete() { RegDeleteKeyValueW(root, key, name); }
  [[nodiscard]] bool Exists() const {
    return RegGetValueW(root, key, name, RRF_RT_ANY, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
  }

 private:
  HKEY root;
  const wchar_t* key;
  const wchar_t* name;
};
