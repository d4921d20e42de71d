#include "install/ReportedRegistry.h"

#include <vector>

#include "engine/DllHelpers.h"
#include "engine/Handles.h"
#include "engine/Reporting.h"

namespace {

const wchar_t* Characters(const MString& text) {
  return text.Data() == nullptr ? L"" : text.Data();
}

uint32_t Error(LONG status) {
  return static_cast<uint32_t>(status);
}

bool Told(HostCallbacks* host, LONG status, ReportCode code, const MString& key, const MString& name,
          bool blank = true) {
  if (status == ERROR_SUCCESS) return true;
  Report(host, Severity::Survived, code, KeyValueError(key, name, Error(status), blank));
  return false;
}

LONG WriteValue(HKEY root, const MString& key, const MString& name, DWORD type, const void* data, size_t bytes) {
  RegistryKey opened;
  const LONG status =
      RegCreateKeyExW(root, Characters(key), 0, nullptr, 0, KEY_SET_VALUE, nullptr, opened.Receive(), nullptr);
  if (status != ERROR_SUCCESS) return status;
  return RegSetValueExW(opened.Get(), Characters(name), 0, type, static_cast<const BYTE*>(data),
                        static_cast<DWORD>(bytes));
}

// The text as it is stored, terminated; empty on failure.
LONG ReadUnits(HKEY root, const MString& key, const MString& name, std::vector<wchar_t>& units) {
  constexpr DWORD kTexts = RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND;
  LONG status = ERROR_MORE_DATA;
  // The value may grow between asking for its size and reading it; one that keeps growing is given up.
  for (int round = 0; round < 8 && status == ERROR_MORE_DATA; ++round) {
    DWORD bytes = 0;
    status = RegGetValueW(root, Characters(key), Characters(name), kTexts, nullptr, nullptr, &bytes);
    if (status != ERROR_SUCCESS) return status;
    units.assign(bytes / sizeof(wchar_t) + 1, 0);
    bytes = static_cast<DWORD>(units.size() * sizeof(wchar_t));
    status = RegGetValueW(root, Characters(key), Characters(name), kTexts, nullptr, units.data(), &bytes);
  }
  return status;
}

}  // namespace

MString KeyName(std::string_view ascii) {
  return MString(WideView(WidenAscii(ascii)));
}

std::optional<MString> ReadRegistryText(HostCallbacks* host, HKEY root, const MString& key, const MString& name) {
  std::vector<wchar_t> units;
  const LONG status = ReadUnits(root, key, name, units);
  if (!Told(host, status, ReportCode::RegistryValueNotRead, key, name)) return std::nullopt;
  return MString(WideView(units.data()));
}

std::optional<MString> ReadRegistryTextByPath(HostCallbacks* host, HKEY root, const MString& path) {
  MString key = path;
  MString name = key.CutTail("\\");
  (void)name.Take(1);
  std::vector<wchar_t> units;
  const LONG status = ReadUnits(root, key, name, units);
  if (status == ERROR_SUCCESS) return MString(WideView(units.data()));
  Report(host, Severity::Survived, ReportCode::RegistryValueNotRead, KeyAndError(path, Error(status)));
  return std::nullopt;
}

std::optional<uint32_t> ReadRegistryNumber(HostCallbacks* host, HKEY root, const MString& key, const MString& name) {
  DWORD number = 0;
  DWORD bytes = sizeof(number);
  const LONG status = RegGetValueW(root, Characters(key), Characters(name), RRF_RT_REG_DWORD, nullptr, &number, &bytes);
  if (!Told(host, status, ReportCode::RegistryValueNotRead, key, name)) return std::nullopt;
  return number;
}

bool WriteRegistryText(HostCallbacks* host, HKEY root, const MString& key, const MString& name, const MString& text) {
  const size_t bytes = (static_cast<size_t>(text.Length()) + 1) * sizeof(wchar_t);
  const LONG status = WriteValue(root, key, name, REG_SZ, Characters(text), bytes);
  return Told(host, status, ReportCode::RegistryValueNotWritten, key, name);
}

bool WriteRegistryNumber(HostCallbacks* host, HKEY root, const MString& key, const MString& name, uint32_t number) {
  const LONG status = WriteValue(root, key, name, REG_DWORD, &number, sizeof(number));
  // This form alone has no blank ahead of the error; tools that read the log know it so.
  return Told(host, status, ReportCode::RegistryValueNotWritten, key, name, false);
}

bool DeleteRegistryValue(HostCallbacks* host, HKEY root, const MString& key, const MString& name) {
  RegistryKey opened;
  LONG status = RegOpenKeyExW(root, Characters(key), 0, KEY_SET_VALUE, opened.Receive());
  if (status == ERROR_SUCCESS) status = RegDeleteValueW(opened.Get(), Characters(name));
  return Told(host, status, ReportCode::RegistryNotDeleted, key, name);
}

bool DeleteRegistryKey(HostCallbacks* host, HKEY root, const MString& key) {
  const LONG status = DeleteKeyTree(root, Characters(key));
  if (status == ERROR_SUCCESS) return true;
  Report(host, Severity::Survived, ReportCode::RegistryNotDeleted, KeyAndError(key, Error(status)));
  return false;
}
