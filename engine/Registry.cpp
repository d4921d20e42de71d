#include "engine/Registry.h"

#include <algorithm>
#include <vector>

namespace {

// The raw bytes of a text value, one terminator more than stored so that an unterminated value ends.
template <class Unit, class Query>
std::optional<std::vector<Unit>> ReadUnits(Query query) {
  DWORD type = 0;
  DWORD bytes = 0;
  std::vector<Unit> units;
  // The value may grow between asking for its size and reading it; one that keeps growing is given up.
  for (int round = 0; round < 8; ++round) {
    if (query(&type, nullptr, &bytes) != ERROR_SUCCESS) return std::nullopt;
    if (type != REG_SZ && type != REG_EXPAND_SZ) return std::nullopt;
    units.assign(bytes / sizeof(Unit) + 1, Unit{});
    const LONG error = query(&type, reinterpret_cast<BYTE*>(units.data()), &bytes);
    if (error == ERROR_MORE_DATA) continue;
    if (error != ERROR_SUCCESS) return std::nullopt;
    units.back() = Unit{};
    return units;
  }
  return std::nullopt;
}

}  // namespace

RegistryKey OpenKey(HKEY root, const char* path, REGSAM rights) {
  HKEY key = nullptr;
  return RegistryKey(RegOpenKeyExA(root, path, 0, rights, &key) == ERROR_SUCCESS ? key : nullptr);
}

RegistryKey CreateKey(HKEY root, const char* path, REGSAM rights) {
  HKEY key = nullptr;
  const LONG error = RegCreateKeyExA(root, path, 0, nullptr, 0, rights, nullptr, &key, nullptr);
  return RegistryKey(error == ERROR_SUCCESS ? key : nullptr);
}

std::optional<std::string> ReadText(HKEY key, const char* name) {
  const auto units = ReadUnits<char>([key, name](DWORD* type, BYTE* data, DWORD* bytes) {
    return RegQueryValueExA(key, name, nullptr, type, data, bytes);
  });
  if (!units) return std::nullopt;
  return std::string(units->data());
}

std::optional<std::string> ReadText(HKEY root, const char* path, const char* name) {
  const RegistryKey key = OpenKey(root, path, KEY_READ);
  return key ? ReadText(key.Get(), name) : std::nullopt;
}

std::optional<WideString> ReadWideText(HKEY root, const wchar_t* path, const wchar_t* name) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(root, path, 0, KEY_READ, &opened) != ERROR_SUCCESS) return std::nullopt;
  const RegistryKey key(opened);
  const auto units = ReadUnits<wchar_t>([&key, name](DWORD* type, BYTE* data, DWORD* bytes) {
    return RegQueryValueExW(key.Get(), name, nullptr, type, data, bytes);
  });
  if (!units) return std::nullopt;
  return WideString(units->data());
}

std::optional<uint32_t> ReadNumber(HKEY key, const char* name) {
  DWORD type = 0;
  DWORD number = 0;
  DWORD bytes = sizeof(number);
  const LONG error = RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&number), &bytes);
  if (error != ERROR_SUCCESS || type != REG_DWORD) return std::nullopt;
  return number;
}

std::optional<uint32_t> ReadNumber(HKEY root, const char* path, const char* name) {
  const RegistryKey key = OpenKey(root, path, KEY_READ);
  return key ? ReadNumber(key.Get(), name) : std::nullopt;
}

LONG WriteText(HKEY key, const char* name, const std::string& text) {
  return RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                        static_cast<DWORD>(text.size() + 1));
}

LONG WriteNumber(HKEY key, const char* name, uint32_t number) {
  const DWORD value = number;
  return RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
}

LONG DeleteValue(HKEY root, const char* path, const char* name) {
  HKEY opened = nullptr;
  const LONG error = RegOpenKeyExA(root, path, 0, KEY_SET_VALUE, &opened);
  if (error != ERROR_SUCCESS) return error;
  const RegistryKey key(opened);
  return RegDeleteValueA(key.Get(), name);
}
