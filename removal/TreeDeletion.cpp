#include "removal/TreeDeletion.h"

#include <windows.h>

#include <new>
#include <optional>

#include "engine/Handles.h"
#include "engine/WideText.h"
#include "removal/FileAge.h"

namespace {

bool IsDirectory(const WIN32_FIND_DATAW& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}
bool IsLink(const WIN32_FIND_DATAW& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}
bool IsLink(const wchar_t* path) {
  const DWORD attributes = GetFileAttributesW(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}
bool IsDots(WideView name) {
  return name == L"." || name == L"..";
}

// Nesting is an attacker's to choose where paths may be long, and each level of a walk takes stack: as deep as a path
// of the platform's classic length can reach.
constexpr int kDeepestLevel = MAX_PATH / 2;

// An empty path would mean the root of whatever drive is the current one.
bool IsPath(const wchar_t* directory) {
  return directory != nullptr && directory[0] != 0;
}

uint64_t Joined(const FILETIME& time) {
  return static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

std::optional<uint64_t> Now() {
  SYSTEMTIME parts = {};
  GetSystemTime(&parts);
  FILETIME time = {};
  if (!SystemTimeToFileTime(&parts, &time)) return std::nullopt;
  return Joined(time);
}

// One limit for all levels of a walk; paths share the buffer that grows and shrinks with the level.
class AgedDeletion {
 public:
  AgedDeletion(const wchar_t* directory, uint32_t minimumAge, uint32_t maximumAge)
      : path_(directory), minimum_(minimumAge), maximum_(maximumAge) {}

  // Works on the directory that the path names. Each level has its own "now": a large tree takes its time.
  [[nodiscard]] bool Run(bool* emptied) {
    const std::optional<uint64_t> now = Now();
    if (!now) return false;
    const size_t length = path_.size();
    path_ += L"\\*";
    WIN32_FIND_DATAW entry = {};
    const FindHandle search(FindFirstFileW(path_.c_str(), &entry));
    path_.resize(length);
    if (!search) return false;
    bool all = true;
    do {
      const WideView name(entry.cFileName);
      if (IsDots(name)) continue;
      path_.append(L"\\").append(name);
      all = (IsDirectory(entry) ? RemoveSubdirectory(entry) : RemoveFile(entry, *now)) && all;
      path_.resize(length);
    } while (FindNextFileW(search.Get(), &entry));
    *emptied = all;
    return true;
  }

 private:
  [[nodiscard]] bool RemoveSubdirectory(const WIN32_FIND_DATAW& entry) {
    return (IsLink(entry) || RunBelow()) && RemoveDirectoryW(path_.c_str());
  }
  // True when nothing is left in the subdirectory.
  [[nodiscard]] bool RunBelow() {
    if (level_ == kDeepestLevel) return false;
    ++level_;
    bool emptied = false;
    const bool searched = Run(&emptied);
    --level_;
    return searched && emptied;
  }
  [[nodiscard]] bool RemoveFile(const WIN32_FIND_DATAW& entry, uint64_t now) const {
    return IsAgeWithin(now, Joined(entry.ftLastWriteTime), minimum_, maximum_) && DeleteFileW(path_.c_str());
  }

  WideString path_;
  uint32_t minimum_;
  uint32_t maximum_;
  int level_ = 0;
};

// The whole of a tree, in one buffer of the platform's classic length: what lies deeper is not reached and keeps its
// directories.
class WholeDeletion {
 public:
  // False when the directory's own path does not fit.
  [[nodiscard]] bool Enter(WideView directory) { return Append(directory); }

  bool Run() {
    const size_t length = length_;
    bool result = true;
    if (Append(L"\\*")) {
      WIN32_FIND_DATAW entry = {};
      const FindHandle search(FindFirstFileW(path_, &entry));
      Cut(length);
      if (search) {
        do {
          RemoveEntry(entry, &result);
          Cut(length);
        } while (FindNextFileW(search.Get(), &entry));
      }
    }
    return RemoveDirectoryW(path_) && result;
  }

 private:
  // A failed file shows only in its directory, which then stays; of the subdirectories the last one's result counts.
  void RemoveEntry(const WIN32_FIND_DATAW& entry, bool* result) {
    const WideView name(entry.cFileName);
    if (IsDots(name) || !Append(L"\\") || !Append(name)) return;
    if (!IsDirectory(entry)) {
      DeleteFileW(path_);
    } else {
      *result = IsLink(entry) ? RemoveDirectoryW(path_) != FALSE : Run();
    }
  }
  bool Append(WideView text) {
    if (length_ + text.size() >= MAX_PATH) return false;
    WideTraits::copy(path_ + length_, text.data(), text.size());
    length_ += text.size();
    path_[length_] = 0;
    return true;
  }
  void Cut(size_t length) {
    length_ = length;
    path_[length] = 0;
  }

  wchar_t path_[MAX_PATH] = {};
  size_t length_ = 0;
};

}  // namespace

bool DeleteFilesByAge(const wchar_t* directory, uint32_t minimumAge, uint32_t maximumAge, bool* emptied) try {
  return IsPath(directory) && AgedDeletion(directory, minimumAge, maximumAge).Run(emptied);
} catch (const std::bad_alloc&) {
  return false;
}

bool DeleteFilesByAgeUtf8(const char* directory, uint32_t minimumAge, uint32_t maximumAge) try {
  if (directory == nullptr) return false;
  const WideString wide = FromUtf8(directory);
  bool emptied = false;
  if (!DeleteFilesByAge(wide.c_str(), minimumAge, maximumAge, &emptied)) return false;
  if (emptied) RemoveDirectoryW(wide.c_str());
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

bool DeleteTree(const wchar_t* directory) {
  if (!IsPath(directory)) return false;
  // The trees are found by pattern in folders that any program of the user writes to, and deleted with more rights than
  // such a program has: a link put in a tree's place must not lead the deletion elsewhere.
  if (IsLink(directory)) return RemoveDirectoryW(directory);
  WholeDeletion deletion;
  return deletion.Enter(directory) && deletion.Run();
}
