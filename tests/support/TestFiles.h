// Real folders and files for the tests under Windows.
#pragma once

#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <string>

#include "engine/Handles.h"
#include "engine/WideText.h"

namespace testing_files {

inline WideString Folder(int csidl) {
  wchar_t path[MAX_PATH] = {};
  SHGetFolderPathW(nullptr, csidl | CSIDL_FLAG_CREATE, nullptr, 0, path);
  return path;
}

inline WideString PlayerDirectory() {
  return Folder(CSIDL_APPDATA) + L"\\Halcyonics\\Lumen Player";
}

// A file of the directory that this test program lies in.
inline WideString Beside(const wchar_t* name) {
  wchar_t own[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, own, MAX_PATH);
  const WideString whole = own;
  return whole.substr(0, whole.rfind(L'\\') + 1) + name;
}

inline void MakeDirectories(const WideString& path) {
  SHCreateDirectoryExW(nullptr, path.c_str(), nullptr);
}

inline void WriteWhole(const WideString& path, const std::string& content) {
  const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  DWORD written = 0;
  WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
}

inline std::string ReadWhole(const WideString& path) {
  const FileHandle file(
      CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file) return "(no file)";
  std::string content(GetFileSize(file.Get(), nullptr), 0);
  DWORD read = 0;
  ReadFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
  return content;
}

inline bool Exists(const WideString& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Deletes a directory with all in it by the shell, which under Wine follows links.
inline void DeleteByShell(WideString path) {
  path.push_back(0);
  SHFILEOPSTRUCTW operation = {};
  operation.wFunc = FO_DELETE;
  operation.pFrom = path.c_str();
  operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;
  SHFileOperationW(&operation);
}

// A directory that is new and empty, and gone at the end of the scope.
class CleanDirectory {
 public:
  explicit CleanDirectory(WideString path) : path_(std::move(path)) {
    DeleteByShell(path_);
    MakeDirectories(path_);
  }
  ~CleanDirectory() { DeleteByShell(path_); }
  CleanDirectory(const CleanDirectory&) = delete;
  CleanDirectory& operator=(const CleanDirectory&) = delete;
  [[nodiscard]] const WideString& Path() const { return path_; }

 private:
  WideString path_;
};

// Makes a file that was last written so many seconds ago; a negative age lies ahead.
inline void MakeAgedFile(const WideString& path, int64_t seconds) {
  const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  FILETIME time = {};
  GetSystemTimeAsFileTime(&time);
  ULARGE_INTEGER value = {{time.dwLowDateTime, time.dwHighDateTime}};
  value.QuadPart -= static_cast<uint64_t>(seconds * 10'000'000);
  time = {value.LowPart, value.HighPart};
  SetFileTime(file.Get(), nullptr, nullptr, &time);
}

// A small program image whose header lies at `header`.
inline std::string ProgramImage(size_t header = 80, size_t size = 200) {
  std::string image(size, 'Z');
  image[0] = 'M';
  image[60] = static_cast<char>(header);
  image[61] = image[62] = image[63] = 0;
  image.replace(header, 4, std::string("PE\0\0", 4));
  return image;
}

}  // namespace testing_files
