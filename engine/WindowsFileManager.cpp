#include "engine/WindowsFileManager.h"

#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <functional>

#include "engine/Handles.h"
#include "engine/Registry.h"
#include "engine/SystemPaths.h"

namespace SASM {

namespace {

constexpr uint64_t kFileTimeUnitsPerSecond = 10'000'000;

bool IsDirectory(DWORD attributes) {
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

uint64_t Join(DWORD high, DWORD low) {
  return static_cast<uint64_t>(high) << 32 | low;
}

std::string Utf8Path(WideView root, WideView below) {
  const auto path = BoundedPath(root, below);
  return path ? ToUtf8(*path) : std::string();
}

// Calls `visit` for every entry of a directory but "." and "..". False when it cannot be listed.
bool ForEachEntry(const WideString& directory, const std::function<void(const WIN32_FIND_DATAW&)>& visit) {
  WIN32_FIND_DATAW entry = {};
  const FindHandle search(FindFirstFileW((directory + L"\\*").c_str(), &entry));
  if (!search) return false;
  do {
    const WideView name(entry.cFileName);
    if (name != L"." && name != L"..") visit(entry);
  } while (FindNextFileW(search.Get(), &entry));
  return true;
}

// A link to a directory is never entered: what lies behind it is somebody else's.
bool IsPlainDirectory(const WIN32_FIND_DATAW& entry) {
  return IsDirectory(entry.dwFileAttributes) && (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

uint64_t TreeSize(const WideString& directory) {
  uint64_t size = 0;
  ForEachEntry(directory, [&](const WIN32_FIND_DATAW& entry) {
    if (IsPlainDirectory(entry)) {
      size += TreeSize(directory + L"\\" + entry.cFileName);
    } else if (!IsDirectory(entry.dwFileAttributes)) {
      size += Join(entry.nFileSizeHigh, entry.nFileSizeLow);
    }
  });
  return size;
}

bool ExpireTree(const WideString& directory, uint64_t now, uint64_t youngest, uint64_t oldest) {
  return ForEachEntry(directory, [&](const WIN32_FIND_DATAW& entry) {
    const WideString path = directory + L"\\" + entry.cFileName;
    if (IsPlainDirectory(entry)) {
      ExpireTree(path, now, youngest, oldest);
      RemoveDirectoryW(path.c_str());  // fails unless it is empty now
      return;
    }
    if (IsDirectory(entry.dwFileAttributes)) return;
    const uint64_t written = Join(entry.ftLastWriteTime.dwHighDateTime, entry.ftLastWriteTime.dwLowDateTime);
    const uint64_t age = now > written ? now - written : 0;
    if (age >= youngest && age <= oldest) DeleteFileW(path.c_str());
  });
}

// `found` unless another thread filled the process-wide text meanwhile: the late fill is dropped, as both found the
// same.
void FillOnce(std::string& value, std::string found) {
  if (value.empty()) value = std::move(found);
}

// Looked up again as long as there is no answer.
const char* CachedBelowRoaming(std::string& value, WideView below) {
  if (value.empty()) {
    const auto root = FolderPath(ShellFolder::RoamingAppData);
    FillOnce(value, root ? Utf8Path(*root, below) : std::string());
  }
  return value.c_str();
}

// The player's data root in this layer's own way: the folder is created if need be, and the registry value that stands
// in for it is narrow text.
std::string FindPlayerDataPath(bool local) {
  wchar_t buffer[MAX_PATH] = {};
  WideString root;
  const int folder = (local ? CSIDL_LOCAL_APPDATA : CSIDL_APPDATA) | CSIDL_FLAG_CREATE;
  if (SUCCEEDED(SHGetFolderPathW(nullptr, folder, nullptr, 0, buffer))) {
    root = buffer;
  } else {
    const auto value =
        ReadText(HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders",
                 local ? "Local AppData" : "AppData");
    if (value) root = WidenFromCodePage(*value);
    if (root.ends_with(L'/') || root.ends_with(L'\\')) root.pop_back();
  }
  return root.empty() ? std::string() : Utf8Path(root, L"\\Halcyonics\\Lumen Player");
}

std::string g_assetCache, g_cacheDirectory, g_playerData, g_privateData;

}  // namespace

bool IsDeleteSuccess(int shellResult) {
  constexpr int kInvalidName = 124;  // the shell's word for a parent that is not there
  constexpr int kNotFound = 1026;
  return shellResult == ERROR_SUCCESS || shellResult == ERROR_FILE_NOT_FOUND || shellResult == kInvalidName ||
         shellResult == kNotFound;
}

WindowsFileManager::WindowsFileManager()
    : enableLocalAppData(IsTrueSetting(ReadSystemConfig().Lookup("EnableLocalAppData")) ? 1 : 0) {}

bool WindowsFileManager::DeletePath(const char* path) {
  WideString doubled = FromUtf8(path);
  doubled.push_back(0);  // the shell takes a list of paths
  SHFILEOPSTRUCTW operation = {};
  operation.wFunc = FO_DELETE;
  operation.pFrom = doubled.c_str();
  operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;
  static_assert((FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI) == 0x0414);
  return IsDeleteSuccess(SHFileOperationW(&operation));
}

bool WindowsFileManager::ExpireFiles(const char* directory, uint32_t youngest, uint32_t oldest) {
  FILETIME time = {};
  GetSystemTimeAsFileTime(&time);
  return ExpireTree(FromUtf8(directory), Join(time.dwHighDateTime, time.dwLowDateTime),
                    youngest * kFileTimeUnitsPerSecond, oldest * kFileTimeUnitsPerSecond);
}

uint64_t WindowsFileManager::GetPathSize(const char* path) {
  const WideString wide = FromUtf8(path);
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExW(wide.c_str(), GetFileExInfoStandard, &data)) return 0;
  return IsDirectory(data.dwFileAttributes) ? TreeSize(wide) : Join(data.nFileSizeHigh, data.nFileSizeLow);
}

bool WindowsFileManager::CreateChildDirectory(const char* parent, const char* name) {
  const WideString path = FromUtf8(parent) + L"\\" + FromUtf8(name);
  return CreateDirectoryW(path.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
}

const char* WindowsFileManager::GetAssetCachePath() {
  return CachedBelowRoaming(g_assetCache, L"\\Corva\\Lumen Player\\AssetCache");
}

const char* WindowsFileManager::GetCacheDirectoryPath() {
  return CachedBelowRoaming(g_cacheDirectory, L"\\Corva\\Lumen Player\\CLCache");
}

const char* WindowsFileManager::GetPlayerDataPath() {
  if (g_playerData.empty()) FillOnce(g_playerData, FindPlayerDataPath(EnableLocalAppData()));
  return g_playerData.c_str();
}

const char* WindowsFileManager::GetPrivateDataPath() {
  return CachedBelowRoaming(g_privateData, L"\\Corva\\Lumen Player\\CPSPrivateData2");
}

bool WindowsFileManager::ListDirectory(const char* directory, StringVector& names) {
  bool complete = true;
  const bool listed = ForEachEntry(FromUtf8(directory), [&](const WIN32_FIND_DATAW& entry) {
    if (!names.Append(ToUtf8(entry.cFileName).c_str())) complete = false;
  });
  names.Sort();
  return listed && complete;
}

}  // namespace SASM
