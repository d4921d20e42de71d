// The file manager on real files, trees and links.
#include "engine/WindowsFileManager.h"

#include <gtest/gtest.h>

#include "engine/ComSupport.h"
#include "engine/Handles.h"
#include "engine/SystemPaths.h"
#include "tests/support/RealLinks.h"
#include "tests/support/TestFiles.h"

namespace {

class FileManager : public testing::Test {
 protected:
  // Below the directory of the test; UTF-8 as the file manager takes it.
  [[nodiscard]] std::string At(const std::string& below) const { return ToUtf8(tree.Path()) + below; }
  // Written `age` seconds ago.
  void Write(const char* below, size_t bytes, uint32_t age = 0) const {
    const WideString path = FromUtf8(At(below));
    testing_files::WriteWhole(path, std::string(bytes, 'x'));
    ULARGE_INTEGER written = {};
    GetSystemTimeAsFileTime(reinterpret_cast<FILETIME*>(&written));
    written.QuadPart -= age * 10'000'000ULL;
    const FILETIME time = {written.LowPart, written.HighPart};
    const FileHandle file(CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
  }
  std::string Listed(const std::string& below = "") {
    SASM::StringVector names(SASM::FileManager::kListingCapacity);
    if (!manager.ListDirectory(At(below).c_str(), names)) return "(none)";
    std::string found;
    for (uint32_t i = 0; i < names.Count(); ++i) found += names.TextAt(i) + std::string("|");
    return found;
  }

  ComInitializer apartment;
  testing_files::CleanDirectory tree{L"C:\\file manager \x00E4\x4E2D"};
  SASM::WindowsFileManager manager;
};

TEST_F(FileManager, MakesMeasuresListsExpiresAndDeletesATree) {
  const testing_files::CleanDirectory outside(L"C:\\file manager outside");
  testing_files::WriteWhole(outside.Path() + L"\\kept", "xyz");
  testing_files::MakeLink(outside.Path(), tree.Path(), L"link");
  for (const char* const name : {"sub", "sub", "old"}) EXPECT_TRUE(manager.CreateChildDirectory(At("").c_str(), name));
  EXPECT_FALSE(manager.CreateChildDirectory(At("\\none").c_str(), "sub"));
  Write("\\b.sol", 3, 5000);
  Write("\\a \xC3\xA4.sol", 5);
  Write("\\sub\\c", 7, 500);
  Write("\\sub\\d", 1);
  Write("\\old\\e", 1, 500);
  const std::pair<const char*, uint64_t> sizes[] = {{"", 17}, {"\\b.sol", 3}, {"\\none", 0}};  // the link's is no part
  for (const auto& [below, size] : sizes) EXPECT_EQ(manager.GetPathSize(At(below).c_str()), size) << below;
  EXPECT_EQ(Listed("\\none"), "(none)");

  EXPECT_FALSE(manager.ExpireFiles(At("\\none").c_str(), 0, 1000));
  EXPECT_TRUE(manager.ExpireFiles(At("").c_str(), 300, 1000));
  EXPECT_EQ(Listed() + Listed("\\sub"), "a \xC3\xA4.sol|b.sol|link|sub|d|") << "emptied directories go too";
  EXPECT_TRUE(manager.ExpireFiles(At("").c_str(), 0, UINT32_MAX));
  testing_files::RemoveLink(tree.Path(), L"link");
  EXPECT_TRUE(testing_files::Exists(outside.Path() + L"\\kept"));
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(manager.DeletePath(At("").c_str())) << "what is not there counts as deleted";
  EXPECT_FALSE(testing_files::Exists(tree.Path()));
}

}  // namespace
