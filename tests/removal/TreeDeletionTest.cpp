// Deletion on real trees, small and large, with links in them.
#include "removal/TreeDeletion.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/ImportHook.h"
#include "tests/support/RealLinks.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Texts.h"

namespace {

using testing_files::Exists;
using testing_files::MakeDirectories;

constexpr wchar_t kRoot[] = L"C:\\tree-test";
constexpr uint32_t kHour = 3600;

WideString At(const wchar_t* below) {
  return WideString(kRoot) + below;
}

// A file that was last written some seconds ago; a negative age lies ahead.
void MakeFile(const WideString& path, int64_t age) {
  const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  FILETIME time = {};
  GetSystemTimeAsFileTime(&time);
  ULARGE_INTEGER value = {};
  value.LowPart = time.dwLowDateTime;
  value.HighPart = time.dwHighDateTime;
  value.QuadPart -= static_cast<uint64_t>(age * 10'000'000);
  time = {value.LowPart, value.HighPart};
  ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
}

// What the machine was asked to do happens by itself; true once `path` is there, or gone.
bool Await(const WideString& path, bool there) {
  const ULONGLONG start = GetTickCount64();
  while (Exists(path) != there) {
    if (GetTickCount64() - start > 20000) return false;
    SwitchToThread();
  }
  return true;
}

// Windows removes a link as such. Wine says so and leaves it there, as it would have to be unlinked rather than
// removed as a directory; the machine does it in its place.
decltype(&RemoveDirectoryW) g_remove = nullptr;
BOOL WINAPI Remove(LPCWSTR path) {
  if ((GetFileAttributesW(path) & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return g_remove(path);
  const WideString whole = path;
  const size_t slash = whole.rfind(L'\\');
  testing_files::RemoveLink(whole.substr(0, slash), whole.substr(slash + 1));
  return Await(whole, false);
}

// 10,000 files in 100 directories of two levels; those of the directories with an even number are two hours old.
void MakeLargeTree() {
  for (int i = 0; i < 100; ++i) {
    const WideString folder = At(L"\\d") + WidenAscii(std::to_string(i % 10)) + L"\\e" + WidenAscii(std::to_string(i));
    MakeDirectories(folder);
    for (int j = 0; j < 100; ++j) {
      const WideString path = folder + L"\\f" + WidenAscii(std::to_string(j));
      MakeFile(path, i % 2 == 0 ? 2 * kHour : 0);
    }
  }
}

// A directory that is removed by the machine: the shell's own deletion follows links here, and so must not meet any.
class OutsideCleaned {
 public:
  explicit OutsideCleaned(const wchar_t* path) : path_(path) {
    Remove();
    MakeDirectories(path_);
  }
  ~OutsideCleaned() { Remove(); }
  OutsideCleaned(const OutsideCleaned&) = delete;
  OutsideCleaned& operator=(const OutsideCleaned&) = delete;
  [[nodiscard]] const WideString& Path() const { return path_; }

 private:
  void Remove() const {
    if (!Exists(path_)) return;
    testing_files::RunOutside(L"/bin/rm -rf \"" + testing_files::OutsidePath(path_) + L"\"");
    EXPECT_TRUE(Await(path_, false));
  }
  WideString path_;
};

class TreeDeletion : public testing::Test {
 protected:
  const OutsideCleaned folder{kRoot};
  const OutsideCleaned outside{L"C:\\tree-outside"};
};

}  // namespace

TEST_F(TreeDeletion, ByAgeKeepsWhatIsYoungerOrOlderAndItsFolders) {
  MakeDirectories(At(L"\\old"));
  MakeDirectories(At(L"\\mixed\\deep"));
  MakeDirectories(At(L"\\empty"));
  MakeFile(At(L"\\old\\a"), 2 * kHour);
  MakeFile(At(L"\\mixed\\deep\\a"), 2 * kHour);
  MakeFile(At(L"\\mixed\\young"), kHour / 2);
  MakeFile(At(L"\\ancient"), 100 * kHour);
  MakeFile(At(L"\\ahead"), -2 * static_cast<int64_t>(kHour));
  bool emptied = true;
  EXPECT_TRUE(DeleteFilesByAge(kRoot, kHour, 50 * kHour, &emptied));
  EXPECT_FALSE(emptied);
  for (const wchar_t* gone : {L"\\old", L"\\mixed\\deep", L"\\empty"}) EXPECT_FALSE(Exists(At(gone))) << ToUtf8(gone);
  for (const wchar_t* kept : {L"\\mixed\\young", L"\\ancient", L"\\ahead"}) {
    EXPECT_TRUE(Exists(At(kept))) << ToUtf8(kept);
  }
}

TEST_F(TreeDeletion, ByAgeTellsWhenNothingIsLeft) {
  MakeDirectories(At(L"\\sub"));
  MakeFile(At(L"\\sub\\a"), 2 * kHour);
  bool emptied = false;
  EXPECT_TRUE(DeleteFilesByAge(kRoot, 0, 50 * kHour, &emptied));
  EXPECT_TRUE(emptied);
  EXPECT_TRUE(Exists(kRoot)) << "the directory itself stays";
  MakeFile(At(L"\\r\xE9sum\xE9"), 2 * kHour);
  EXPECT_TRUE(DeleteFilesByAgeUtf8("C:\\tree-test", kHour, 50 * kHour));
  EXPECT_FALSE(Exists(kRoot)) << "but not by the UTF-8 form";
  EXPECT_FALSE(DeleteFilesByAgeUtf8("C:\\tree-test", kHour, 50 * kHour));
  emptied = true;
  EXPECT_FALSE(DeleteFilesByAge(kRoot, kHour, 50 * kHour, &emptied));
  EXPECT_TRUE(emptied) << "no answer without a search";
}

TEST_F(TreeDeletion, ByAgeFailuresStayWhereTheyHappen) {
  MakeDirectories(At(L"\\a"));
  MakeDirectories(At(L"\\b"));
  MakeFile(At(L"\\a\\held"), 2 * kHour);
  MakeFile(At(L"\\a\\fixed"), 2 * kHour);
  MakeFile(At(L"\\b\\free"), 2 * kHour);
  SetFileAttributesW(At(L"\\a\\fixed").c_str(), FILE_ATTRIBUTE_READONLY);
  bool emptied = true;
  {
    const FileHandle held(CreateFileW(At(L"\\a\\held").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(DeleteFilesByAgeUtf8("C:\\tree-test", kHour, 50 * kHour));
    EXPECT_TRUE(Exists(At(L"\\a\\held")));
  }
  EXPECT_TRUE(Exists(At(L"\\a\\fixed")));
  EXPECT_FALSE(Exists(At(L"\\b")));
  SetFileAttributesW(At(L"\\a\\fixed").c_str(), FILE_ATTRIBUTE_NORMAL);
  const ImportHook noTime(
      GetModuleHandleW(nullptr), "SystemTimeToFileTime", +[](const SYSTEMTIME*, FILETIME*) -> BOOL { return FALSE; });
  EXPECT_FALSE(DeleteFilesByAge(kRoot, kHour, 50 * kHour, &emptied));
}

TEST_F(TreeDeletion, LinksAreRemovedAndNotFollowed) {
  g_remove = &RemoveDirectoryW;
  const ImportHook remove(GetModuleHandleW(nullptr), "RemoveDirectoryW", &Remove);
  const auto prepare = [this] {
    MakeDirectories(At(L"\\sub"));
    MakeFile(outside.Path() + L"\\precious", 2 * kHour);
    testing_files::MakeLink(outside.Path(), At(L"\\sub"), L"link");
    ASSERT_TRUE(Await(At(L"\\sub\\link"), true));
    ASSERT_NE(GetFileAttributesW(At(L"\\sub\\link").c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0u);
    ASSERT_TRUE(Exists(At(L"\\sub\\link\\precious")));
  };
  prepare();
  bool emptied = false;
  EXPECT_TRUE(DeleteFilesByAge(kRoot, kHour, 50 * kHour, &emptied));
  EXPECT_TRUE(emptied);
  EXPECT_FALSE(Exists(At(L"\\sub")));
  EXPECT_TRUE(Exists(outside.Path() + L"\\precious"));
  prepare();
  EXPECT_TRUE(DeleteTree(At(L"\\sub\\link").c_str())) << "nor where one stands for the tree";
  EXPECT_TRUE(Exists(outside.Path() + L"\\precious"));
  prepare();
  EXPECT_TRUE(DeleteTree(kRoot));
  EXPECT_FALSE(Exists(kRoot));
  EXPECT_TRUE(Exists(outside.Path() + L"\\precious"));
}

TEST_F(TreeDeletion, AWholeTreeGoesUnlessAFileIsHeld) {
  MakeDirectories(At(L"\\a\\b\\c"));
  MakeDirectories(At(L"\\z"));
  MakeFile(At(L"\\a\\b\\c\\file"), 0);
  MakeFile(At(L"\\file"), -60);
  {
    const FileHandle held(
        CreateFileW(At(L"\\a\\b\\c\\file").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_FALSE(DeleteTree(kRoot));
  }
  EXPECT_TRUE(Exists(At(L"\\a\\b\\c\\file")));
  EXPECT_FALSE(Exists(At(L"\\z"))) << "the rest went";
  EXPECT_FALSE(Exists(At(L"\\file")));
  EXPECT_TRUE(DeleteTree(kRoot));
  EXPECT_FALSE(Exists(kRoot));
  EXPECT_FALSE(DeleteTree(kRoot)) << "it is not there";
  EXPECT_FALSE(DeleteTree((WideString(L"C:\\") + WideString(300, L'x')).c_str()));
}

TEST_F(TreeDeletion, WhatLiesTooDeepStays) {
  const WideString root = WideString(L"\\\\?\\") + kRoot;
  WideString deep = root;
  for (int i = 0; i < 140; ++i) {
    deep += L"\\d";
    ASSERT_TRUE(CreateDirectoryW(deep.c_str(), nullptr));
  }
  EXPECT_FALSE(DeleteTree(kRoot));
  bool emptied = true;
  EXPECT_TRUE(DeleteFilesByAge(root.c_str(), 0, kHour, &emptied)) << "whose paths may be longer";
  EXPECT_FALSE(emptied);
  EXPECT_TRUE(Exists(root + WideString(deep.substr(root.size(), 262)))) << "131 levels";
}

TEST_F(TreeDeletion, TenThousandFiles) {
  MakeLargeTree();
  bool emptied = true;
  EXPECT_TRUE(DeleteFilesByAge(kRoot, kHour, 50 * kHour, &emptied));
  EXPECT_FALSE(emptied);
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(Exists(At(L"\\d") + WidenAscii(std::to_string(i))), i % 2 == 1);
  }
  EXPECT_TRUE(DeleteTree(kRoot));
  EXPECT_FALSE(Exists(kRoot));
}

TEST_F(TreeDeletion, NoPathIsNoTree) {
  bool emptied = true;
  EXPECT_FALSE(DeleteTree(L"")) << "the root of the current drive, to the platform";
  EXPECT_FALSE(DeleteTree(nullptr));
  EXPECT_FALSE(DeleteFilesByAge(L"", kHour, 50 * kHour, &emptied));
  EXPECT_FALSE(DeleteFilesByAge(nullptr, kHour, 50 * kHour, &emptied));
  EXPECT_FALSE(DeleteFilesByAgeUtf8("", kHour, 50 * kHour));
}
