// System libraries bound at run time: the module loads on systems that lack some of them and can tell what is missing.
//
// One class a library, one typed pointer a function. Libraries come from the system directory by full path, never from
// the search path. A function that is not there is a null pointer, which the caller tests; a missing required one also
// clears IsAvailable(). Helpers report nothing themselves. Any thread may call through a built helper.
#pragma once

// clang-format off
#include <windows.h>
// clang-format on
#include <accctrl.h>
#include <aclapi.h>
#include <dinput.h>
#include <shellapi.h>
#include <shlobj.h>

#include <cstdint>

#include "engine/Handles.h"

class DynamicLoadLibraryHelper {
 public:
  virtual ~DynamicLoadLibraryHelper() = default;
  DynamicLoadLibraryHelper(const DynamicLoadLibraryHelper&) = delete;
  DynamicLoadLibraryHelper& operator=(const DynamicLoadLibraryHelper&) = delete;

  // False when the library or a function that is required is missing. What did resolve stays usable.
  [[nodiscard]] bool IsAvailable() const { return available != 0; }

 protected:
  // `bitness` puts a prefix before the name in builds that ship libraries of both widths; it is empty in this one.
  DynamicLoadLibraryHelper(const char* libraryName, bool libraryRequired, bool bitness);

  // The function's address or null. A missing `required` one clears `available`.
  [[nodiscard]] FARPROC Resolve(const char* name, bool required);
  template <class Function>
  void Bind(Function*& field, const char* name, bool required = true) {
    field = reinterpret_cast<Function*>(reinterpret_cast<void*>(Resolve(name, required)));
  }

 private:
  LibraryHandle library;
  uint8_t available = 1;
};

// Declared here because the toolchain's headers lack them.
using SrpGetEnterpriseIdsFunction = HRESULT WINAPI(HANDLE token, ULONG* bytes, PCWSTR* ids, ULONG* count);
using ProtectFileToEnterpriseIdentityFunction = HRESULT WINAPI(PCWSTR path, PCWSTR identity);

// Files, folders and processes.
class Kernel32DllHelper final : public DynamicLoadLibraryHelper {
 public:
  Kernel32DllHelper();

  decltype(::GetUserDefaultUILanguage)* GetUserDefaultUILanguage = nullptr;  // may be missing
  decltype(::CreateDirectoryW)* CreateDirectoryW = nullptr;
  decltype(::CreateFileW)* CreateFileW = nullptr;
  decltype(::CreateProcessW)* CreateProcessW = nullptr;
  decltype(::DeleteFileW)* DeleteFileW = nullptr;
  decltype(::GetModuleFileNameW)* GetModuleFileNameW = nullptr;
  decltype(::MoveFileExA)* MoveFileExA = nullptr;
  decltype(::MoveFileExW)* MoveFileExW = nullptr;
  decltype(::RemoveDirectoryW)* RemoveDirectoryW = nullptr;
  decltype(::GetSystemDirectoryW)* GetSystemDirectoryW = nullptr;
  decltype(::ExpandEnvironmentStringsW)* ExpandEnvironmentStringsW = nullptr;
  decltype(::FindFirstFileW)* FindFirstFileW = nullptr;
  decltype(::FindNextFileW)* FindNextFileW = nullptr;
  decltype(::GetFileAttributesW)* GetFileAttributesW = nullptr;
  decltype(::SetFileAttributesW)* SetFileAttributesW = nullptr;
  decltype(::GetFileAttributesExW)* GetFileAttributesExW = nullptr;
  decltype(::GetCurrentDirectoryW)* GetCurrentDirectoryW = nullptr;
  decltype(::SetCurrentDirectoryW)* SetCurrentDirectoryW = nullptr;
  decltype(::GetTempPathW)* GetTempPathW = nullptr;
  decltype(::GetTempFileNameW)* GetTempFileNameW = nullptr;
  decltype(::CopyFileW)* CopyFileW = nullptr;
  decltype(::GetFullPathNameW)* GetFullPathNameW = nullptr;
  decltype(::GetVolumeInformationW)* GetVolumeInformationW = nullptr;
  decltype(::QueryFullProcessImageNameW)* QueryFullProcessImageNameW = nullptr;  // may be missing
};

// Upper case as the file system means it.
class User32DllHelper final : public DynamicLoadLibraryHelper {
 public:
  User32DllHelper();

  decltype(::CharUpperBuffW)* CharUpperBuffW = nullptr;
};

// Access control lists, tokens and the registry.
class Advapi32DllHelper final : public DynamicLoadLibraryHelper {
 public:
  Advapi32DllHelper();

