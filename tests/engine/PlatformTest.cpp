// Locations, run-time libraries and registry values on the real platform.
#include <windows.h>

#include <gtest/gtest.h>

#include "engine/DllHelpers.h"
#include "engine/Registry.h"
#include "engine/SystemPaths.h"
#include "engine/WindowsFileManager.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestFiles.h"

namespace {

constexpr const char* kTestKey = "Software\\Lumen platform test";

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

HRESULT WINAPI NoFolder(HWND, int, HANDLE, DWORD, LPWSTR) {
  return E_FAIL;
}
UINT WINAPI NoDirectory(LPWSTR, UINT) {
  return 0;
}
TEST(SystemPaths, FoldersThatAreMissing) {
  EXPECT_EQ(GetPlayerRoots(true), FolderPath(ShellFolder::LocalAppData));
  EXPECT_EQ(GetSystem32PathNarrow().value_or(""), "C:\\windows\\system32");
  const ImportHook noWow64(GetModuleHandleW(nullptr), "GetSystemWow64DirectoryW", NoDirectory);
  EXPECT_EQ(ToUtf8(SystemConfigPath().value_or(L"")), "C:\\windows\\system32\\Halcyons\\Lumen\\hms.cfg");
  const ImportHook noFolder(GetModuleHandleW(nullptr), "SHGetFolderPathW", NoFolder);
  constexpr const char* kFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
  EXPECT_EQ(ToUtf8(GetPlayerRoots(false).value_or(L"")),
            ReadText(HKEY_CURRENT_USER, kFolders, "AppData").value_or("missing"));
  EXPECT_FALSE(ProductDirectory().has_value());
}

class Missing final : public DynamicLoadLibraryHelper {
 public:
  Missing(const char* name, bool required) : DynamicLoadLibraryHelper(name, required, true) {}
  void Require(const char* name) { Bind(function, name); }
  DWORD(WINAPI* function)() = nullptr;
};

TEST(DllHelpers, WhatIsThereAndWhatIsNot) {
  Missing present("kernel32.dll", true);
  EXPECT_TRUE(present.IsAvailable());
  present.Require("No function of this name");
  present.Require("GetCurrentProcessId");
  EXPECT_EQ(present.function(), GetCurrentProcessId()) << "what resolves stays usable";
  EXPECT_FALSE(present.IsAvailable()) << "and one missing function is remembered";
  EXPECT_TRUE(Missing("lumen-no-such-library.dll", false).IsAvailable());
  EXPECT_FALSE(Missing("lumen-no-such-library.dll", true).IsAvailable());
}

TEST(DllHelpers, ABareNameIsLookedForInTheSystemFolderOnly) {
  const WideString library = testing_files::Beside(L"lumen-stray.dll");
  ASSERT_TRUE(CopyFileW(L"C:\\windows\\system32\\version.dll", library.c_str(), FALSE));
  EXPECT_EQ(LoadSystemLibrary(L"lumen-stray.dll"), nullptr) << "beside the program it would be found by the search";
  const LibraryHandle byPath(LoadSystemLibrary(library.c_str()));
  EXPECT_TRUE(byPath.IsValid());
  DeleteFileW(library.c_str());
}

TEST(Registry, ValuesAreReadAsWhatTheyAre) {
  const RegistryKey key = CreateKey(HKEY_CURRENT_USER, kTestKey, KEY_ALL_ACCESS);
  EXPECT_EQ(WriteNumber(key.Get(), "number", 0xFFFFFFFE), 0);
  EXPECT_EQ(WriteText(key.Get(), nullptr, "default"), 0);
  RegSetValueExA(key.Get(), "unterminated", 0, REG_SZ, reinterpret_cast<const BYTE*>("abcd"), 3);
  RegSetValueExA(key.Get(), "empty", 0, REG_SZ, nullptr, 0);
  const std::tuple<const char*, std::optional<std::string>, std::optional<uint32_t>> rows[] = {
      {nullptr, "default", {}}, {"unterminated", "abc", {}}, {"empty", "", {}}, {"number", {}, 0xFFFFFFFE}};
  for (const auto& [name, text, number] : rows) {
    EXPECT_EQ(ReadText(key.Get(), name), text);
    EXPECT_EQ(ReadNumber(key.Get(), name), number);
  }
  EXPECT_EQ(DeleteKeyTree(HKEY_CURRENT_USER, FromUtf8(kTestKey).c_str()), 0);
}

}  // namespace
