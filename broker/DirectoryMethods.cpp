// Deleting, moving, making and listing. A refusal by policy is a plain failure here, but for the listing.
#include <windows.h>

#include <shellapi.h>
#include <shlwapi.h>

#include <new>
#include <optional>

#include "broker/CoLumenBrokerServer.h"
#include "broker/FileOpening.h"
#include "engine/WindowsFileManager.h"

namespace {

// Replace, copy, delay until reboot, write through and fail-if-not-trackable. Any other bit is refused unseen.
constexpr LONG kMoveFlags = 0x2F;

HANDLE ToHandle(intptr_t value) {
  return reinterpret_cast<HANDLE>(value);
}

HRESULT ResultOf(BOOL done) {
  return done ? S_OK : LastErrorResult();
}

// The directory of a path, or the path itself when it is one.
WideString DirectoryOf(const WideString& path) {
  if (PathIsDirectoryW(path.c_str())) return path;
  const size_t slash = path.find_last_of(L'\\');
  if (slash == WideString::npos) return path;
  // A drive's root keeps its slash.
  return path.substr(0, slash > 0 && path[slash - 1] == L':' ? slash + 1 : slash);
}

HRESULT GiveEntry(const WIN32_FIND_DATAW& entry, BSTR* leafName, ULONG* attributes) {
  *leafName = SysAllocString(entry.cFileName);
  if (*leafName == nullptr) return E_OUTOFMEMORY;
  *attributes = entry.dwFileAttributes;
  return S_OK;
}

}  // namespace

