#include "engine/SystemPaths.h"

#include <shlobj.h>

#include <iterator>
#include <vector>

#include "engine/Handles.h"
#include "engine/Registry.h"
#include "engine/Vendor.h"

namespace {

constexpr wchar_t kShellFoldersKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

template <class Function>
Function* FromKernel32(const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
}

bool RunsUnderWow64() {
  auto* const isWow64 = FromKernel32<decltype(::IsWow64Process)>("IsWow64Process");
  BOOL wow64 = FALSE;
  return isWow64 != nullptr && isWow64(GetCurrentProcess(), &wow64) && wow64;
}

template <class Unit, class Function>
std::optional<
    std::basic_string<Unit, std::conditional_t<std::is_same_v<Unit, wchar_t>, WideTraits, std::char_traits<Unit>>>>
AskDirectory(Function* function) {
  Unit buffer[MAX_PATH] = {};
  const UINT length = function(buffer, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return std::nullopt;
  return {{buffer, length}};
}

}  // namespace

std::optional<WideString> BoundedPath(WideView root, WideView below) {
  if (root.size() + below.size() >= MAX_PATH) return std::nullopt;
  return WideString(root) + WideString(below);
}

std::optional<WideString> FolderPath(ShellFolder folder) {
  wchar_t buffer[MAX_PATH] = {};
  if (FAILED(SHGetFolderPathW(nullptr, static_cast<int>(folder), nullptr, 0, buffer))) return std::nullopt;
  return WideString(buffer);
}

std::optional<WideString> GetSystem32Path() {
  if (RunsUnderWow64()) {
    auto* const wow64 = FromKernel32<decltype(::GetSystemWow64DirectoryW)>("GetSystemWow64DirectoryW");
    if (wow64 != nullptr) return AskDirectory<wchar_t>(wow64);
  }
  return AskDirectory<wchar_t>(&GetSystemDirectoryW);
}

std::optional<std::string> GetSystem32PathNarrow() {
  if (RunsUnderWow64()) {
    auto* const wow64 = FromKernel32<decltype(::GetSystemWow64DirectoryA)>("GetSystemWow64DirectoryA");
    if (wow64 != nullptr) return AskDirectory<char>(wow64);
  }
  return AskDirectory<char>(&GetSystemDirectoryA);
}

std::optional<WideString> GetPlayerRoots(bool local) {
  if (auto path = FolderPath(local ? ShellFolder::LocalAppData : ShellFolder::RoamingAppData)) return path;
  return ReadWideText(HKEY_CURRENT_USER, kShellFoldersKey, local ? L"Local AppData" : L"AppData");
}

std::optional<WideString> ProductDirectory() {
  const auto root = FolderPath(ShellFolder::RoamingAppData);
  if (!root) return std::nullopt;
  return BoundedPath(*root, L"\\Halcyonics\\Lumen Player\\" LUMEN_VENDOR_DOMAIN L"\\bin");
}

WideString DigestPath(WideView settingsDirectory, WideView packageName) {
  return WideString(settingsDirectory) + L"\\bin\\" + WideString(packageName) + L"\\digest.s";
}

std::optional<WideString> SystemConfigPath() {
  auto path = AskDirectory<wchar_t>(&GetSystemWow64DirectoryW);
  if (!path) path = AskDirectory<wchar_t>(&GetSystemDirectoryW);
  if (!path) return std::nullopt;
  return BoundedPath(*path, L"\\Halcyons\\Lumen\\hms.cfg");
}

SystemConfigFile ReadSystemConfig() {
  const auto path = SystemConfigPath();
  if (!path) return {};
  const FileHandle file(
      CreateFileW(path->c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file) return {};
  std::vector<char> content;
  char block[4096];
  for (DWORD read = 0; ReadFile(file.Get(), block, sizeof(block), &read, nullptr) && read > 0;) {
    content.insert(content.end(), block, block + read);
  }
  return SystemConfigFile(content);
}
