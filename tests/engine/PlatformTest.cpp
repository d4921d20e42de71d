// The system configuration and run-time libraries on the real platform.
#include <windows.h>

#include <gtest/gtest.h>

#include "engine/DllHelpers.h"
#include "engine/SystemPaths.h"
#include "engine/WindowsFileManager.h"
#include "tests/support/TestFiles.h"

namespace {

TEST(SystemConfiguration, IsReadFromThe32BitSystemDirectory) {
  const WideString path = SystemConfigPath().value_or(L"");
  EXPECT_EQ(ToUtf8(path), "C:\\windows\\syswow64\\Halcyons\\Lumen\\hms.cfg");
  testing_files::MakeDirectories(path.substr(0, path.rfind(L'\\')));
  const std::pair<std::string, bool> rows[] = {{"enablelocalappdata=1", false},
                                               {std::string(100000, '#') + "\nEnableLocalAppData=t", true}};
  for (const auto& [text, local] : rows) {
    testing_files::WriteWhole(path, text);
    EXPECT_EQ(SASM::WindowsFileManager().EnableLocalAppData(), local) << text.size();
  }
  DeleteFileW(path.c_str());
  EXPECT_EQ(ReadSystemConfig().GetState(), SystemConfigFile::State::Absent);
  EXPECT_FALSE(SASM::WindowsFileManager().EnableLocalAppData());
}

TEST(DllHelpers, ABareNameIsLookedForInTheSystemFolderOnly) {
  const WideString library = testing_files::Beside(L"lumen-stray.dll");
  ASSERT_TRUE(CopyFileW(L"C:\\windows\\system32\\version.dll", library.c_str(), FALSE));
  EXPECT_EQ(LoadSystemLibrary(L"lumen-stray.dll"), nullptr) << "beside the program it would be found by the search";
  const LibraryHandle byPath(LoadSystemLibrary(library.c_str()));
  EXPECT_TRUE(byPath.IsValid());
  DeleteFileW(library.c_str());
}

}  // namespace
