#include "tests/support/RegistrySnapshot.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <vector>

#include "engine/Handles.h"
#include "engine/WideText.h"

namespace {

std::string DataText(DWORD type, const std::vector<BYTE>& data) {
  if (type == REG_DWORD && data.size() == sizeof(DWORD)) {
    return std::to_string(*reinterpret_cast<const DWORD*>(data.data()));
  }
  if (type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ) {
    WideView text(reinterpret_cast<const wchar_t*>(data.data()), data.size() / sizeof(wchar_t));
    while (!text.empty() && text.back() == 0) text.remove_suffix(1);
    WideString shown(text);
    std::replace(shown.begin(), shown.end(), L'\0', L'|');
    return "\"" + ToUtf8(shown) + "\"";
  }
  return std::to_string(type) + ":" + std::to_string(data.size());
}

void AddValues(HKEY key, const std::string& name, std::set<std::string>& lines) {
  wchar_t value[512] = {};
  static std::vector<BYTE> data(65536);
  for (DWORD index = 0;; ++index) {
    DWORD units = static_cast<DWORD>(std::size(value));
    DWORD bytes = static_cast<DWORD>(data.size());
    DWORD type = 0;
    if (RegEnumValueW(key, index, value, &units, nullptr, &type, data.data(), &bytes) != ERROR_SUCCESS) return;
    lines.insert(name + " | " + ToUtf8(value) + " = " + DataText(type, {data.begin(), data.begin() + bytes}));
  }
}

void AddTree(HKEY root, const std::string& name, const WideString& path, std::set<std::string>& lines) {
  RegistryKey key;
  if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.Receive()) != ERROR_SUCCESS) return;
  lines.insert(name);
  AddValues(key.Get(), name, lines);
  for (DWORD index = 0;; ++index) {
    wchar_t sub[256] = {};
    DWORD units = static_cast<DWORD>(std::size(sub));
    if (RegEnumKeyExW(key.Get(), index, sub, &units, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) return;
    // The 32-bit view is a link back into the same tree.
    if (WideView(sub) != L"Wow6432Node") AddTree(key.Get(), name + "\\" + ToUtf8(sub), sub, lines);
  }
}

}  // namespace

RegistrySnapshot::RegistrySnapshot() {
  AddTree(HKEY_LOCAL_MACHINE, "HKLM\\Software", L"Software", lines_);
  AddTree(HKEY_CURRENT_USER, "HKCU\\Software", L"Software", lines_);
  AddTree(HKEY_LOCAL_MACHINE, "HKLM\\System\\Session Manager", L"System\\CurrentControlSet\\Control\\Session Manager",
          lines_);
  AddTree(HKEY_LOCAL_MACHINE, "HKLM\\System\\Services", L"System\\CurrentControlSet\\Services", lines_);
}

Lines RegistrySnapshot::Since(const RegistrySnapshot& before) const {
  Lines changes;
  const auto add = [&changes](const char* sign, const auto& from, const auto& but) {
    for (const std::string& line : from) {
      if (!but.contains(line)) changes.push_back(sign + line);
    }
  };
  add("- ", before.lines_, lines_);
  add("+ ", lines_, before.lines_);
  std::stable_sort(changes.begin(), changes.end(),
                   [](const std::string& a, const std::string& b) { return a.substr(2) < b.substr(2); });
  return changes;
}

void ExpectGolden(const std::string& file, const Lines& lines) {
  std::ifstream in(std::string(LUMEN_SOURCE_DIR) + "/tests/data/" + file, std::ios::binary);
  Lines golden;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line[0] != '#') golden.push_back(line);
  }
  std::string whole;
  for (const std::string& line : lines) whole += line + "\n";
  EXPECT_EQ(lines, golden) << file << " would have to hold:\n" << whole;
}
