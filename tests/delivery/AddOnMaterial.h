// The messages and the product that the build had openssl sign, and the place in the user's profile that tests fill.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/TestFiles.h"

namespace addon {

inline WideString Folder(const wchar_t* name) {
  WideString path = L"Z:" + WidenAscii(LUMEN_BUILD_DIR "/tests/addon/") + name;
  std::replace(path.begin(), path.end(), L'/', L'\\');
  return path;
}

inline std::vector<uint8_t> BytesOf(const WideString& path) {
  const std::string text = testing_files::ReadWhole(path);
  EXPECT_NE(text, "(no file)") << ToUtf8(path);
  return {text.begin(), text.end()};
}
inline std::vector<uint8_t> MessageBytes(const std::string& name) {
  return BytesOf(Folder(L"messages\\") + WidenAscii(name));
}

// Where the user's products lie.
inline WideString ProductsFolder() {
  return testing_files::PlayerDirectory() + L"\\corva.example";
}
inline WideString ProductFile(const WideString& product, const WideString& file) {
  return ProductsFolder() + L"\\bin\\" + product + L"\\" + file;
}

}  // namespace addon
