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

inline std::string MessageText(const std::string& name) {
  std::string text = testing_files::ReadWhole(Folder(L"messages\\") + WidenAscii(name));
  EXPECT_NE(text, "(no file)") << name;
  return text;
}
inline std::vector<uint8_t> BytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}
inline std::vector<uint8_t> MessageBytes(const std::string& name) {
  return BytesOf(MessageText(name));
}
// What the module's own authority signed, and the content that was signed.
inline std::vector<uint8_t> CommittedBytes(const std::string& name) {
  return BytesOf(testing_files::ReadWhole(L"Z:" + WidenAscii(LUMEN_SOURCE_DIR "/tests/delivery/anchor/" + name)));
}

// Where the user's products lie.
inline WideString ProductsFolder() {
  return testing_files::PlayerDirectory() + L"\\corva.example";
}
inline WideString ProductFile(const WideString& product, const WideString& file) {
  return ProductsFolder() + L"\\bin\\" + product + L"\\" + file;
}

}  // namespace addon
