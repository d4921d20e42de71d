#include "broker/Win32PathOperations.h"

#include <winioctl.h>
#include <winternl.h>

#include <iterator>

#include "engine/Handles.h"
#include "engine/Registry.h"

namespace {

constexpr DWORD kFullPathUnits = 1040;
constexpr ACCESS_MASK kObjectLinkAccess = 0xF0001;
constexpr USHORT kObjectLinkBytes = 0x104;
constexpr wchar_t kShellFoldersKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

template <class Function>
Function* FromNtdll(const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

using InitUnicodeString = void WINAPI(UNICODE_STRING*, PCWSTR);
using OpenSymbolicLinkObject = NTSTATUS WINAPI(HANDLE*, ACCESS_MASK, OBJECT_ATTRIBUTES*);
using QuerySymbolicLinkObject = NTSTATUS WINAPI(HANDLE, UNICODE_STRING*, ULONG*);

// The registry's name for a folder that the shell could not tell.
const wchar_t* RegistryNameOf(ShellFolder folder) {
  if (folder == ShellFolder::RoamingAppData) return L"AppData";
  if (folder == ShellFolder::LocalAppData) return L"Local AppData";
  return nullptr;
}

}  // namespace

std::optional<WideString> Win32PathOperations::FullPath(WideView path) {
  if (kernel32.GetFullPathNameW == nullptr) return std::nullopt;
  wchar_t buffer[kFullPathUnits] = {};
  const DWORD length = kernel32.GetFullPathNameW(WideString(path).c_str(), kFullPathUnits, buffer, nullptr);
  // A result that does not fit is told by its length; at exactly the buffer's size its terminator did not fit.
  if (length == 0 || length >= kFullPathUnits) return std::nullopt;
  return WideString(buffer, length);
}

std::optional<WideString> Win32PathOperations::UpperCase(WideView text) {
  if (user32.CharUpperBuffW == nullptr) return std::nullopt;
  WideString upper(text);
  user32.CharUpperBuffW(upper.data(), static_cast<DWORD>(upper.size()));
  return upper;
}

std::optional<uint32_t> Win32PathOperations::Attributes(WideView path) {
  if (kernel32.GetFileAttributesW == nullptr) return std::nullopt;
  const DWORD attributes = kernel32.GetFileAttributesW(WideString(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
  return attributes;
}

std::optional<uint32_t> Win32PathOperations::AttributesEx(WideView path) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (kernel32.GetFileAttributesExW == nullptr) return std::nullopt;
  if (!kernel32.GetFileAttributesExW(WideString(path).c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
  return data.dwFileAttributes;
}

std::optional<WideString> Win32PathOperations::LongPath(WideView path) {
  wchar_t buffer[MAX_PATH] = {};
  const DWORD length = GetLongPathNameW(WideString(path).c_str(), buffer, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return std::nullopt;
  return WideString(buffer, length);
}

std::optional<WideString> Win32PathOperations::ObjectLinkTarget(WideView objectPath) {
  static auto* const initString = FromNtdll<InitUnicodeString>("RtlInitUnicodeString");
  static auto* const openLink = FromNtdll<OpenSymbolicLinkObject>("NtOpenSymbolicLinkObject");
  static auto* const queryLink = FromNtdll<QuerySymbolicLinkObject>("NtQuerySymbolicLinkObject");
  if (initString == nullptr || openLink == nullptr || queryLink == nullptr) return std::nullopt;

  const WideString path(objectPath);
  UNICODE_STRING name = {};
  initString(&name, path.c_str());
  OBJECT_ATTRIBUTES attributes = {};
  attributes.Length = sizeof(attributes);
  attributes.ObjectName = &name;
  attributes.Attributes = 0x40;  // case-insensitive
  KernelHandle link;
  if (openLink(link.Receive(), kObjectLinkAccess, &attributes) < 0) return std::nullopt;

  wchar_t buffer[260] = {};  // 520 bytes, of which the target may take half
  UNICODE_STRING target = {kObjectLinkBytes, kObjectLinkBytes, buffer};
  if (queryLink(link.Get(), &target, nullptr) < 0) return std::nullopt;
  return WideString(buffer, target.Length / sizeof(wchar_t));
}

std::optional<std::vector<uint8_t>> Win32PathOperations::ReadReparsePoint(WideView path) {
  constexpr DWORD kReparseBytes = 0x4000;
  if (kernel32.CreateFileW == nullptr) return std::nullopt;
  const FileHandle level(kernel32.CreateFileW(WideString(path).c_str(), 0, 0, nullptr, OPEN_EXISTING,
                                              FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  static_assert((FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT) == 0x2200000);
  if (!level) return std::nullopt;
  std::vector<uint8_t> data(kReparseBytes);
  DWORD length = 0;
  if (!DeviceIoControl(level.Get(), FSCTL_GET_REPARSE_POINT, nullptr, 0, data.data(), kReparseBytes, &length,
                       nullptr)) {
    return std::nullopt;
  }
  data.resize(length);
  return data;
}

std::optional<WideString> Win32PathOperations::Folder(ShellFolder folder) {
  wchar_t buffer[MAX_PATH] = {};
  if (shell32.SHGetFolderPathW != nullptr &&
      SUCCEEDED(shell32.SHGetFolderPathW(nullptr, static_cast<int>(folder), nullptr, 0, buffer))) {
    return WideString(buffer);
  }
  const wchar_t* const name = RegistryNameOf(folder);
  auto path = name == nullptr ? std::nullopt : ReadWideText(HKEY_CURRENT_USER, kShellFoldersKey, name);
  if (path && path->size() >= MAX_PATH) return std::nullopt;  // 520 bytes, as much as is read
  return path;
}

std::optional<WideString> Win32PathOperations::TempPath() {
  if (kernel32.GetTempPathW == nullptr) return std::nullopt;
  wchar_t buffer[MAX_PATH + 1] = {};
  const DWORD length = kernel32.GetTempPathW(MAX_PATH, buffer);
  if (length == 0 || length >= MAX_PATH) return std::nullopt;
  return WideString(buffer, length);
}
