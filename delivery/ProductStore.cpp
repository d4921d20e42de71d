#include "delivery/ProductStore.h"

#include <windows.h>

#include <new>
#include <vector>

#include "delivery/ProductName.h"
#include "delivery/SignedMessage.h"
#include "delivery/TrustAnchor.h"
#include "engine/Handles.h"
#include "engine/SystemPaths.h"

namespace {

FileHandle CreateStoredFile(const WideString& path) {
  return FileHandle(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                FILE_FLAG_RANDOM_ACCESS, nullptr));
}

bool WriteAll(const FileHandle& file, const void* bytes, size_t size) {
  DWORD written = 0;
  return WriteFile(file.Get(), bytes, static_cast<DWORD>(size), &written, nullptr) && written == size;
}

// Makes the folders above `path`, from the nearest one that exists downwards. What fails shows when the file is
// created.
void MakeFoldersFor(const WideString& path) {
  const size_t separator = path.find_last_of(L'\\');
  if (separator == WideString::npos) return;
  const WideString folder = path.substr(0, separator);
  if (GetFileAttributesW(folder.c_str()) != INVALID_FILE_ATTRIBUTES) return;
  MakeFoldersFor(folder);
  CreateDirectoryW(folder.c_str(), nullptr);
}

// Unpacks the verified content into the open file.
StoreResult WriteExecutable(const FileHandle& file, std::span<const uint8_t> data, const wchar_t* overridePath) {
  std::vector<uint8_t> anchor;
  std::vector<uint8_t> content;
  if (!LoadAnchor(overridePath, anchor) || !VerifySignedMessage(data, anchor, content) || !IsPackage(content)) {
    return StoreResult::NotTrusted;
  }
  UnpackedFile unpacked;
  const StoreResult result = UnpackPackage(content, unpacked);
  if (result != StoreResult::Stored) return result;
  SetFilePointer(file.Get(), 0, nullptr, FILE_END);
  return WriteAll(file, unpacked.bytes.get(), unpacked.size) ? StoreResult::Stored : StoreResult::NotWritten;
}

}  // namespace

std::optional<WideString> ProductExecutablePath(const wchar_t* name, ProductFolder folder) {
  std::optional<WideString> path;
  if (folder == ProductFolder::PerUser) {
    path = ProductDirectory();
    if (path) *path += L"\\";
  } else {
    path = FolderPath(ShellFolder::ProgramFiles);
    // Joined as the pieces stand; the platform reads the doubled separators as one.
    if (path)
      *path +=
          L"\\Corva\\"
          L"\\Lumen Player\\"
          L"\\AddIns\\";
  }
  if (path) *path += WideString(name) + L"\\" + name + L".exe";
  return path;
}

std::optional<WideString> ProductDigestPath(const wchar_t* name, ProductFolder folder) {
  std::optional<WideString> path = ProductExecutablePath(name, folder);
  if (path) *path = path->substr(0, path->find_last_of(L'\\')) + L"\\digest.s";
  return path;
}

StoreResult InstallSignedPackage(const wchar_t* name, std::span<const uint8_t> data, const wchar_t* overridePath) {
  if (!IsValidProductName(name)) return StoreResult::NotWritten;
  const std::optional<WideString> path = ProductExecutablePath(name, ProductFolder::PerUser);
  if (!path) return StoreResult::NotWritten;
  MakeFoldersFor(*path);
  // The file stands there empty while the package is judged, so nobody finds unchecked content at this path.
  FileHandle file = CreateStoredFile(*path);
  const StoreResult result = file ? WriteExecutable(file, data, overridePath) : StoreResult::NotWritten;
  file.Reset();
  if (result != StoreResult::Stored) DeleteFileW(path->c_str());
  return result;
}

StoreResult StoreProductDigest(const wchar_t* name, std::span<const uint8_t> data) {
  if (!IsValidProductName(name)) return StoreResult::NotTrusted;
  const std::optional<WideString> path = ProductDigestPath(name, ProductFolder::PerUser);
  if (!path) return StoreResult::NotWritten;
  const FileHandle file = CreateStoredFile(*path);
  return file && WriteAll(file, data.data(), data.size()) ? StoreResult::Stored : StoreResult::NotWritten;
}