  decltype(::AllocateAndInitializeSid)* AllocateAndInitializeSid = nullptr;
  decltype(::GetNamedSecurityInfoA)* GetNamedSecurityInfoA = nullptr;
  decltype(::GetNamedSecurityInfoW)* GetNamedSecurityInfoW = nullptr;  // may be missing
  decltype(::GetSecurityInfo)* GetSecurityInfo = nullptr;
  decltype(::SetEntriesInAclA)* SetEntriesInAclA = nullptr;
  decltype(::SetEntriesInAclW)* SetEntriesInAclW = nullptr;  // may be missing
  decltype(::SetNamedSecurityInfoA)* SetNamedSecurityInfoA = nullptr;
  decltype(::SetNamedSecurityInfoW)* SetNamedSecurityInfoW = nullptr;  // may be missing
  decltype(::SetSecurityInfo)* SetSecurityInfo = nullptr;
  decltype(::FreeSid)* FreeSid = nullptr;
  decltype(::GetAclInformation)* GetAclInformation = nullptr;
  decltype(::GetAce)* GetAce = nullptr;
  decltype(::EqualSid)* EqualSid = nullptr;
  decltype(::DeleteAce)* DeleteAce = nullptr;
  decltype(::CreateWellKnownSid)* CreateWellKnownSid = nullptr;  // may be missing
  decltype(::OpenProcessToken)* OpenProcessToken = nullptr;
  decltype(::GetTokenInformation)* GetTokenInformation = nullptr;
  decltype(::GetSidSubAuthority)* GetSidSubAuthority = nullptr;
  decltype(::GetSidSubAuthorityCount)* GetSidSubAuthorityCount = nullptr;
  decltype(::RegCreateKeyExW)* RegCreateKeyExW = nullptr;
  decltype(::RegOpenKeyExW)* RegOpenKeyExW = nullptr;
  decltype(::RegDeleteKeyW)* RegDeleteKeyW = nullptr;
  decltype(::RegDeleteKeyExW)* RegDeleteKeyExW = nullptr;  // may be missing
  decltype(::RegDeleteValueW)* RegDeleteValueW = nullptr;
  decltype(::RegQueryValueExW)* RegQueryValueExW = nullptr;
  decltype(::RegSetValueExW)* RegSetValueExW = nullptr;
};

// Version resources.
class VersionDllHelper final : public DynamicLoadLibraryHelper {
 public:
  VersionDllHelper();

  decltype(::GetFileVersionInfoSizeW)* GetFileVersionInfoSizeW = nullptr;
  decltype(::GetFileVersionInfoW)* GetFileVersionInfoW = nullptr;
  decltype(::VerQueryValueW)* VerQueryValueW = nullptr;
};

// The shell's folders, and starting programs through it.
class Shell32DllHelper final : public DynamicLoadLibraryHelper {
 public:
  Shell32DllHelper();

  decltype(::SHGetFolderPathW)* SHGetFolderPathW = nullptr;  // may be missing
  decltype(::ShellExecuteExW)* ShellExecuteExW = nullptr;
};

// Counts game controllers.
class Dinput8DllHelper final : public DynamicLoadLibraryHelper {
 public:
  Dinput8DllHelper();

  decltype(::DirectInput8Create)* DirectInput8Create = nullptr;  // may be missing
};

// Enterprise identities of a process or thread; Windows 10 and later.
class SrpapiDllHelper final : public DynamicLoadLibraryHelper {
 public:
  SrpapiDllHelper();

  SrpGetEnterpriseIdsFunction* SrpGetEnterpriseIds = nullptr;  // may be missing
};

// File protection by enterprise identity. The class keeps the name of the feature's header; the library really is this
// one.
class Edpwin32DllHelper final : public DynamicLoadLibraryHelper {
 public:
  Edpwin32DllHelper();

  ProtectFileToEnterpriseIdentityFunction* ProtectFileToEnterpriseIdentity = nullptr;  // may be missing
};

// The process-wide helpers, built when the module is loaded and ended when it is unloaded.
[[nodiscard]] const Kernel32DllHelper& Kernel32();
[[nodiscard]] const Dinput8DllHelper& Dinput8();
[[nodiscard]] const SrpapiDllHelper& Srpapi();

// One function of one library, bound on first use and kept for the life of the process. A bare library name is looked
// for in the system folder only.
template <class Function>
class BoundFunction {
 public:
  constexpr BoundFunction(const wchar_t* libraryName, const char* functionName)
      : library_(libraryName), function_(functionName) {}
  // Null when the library or the function is missing.
  [[nodiscard]] Function* Get();

 private:
  const wchar_t* library_;
  const char* function_;
  HMODULE module_ = nullptr;
  Function* bound_ = nullptr;
};

// Loads a library; a name without a backslash is joined to the system folder, so that it can come from nowhere else.
// Null when that folder or the library cannot be found.
[[nodiscard]] HMODULE LoadSystemLibrary(const wchar_t* name);

template <class Function>
Function* BoundFunction<Function>::Get() {
  if (module_ == nullptr) module_ = LoadSystemLibrary(library_);
  if (bound_ == nullptr && module_ != nullptr) {
    bound_ = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, function_)));
  }
  return bound_;
}

// Deletes a key with all below it: the platform's error, or -1 when the shell's function is missing.
[[nodiscard]] LONG DeleteKeyTree(HKEY root, const wchar_t* key);