HRESULT CoLumenBrokerServer::BrokerDeleteFile(BSTR p_fileName) try {
  const std::optional<WideString> path = Expand(p_fileName);
  const auto remove = pathOperations.Kernel().DeleteFileW;
  if (!path || !policy.IsWritableDataPath(path->c_str(), false, nullptr) || remove == nullptr) return E_FAIL;
  return ResultOf(remove(path->c_str()));
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerRemoveDirectory(BSTR p_dirName) try {
  const std::optional<WideString> path = Expand(p_dirName);
  const auto remove = pathOperations.Kernel().RemoveDirectoryW;
  if (!path || !policy.IsWritableDataPath(path->c_str(), false, nullptr) || remove == nullptr) return E_FAIL;
  return ResultOf(remove(path->c_str()));
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerCreateDirectory(BSTR p_dirName) try {
  const std::optional<WideString> path = Expand(p_dirName);
  const auto create = pathOperations.Kernel().CreateDirectoryW;
  if (!path || !policy.IsCreatableDirectory(path->c_str()) || create == nullptr) return E_FAIL;
  return ResultOf(create(path->c_str(), nullptr));
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerMoveFileEx(BSTR p_oldFileName, BSTR p_newFileName, LONG dwFlags) try {
  const std::optional<WideString> oldPath = Expand(p_oldFileName);
  const std::optional<WideString> newPath = Expand(p_newFileName);
  if ((dwFlags & ~kMoveFlags) != 0 || !oldPath || !newPath) return E_FAIL;
  const std::optional<uint32_t> attributes = pathOperations.Attributes(*oldPath);
  if (attributes && (*attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return E_FAIL;
  const Kernel32DllHelper& kernel32 = pathOperations.Kernel();
  if (!policy.IsWritableDataPath(oldPath->c_str(), true, nullptr) ||
      !policy.IsWritableDataPath(newPath->c_str(), true, nullptr) || kernel32.MoveFileExW == nullptr) {
    return E_FAIL;
  }
  // Held open for the length of the move, so that nobody can put a link in the target directory's place meanwhile.
  const FileHandle pin(CreateFileW(DirectoryOf(*newPath).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED | FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!pin) return E_FAIL;
  return ResultOf(kernel32.MoveFileExW(oldPath->c_str(), newPath->c_str(), static_cast<DWORD>(dwFlags)));
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerGetFileAttributesEx(BSTR p_fileName, ULONG* p_dwFileAttributes,
                                                       ULONG* p_ftCreationTimeLo, ULONG* p_ftCreationTimeHi,
                                                       ULONG* p_ftLastAccessTimeLo, ULONG* p_ftLastAccessTimeHi,
                                                       ULONG* p_ftLastWriteTimeLo, ULONG* p_ftLastWriteTimeHi,
                                                       ULONG* p_nFileSizeLo, ULONG* p_nFileSizeHi) try {
  const std::optional<WideString> path = Expand(p_fileName);
  for (const ULONG* out :
       {p_dwFileAttributes, p_ftCreationTimeLo, p_ftCreationTimeHi, p_ftLastAccessTimeLo, p_ftLastAccessTimeHi,
        p_ftLastWriteTimeLo, p_ftLastWriteTimeHi, p_nFileSizeLo, p_nFileSizeHi}) {
    if (out == nullptr) return E_INVALIDARG;
  }
  if (!path) return E_INVALIDARG;
  const auto ask = pathOperations.Kernel().GetFileAttributesExW;
  if (ask == nullptr) return E_FAIL;
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!ask(path->c_str(), GetFileExInfoStandard, &data)) return LastErrorResult();
  *p_dwFileAttributes = data.dwFileAttributes;
  *p_ftCreationTimeLo = data.ftCreationTime.dwLowDateTime;
  *p_ftCreationTimeHi = data.ftCreationTime.dwHighDateTime;
  *p_ftLastAccessTimeLo = data.ftLastAccessTime.dwLowDateTime;
  *p_ftLastAccessTimeHi = data.ftLastAccessTime.dwHighDateTime;
  *p_ftLastWriteTimeLo = data.ftLastWriteTime.dwLowDateTime;
  *p_ftLastWriteTimeHi = data.ftLastWriteTime.dwHighDateTime;
  *p_nFileSizeLo = data.nFileSizeLow;
  *p_nFileSizeHi = data.nFileSizeHigh;
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerFindFirstFile(BSTR p_searchPath, BSTR* p_fileLeafName, ULONG* p_fileAttrs,
                                                 ULONG* p_findCookie) try {
  if (p_searchPath == nullptr || p_fileLeafName == nullptr || p_fileAttrs == nullptr || p_findCookie == nullptr) {
    return E_INVALIDARG;
  }
  const std::optional<WideString> path = Expand(p_searchPath);
  if (!path) return E_INVALIDARG;
  const Kernel32DllHelper& kernel32 = pathOperations.Kernel();
  if (kernel32.FindFirstFileW == nullptr || kernel32.FindNextFileW == nullptr) return E_FAIL;
  if (!policy.IsSearchablePath(path->c_str())) return E_ACCESSDENIED;
  WIN32_FIND_DATAW entry = {};
  const HANDLE search = kernel32.FindFirstFileW(path->c_str(), &entry);
  if (search == nullptr || search == INVALID_HANDLE_VALUE) return LastErrorResult();
  uint32_t cookie = 0;
  // Without a cookie the search stays open until the process ends. Memory has run out by then.
  if (!cookies.AddFileCookie(reinterpret_cast<intptr_t>(search), cookie, false, nullptr, nullptr)) return E_FAIL;
  *p_findCookie = cookie;
  return GiveEntry(entry, p_fileLeafName, p_fileAttrs);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerFindNextFile(ULONG p_findCookie, BSTR* p_fileLeafName, ULONG* p_fileAttrs) {
  intptr_t search = kNoHandle;
  if (!cookies.ResolveRawHandle(p_findCookie, search) || p_fileLeafName == nullptr || p_fileAttrs == nullptr) {
    return E_INVALIDARG;
  }
  const auto findNext = pathOperations.Kernel().FindNextFileW;
  if (findNext == nullptr) return E_FAIL;
  // A search handle is memory of the platform's, which it reads unasked: a file's handle would take the server down.
  if (cookies.FindCookie(p_findCookie)->filePath) return HresultFromError(ERROR_INVALID_HANDLE);
  WIN32_FIND_DATAW entry = {};
  if (!findNext(ToHandle(search), &entry)) return LastErrorResult();
  return GiveEntry(entry, p_fileLeafName, p_fileAttrs);
}

// The cookie goes whatever it stands for; one of a file leaves its handle open, and FindClose says what it makes of it.
HRESULT CoLumenBrokerServer::BrokerFindClose(ULONG p_findCookie) {
  intptr_t search = kNoHandle;
  if (!cookies.ResolveRawHandle(p_findCookie, search)) return E_INVALIDARG;
  (void)cookies.FreeCookie(p_findCookie);
  return ResultOf(FindClose(ToHandle(search)));  // handle-check: the platform's answer is the method's
}

HRESULT CoLumenBrokerServer::BrokerIsWritablePath(BSTR p_path, LONG p_alsoCheckExtension) try {
  const std::optional<WideString> path = Expand(p_path);
  const bool writable = path && policy.IsWritableDataPath(path->c_str(), p_alsoCheckExtension == 1, nullptr);
  return writable ? S_OK : E_FAIL;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerDeleteBrowsingHistory(BSTR pRootPathName) try {
  const std::optional<WideString> root = Expand(pRootPathName);
  if (!root || !policy.IsCreatableDirectory(root->c_str())) return E_FAIL;
  WideString history = *root + L"\\#SharedObjects";
  const BString directory{WideView(history)};
  history.push_back(0);  // the shell takes a list of paths
  SHFILEOPSTRUCTW operation = {};
  operation.wFunc = FO_DELETE;
  operation.pFrom = history.c_str();
  operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;
  const int deleted = SHFileOperationW(&operation);
  (void)BrokerCreateDirectory(directory.Get());  // there again, and empty
  return SASM::IsDeleteSuccess(deleted) ? S_OK : E_FAIL;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}
