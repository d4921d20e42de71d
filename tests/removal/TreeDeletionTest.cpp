// Deletion on real trees with links in them; bench/TreeDeletionBench.cpp has the large ones.
#include "removal/TreeDeletion.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>

#include "tests/support/ImportHook.h"
#include "tests/support/RealLinks.h"
#include "tests/support/TestFiles.h"

namespace {

using testing_files::Exists;
using testing_files::MakeDirectories;

constexpr wchar_t kRoot[] = L"C:\\tree-test";
constexpr uint32_t kHour = 3600;

WideString At(const wchar_t* below) {
  return WideString(kRoot) + below;
}

// A negative age lies ahead.
void MakeFile(const WideString& path, int64_t hours) {
  MakeDirectories(path.substr(0, path.rfind(L'\\')));
  testing_files::MakeAgedFile(path, hours * kHour);
}

FileHandle Hold(const wchar_t* below) {
  return FileHandle(CreateFileW(At(below).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

// Windows removes a link as such. Wine says so and leaves it there, as it would have to be unlinked rather than
// removed as a directory; the machine does it in its place.
auto* const g_remove = Own<decltype(RemoveDirectoryW)>(L"kernel32.dll", "RemoveDirectoryW");
BOOL WINAPI Remove(LPCWSTR path) {
  if ((GetFileAttributesW(path) & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return g_remove(path);
  const WideString whole = path;
  const size_t slash = whole.rfind(L'\\');
  testing_files::RemoveLink(whole.substr(0, slash), whole.substr(slash + 1));
  return !Exists(whole);
}

// The directory is removed by the machine: the shell's own deletion follows links here, and so must not meet any.
class TreeDeletion : public testing::Test {
 protected:
  TreeDeletion() {
    Clean();
    MakeDirectories(kRoot);
  }
  ~TreeDeletion() override { Clean(); }
  // Not for nothing: what runs outside may end later, and would then take the next test's directory.
  static void Clean() {
    if (!Exists(kRoot)) return;
    testing_files::RunOutside(L"/bin/rm -rf \"" + testing_files::OutsidePath(L"C:\\") + L"/tree-test\"");
    testing_files::WaitUntilListed(L"C:", L"tree-test", false);
  }
  static bool DeleteByAge(bool* emptied) { return DeleteFilesByAge(kRoot, kHour, 50 * kHour, emptied); }
  static bool DeleteByAgeUtf8() { return DeleteFilesByAgeUtf8("C:\\tree-test", kHour, 50 * kHour); }
};

}  // namespace

TEST_F(TreeDeletion, ByAgeKeepsWhatIsYoungerOrOlderOrHeldAndItsFolders) {
  MakeDirectories(At(L"\\empty"));
  const std::pair<const wchar_t*, int64_t> files[] = {
      {L"\\old\\a", 2},     {L"\\mixed\\deep\\a", 2}, {L"\\mixed\\young", 0}, {L"\\ancient", 100},
      {L"\\future\\a", -2}, {L"\\held\\a", 2},        {L"\\fixed\\a", 2}};
  for (const auto& [path, hours] : files) MakeFile(At(path), hours);
  SetFileAttributesW(At(L"\\fixed\\a").c_str(), FILE_ATTRIBUTE_READONLY);
  bool emptied = true;
  {
    const FileHandle held = Hold(L"\\held\\a");
    EXPECT_TRUE(DeleteByAge(&emptied));
  }
  EXPECT_FALSE(emptied);
  for (const wchar_t* gone : {L"\\old", L"\\mixed\\deep", L"\\empty"}) EXPECT_FALSE(Exists(At(gone))) << ToUtf8(gone);
  for (const wchar_t* kept : {L"\\mixed\\young", L"\\ancient", L"\\future\\a", L"\\held\\a", L"\\fixed\\a"}) {
    EXPECT_TRUE(Exists(At(kept))) << ToUtf8(kept);
  }
}

TEST_F(TreeDeletion, ByAgeTellsWhenNothingIsLeft) {
  MakeFile(At(L"\\sub\\a"), 2);
  bool emptied = false;
  EXPECT_TRUE(DeleteByAge(&emptied));
  EXPECT_TRUE(emptied);
  EXPECT_TRUE(Exists(kRoot)) << "the directory itself stays";
  MakeFile(At(L"\\r\xE9sum\xE9"), 2);
  EXPECT_TRUE(DeleteByAgeUtf8());
  EXPECT_FALSE(Exists(kRoot)) << "but not by the UTF-8 form";
  EXPECT_FALSE(DeleteByAgeUtf8());
  EXPECT_FALSE(DeleteByAge(&emptied));
}

TEST_F(TreeDeletion, LinksAreRemovedAndNotFollowed) {
  const testing_files::CleanDirectory outside(L"C:\\tree-outside");
  const WideString precious = outside.Path() + L"\\precious";
  MakeFile(precious, 2);
  const ImportHook remove(GetModuleHandleW(nullptr), "RemoveDirectoryW", &Remove);
  bool emptied = false;
  const std::function<bool()> deletions[] = {[&] { return DeleteByAge(&emptied) && emptied; },
                                             [] { return DeleteTree(At(L"\\sub\\link").c_str()); },
                                             [] { return DeleteTree(kRoot); }};
  for (const auto& deletion : deletions) {
    MakeDirectories(At(L"\\sub"));
    testing_files::MakeLink(outside.Path(), At(L"\\sub"), L"link");
    ASSERT_TRUE(Exists(At(L"\\sub\\link\\precious")));
    EXPECT_TRUE(deletion());
    ASSERT_FALSE(Exists(At(L"\\sub\\link")));
    EXPECT_TRUE(Exists(precious));
  }
  EXPECT_FALSE(Exists(kRoot));
}

TEST_F(TreeDeletion, AWholeTreeGoesUnlessAFileIsHeld) {
  for (const wchar_t* const path : {L"\\a\\b\\c\\file", L"\\z\\file", L"\\file"}) MakeFile(At(path), 0);
  {
    const FileHandle held = Hold(L"\\a\\b\\c\\file");
    EXPECT_FALSE(DeleteTree(kRoot));
  }
  EXPECT_TRUE(Exists(At(L"\\a\\b\\c\\file")));
  EXPECT_FALSE(Exists(At(L"\\z")) || Exists(At(L"\\file"))) << "the rest went";
  EXPECT_TRUE(DeleteTree(kRoot));
  EXPECT_FALSE(Exists(kRoot));
  EXPECT_FALSE(DeleteTree(kRoot)) << "it is not there";
  EXPECT_FALSE(DeleteTree((WideString(L"C:\\") + WideString(300, L'x')).c_str()));
  bool emptied = true;
  for (const wchar_t* const path : {L"", static_cast<const wchar_t*>(nullptr)}) {
    EXPECT_FALSE(DeleteTree(path)) << "the root of the current drive, to the platform";
    EXPECT_FALSE(DeleteFilesByAge(path, kHour, 50 * kHour, &emptied));
  }
}
