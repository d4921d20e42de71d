// The product's own LumenUtil.dll, loaded for a test, and a shim started with a recording host.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "engine/LumenBrokerShim.h"
#include "tests/support/RecordingHost.h"

// Loaded on first use and kept to the end, as texts that it made may live as long.
[[nodiscard]] HMODULE LoadedModule();

class ModuleFixture : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  RecordingHost host;
  LumenBrokerShim* shim = nullptr;
};

// One registry value for the length of a test: what stood there before comes back.
class SavedValue {
 public:
  SavedValue(HKEY root, const wchar_t* key, const wchar_t* name);
  SavedValue(const SavedValue&) = delete;
  SavedValue& operator=(const SavedValue&) = delete;
  ~SavedValue();

  void SetNumber(uint32_t number);
  void SetText(const wchar_t* text);
  void Delete();
  [[nodiscard]] bool Exists() const;

 private:
  void Set(DWORD newType, const void* data, size_t size);

  HKEY root;
  WideString key;
  WideString name;
  DWORD type = 0;
  std::vector<uint8_t> before;
  bool existed = false;
};
