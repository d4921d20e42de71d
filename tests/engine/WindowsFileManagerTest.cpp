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
  [[nodiscard]] std::string At(const char* below) const { return ToUtf8(tree.Path()) + below; }
  void Write(const char* below, size_t bytes, uint32_t ageInSeconds = 0) const {
    const WideString path = FromUtf8(At(below));
    testing_files::WriteWhole(path, std::string(bytes, 'x'));
    ULARGE_INTEGER written = {};
    GetSystemTimeAsFileTime(reinterpret_cast<FILETIME*>(&written));
    written.QuadPart -= ageInSeconds * 10000000ULL;
    const FILETIME time = {written.LowPart, written.HighPart};
    const FileHandle file(CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
  }
  [[nodiscard]] bool Exists(const char* below) const { return testing_files::Exists(FromUtf8(At(below))); }

  ComInitializer apartment;
  testing_files::CleanDirectory tree{L"C:\\file manager \x00E4\x4E2D"};
  SASM::WindowsFileManager manager;
};

TEST_F(FileManager, MakesMeasuresListsAndDeletesATree) {
  EXPECT_TRUE(manager.CreateChildDirectory(At("").c_str(), "sub"));
  EXPECT_TRUE(manager.CreateChildDirectory(At("").c_str(), "sub")) << "one that is there";
  EXPECT_FALSE(manager.CreateChildDirectory(At("\\none").c_str(), "sub"));
  Write("\\b.sol", 3);
  Write("\\a \xC3\xA4.sol", 5);
  Write("\\sub\\c", 7);
  const std::pair<const char*, uint64_t> sizes[] = {{"", 15}, {"\\b.sol", 3}, {"\\none", 0}};
  for (const auto& [below, size] : sizes) EXPECT_EQ(manager.GetPathSize(At(below).c_str()), size) << below;

  SASM::StringVector names(SASM::FileManager::kListingCapacity);
  EXPECT_TRUE(manager.ListDirectory(At("").c_str(), names));
  std::string found;
  for (uint32_t i = 0; i < names.Count(); ++i) found += names.TextAt(i) + std::string("|");
  EXPECT_EQ(found, "a \xC3\xA4.sol|b.sol|sub|");
  EXPECT_FALSE(manager.ListDirectory(At("\\none").c_str(), names));

  for (const char* const below : {"\\b.sol", "\\b.sol", ""}) {  // what is not there counts as deleted
    EXPECT_TRUE(manager.DeletePath(At(below).c_str())) << below;
    EXPECT_FALSE(Exists(below)) << below;
  }
}

TEST_F(FileManager, ExpiresByAgeTakesEmptiedDirectoriesAndNeverEntersALink) {
  const testing_files::CleanDirectory outside(L"C:\\file manager outside");
  testing_files::WriteWhole(outside.Path() + L"\\kept", "xyz");
  testing_files::MakeLink(outside.Path(), tree.Path(), L"link");
  EXPECT_EQ(manager.GetPathSize(At("").c_str()), 0u);
  for (const char* const folder : {"old", "mixed"}) {
    ASSERT_TRUE(manager.CreateChildDirectory(At("").c_str(), folder));
    Write(("\\" + std::string(folder) + "\\middle").c_str(), 1, 500);
  }
  Write("\\ancient", 1, 5000);
  Write("\\mixed\\now", 1);
  EXPECT_TRUE(manager.ExpireFiles(At("").c_str(), 300, 1000));
  for (const char* const kept : {"\\ancient", "\\mixed\\now"}) EXPECT_TRUE(Exists(kept)) << kept;
  for (const char* const gone : {"\\old", "\\mixed\\middle"}) EXPECT_FALSE(Exists(gone)) << gone;
  EXPECT_FALSE(manager.ExpireFiles(At("\\none").c_str(), 0, 1000));
  EXPECT_TRUE(manager.ExpireFiles(At("").c_str(), 0, UINT32_MAX));
  EXPECT_TRUE(testing_files::Exists(outside.Path() + L"\\kept"));
  testing_files::RemoveLink(tree.Path(), L"link");
}

TEST_F(FileManager, LocationsAreFoundOnceAndKept) {
  const std::string roaming = ToUtf8(FolderPath(ShellFolder::RoamingAppData).value_or(L""));
  const char* const first = manager.GetPlayerDataPath();
  EXPECT_EQ(first, roaming + "\\Halcyonics\\Lumen Player");
  EXPECT_EQ(SASM::WindowsFileManager().GetPlayerDataPath(), first);
  EXPECT_EQ(manager.GetAssetCachePath(), roaming + "\\Corva\\Lumen Player\\AssetCache");
  EXPECT_EQ(manager.GetCacheDirectoryPath(), roaming + "\\Corva\\Lumen Player\\CLCache");
  EXPECT_EQ(manager.GetPrivateDataPath(), roaming + "\\Corva\\Lumen Player\\CPSPrivateData2");
}

}  // namespace
