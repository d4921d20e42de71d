#include "engine/DllHelpers.h"

#include <iterator>
#include <string>

#include "engine/WideText.h"

namespace {

// A library of the other width would carry this prefix.
constexpr char kBitnessPrefix[] = "";

}  // namespace

DynamicLoadLibraryHelper::DynamicLoadLibraryHelper(const char* libraryName, bool libraryRequired, bool bitness) {
  char directory[MAX_PATH] = {};
  const UINT length = GetSystemDirectoryA(directory, static_cast<UINT>(std::size(directory)));
  if (length > 0 && length < std::size(directory) && libraryName != nullptr) {
    const std::string path = std::string(directory) + "\\" + (bitness ? kBitnessPrefix : "") + libraryName;
    library.Reset(LoadLibraryA(path.c_str()));
    if (libraryRequired && !library.IsValid()) available = 0;
  }
}

FARPROC DynamicLoadLibraryHelper::Resolve(const char* name, bool required) {
  const FARPROC function = library.IsValid() ? GetProcAddress(library.Get(), name) : nullptr;
  if (function == nullptr && required) available = 0;
  return function;
}

Kernel32DllHelper::Kernel32DllHelper() : DynamicLoadLibraryHelper("kernel32.dll", true, false) {
  Bind(GetUserDefaultUILanguage, "GetUserDefaultUILanguage", false);
  Bind(CreateDirectoryW, "CreateDirectoryW");
  Bind(CreateFileW, "CreateFileW");
  Bind(CreateProcessW, "CreateProcessW");
  Bind(DeleteFileW, "DeleteFileW");
  Bind(GetModuleFileNameW, "GetModuleFileNameW");
  Bind(MoveFileExA, "MoveFileExA");
  Bind(MoveFileExW, "MoveFileExW");
  Bind(RemoveDirectoryW, "RemoveDirectoryW");
  Bind(GetSystemDirectoryW, "GetSystemDirectoryW");
  Bind(ExpandEnvironmentStringsW, "ExpandEnvironmentStringsW");
  Bind(FindFirstFileW, "FindFirstFileW");
  Bind(FindNextFileW, "FindNextFileW");
  Bind(GetFileAttributesW, "GetFileAttributesW");
  Bind(SetFileAttributesW, "SetFileAttributesW");
  Bind(GetFileAttributesExW, "GetFileAttributesExW");
  Bind(GetCurrentDirectoryW, "GetCurrentDirectoryW");
  Bind(SetCurrentDirectoryW, "SetCurrentDirectoryW");
  Bind(GetTempPathW, "GetTempPathW");
  Bind(GetTempFileNameW, "GetTempFileNameW");
  Bind(CopyFileW, "CopyFileW");
  Bind(GetFullPathNameW, "GetFullPathNameW");
  Bind(GetVolumeInformationW, "GetVolumeInformationW");
  Bind(QueryFullProcessImageNameW, "QueryFullProcessImageNameW", false);
}

User32DllHelper::User32DllHelper() : DynamicLoadLibraryHelper("user32.dll", true, false) {
  Bind(CharUpperBuffW, "CharUpperBuffW");
}

Advapi32DllHelper::Advapi32DllHelper() : DynamicLoadLibraryHelper("advapi32.dll", true, false) {
  Bind(AllocateAndInitializeSid, "AllocateAndInitializeSid");
  Bind(GetNamedSecurityInfoA, "GetNamedSecurityInfoA");
  Bind(GetNamedSecurityInfoW, "GetNamedSecurityInfoW", false);
  Bind(GetSecurityInfo, "GetSecurityInfo");
  Bind(SetEntriesInAclA, "SetEntriesInAclA");
  Bind(SetEntriesInAclW, "SetEntriesInAclW", false);
  Bind(SetNamedSecurityInfoA, "SetNamedSecurityInfoA");
  Bind(SetNamedSecurityInfoW, "SetNamedSecurityInfoW", false);
  Bind(SetSecurityInfo, "SetSecurityInfo");
  Bind(FreeSid, "FreeSid");
  Bind(GetAclInformation, "GetAclInformation");
  Bind(GetAce, "GetAce");
  Bind(EqualSid, "EqualSid");
  Bind(DeleteAce, "DeleteAce");
  Bind(CreateWellKnownSid, "CreateWellKnownSid", false);
  Bind(OpenProcessToken, "OpenProcessToken");
  Bind(GetTokenInformation, "GetTokenInformation");
  Bind(GetSidSubAuthority, "GetSidSubAuthority");
  Bind(GetSidSubAuthorityCount, "GetSidSubAuthorityCount");
  Bind(RegCreateKeyExW, "RegCreateKeyExW");
  Bind(RegOpenKeyExW, "RegOpenKeyExW");
  Bind(RegDeleteKeyW, "RegDeleteKeyW");
  Bind(RegDeleteKeyExW, "RegDeleteKeyExW", false);
  Bind(RegDeleteValueW, "RegDeleteValueW");
  Bind(RegQueryValueExW, "RegQueryValueExW");
  Bind(RegSetValueExW, "RegSetValueExW");
}

VersionDllHelper::VersionDllHelper() : DynamicLoadLibraryHelper("version.dll", true, false) {
  Bind(GetFileVersionInfoSizeW, "GetFileVersionInfoSizeW");
  Bind(GetFileVersionInfoW, "GetFileVersionInfoW");
  Bind(VerQueryValueW, "VerQueryValueW");
}

Shell32DllHelper::Shell32DllHelper() : DynamicLoadLibraryHelper("shell32.dll", true, false) {
  Bind(SHGetFolderPathW, "SHGetFolderPathW", false);
  Bind(ShellExecuteExW, "ShellExecuteExW");
}

Dinput8DllHelper::Dinput8DllHelper() : DynamicLoadLibraryHelper("dinput8.dll", true, false) {
  Bind(DirectInput8Create, "DirectInput8Create", false);
}

SrpapiDllHelper::SrpapiDllHelper() : DynamicLoadLibraryHelper("srpapi.dll", false, false) {
  Bind(SrpGetEnterpriseIds, "SrpGetEnterpriseIds", false);
}

Edpwin32DllHelper::Edpwin32DllHelper() : DynamicLoadLibraryHelper("efswrt.dll", false, false) {
  Bind(ProtectFileToEnterpriseIdentity, "ProtectFileToEnterpriseIdentity", false);
}

namespace {

// Built before Start can run; the order among them does not matter, none uses another.
const Kernel32DllHelper g_kernel32;
const Dinput8DllHelper g_dinput8;
const SrpapiDllHelper g_srpapi;

}  // namespace

const Kernel32DllHelper& Kernel32() {
  return g_kernel32;
}
const Dinput8DllHelper& Dinput8() {
  return g_dinput8;
}
const SrpapiDllHelper& Srpapi() {
  return g_srpapi;
}

HMODULE LoadSystemLibrary(const wchar_t* name) {
  const WideView given(name);
  if (given.find(L'\\') != WideView::npos) return LoadLibraryW(name);
  wchar_t folder[MAX_PATH] = {};
  if (FAILED(SHGetFolderPathW(nullptr, CSIDL_SYSTEM, nullptr, 0, folder))) return nullptr;
  return LoadLibraryW((WideString(folder) + L"\\" + WideString(given)).c_str());
}

LONG DeleteKeyTree(HKEY root, const wchar_t* key) {
  static BoundFunction<LSTATUS WINAPI(HKEY, LPCWSTR)> deleteKey(L"shlwapi.dll", "SHDeleteKeyW");
  auto* const function = deleteKey.Get();
  return function == nullptr ? -1 : function(root, key);
}
