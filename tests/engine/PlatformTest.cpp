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
UINT WINAPI LongDirectory(LPWSTR buffer, UINT size) {
  for (UINT i = 0; i + 1 < size; ++i) buffer[i] = L'd';
  buffer[size - 1] = 0;
  return size - 1;
}

TEST(SystemPaths, FoldersThatTheShellDoesNotKnowComeFromTheRegistryOrNotAtAll) {
  const WideString roaming = FolderPath(ShellFolder::RoamingAppData).value_or(L"");
  EXPECT_EQ(GetPlayerRoots(false), roaming);
  EXPECT_EQ(GetPlayerRoots(true), FolderPath(ShellFolder::LocalAppData));
  const ImportHook hook(GetModuleHandleW(nullptr), "SHGetFolderPathW", NoFolder);
  constexpr const char* kFolders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
  EXPECT_EQ(ToUtf8(GetPlayerRoots(false).value_or(L"")),
            ReadText(HKEY_CURRENT_USER, kFolders, "AppData").value_or("missing"));
  EXPECT_FALSE(ProductDirectory().has_value());
}

TEST(SystemPaths, DirectoriesThatAreMissingOrTooLong) {
  EXPECT_EQ(ToUtf8(GetSystem32Path().value_or(L"")), "C:\\windows\\system32");
  EXPECT_EQ(GetSystem32PathNarrow().value_or(""), "C:\\windows\\system32");
  {
    const ImportHook hook(GetModuleHandleW(nullptr), "GetSystemWow64DirectoryW", NoDirectory);
    EXPECT_EQ(ToUtf8(SystemConfigPath().value_or(L"")), "C:\\windows\\system32\\Halcyons\\Lumen\\hms.cfg");
    const ImportHook both(GetModuleHandleW(nullptr), "GetSystemDirectoryW", NoDirectory);
    EXPECT_FALSE(SystemConfigPath().has_value());
    EXPECT_FALSE(GetSystem32Path().has_value());
  }
  const ImportHook hook(GetModuleHandleW(nullptr), "GetSystemWow64DirectoryW", LongDirectory);
  EXPECT_FALSE(SystemConfigPath().has_value()) << "no room for the file's name";
  EXPECT_EQ(ToUtf8(DigestPath(L"C:\\S", L"pack")), "C:\\S\\bin\\pack\\digest.s");
}

class Missing final : public DynamicLoadLibraryHelper {
 public:
  Missing(const char* name, bool required) : DynamicLoadLibraryHelper(name, required, true) {
    Bind(function, "GetTickCount", false);
  }
  void Require(const char* name) { Bind(function, name); }
  DWORD(WINAPI* function)() = nullptr;
};

TEST(DllHelpers, WhatIsThereAndWhatIsNot) {
  EXPECT_TRUE(Kernel32DllHelper().IsAvailable() && User32DllHelper().IsAvailable() &&
              Advapi32DllHelper().IsAvailable() && VersionDllHelper().IsAvailable() &&
              Shell32DllHelper().IsAvailable() && Dinput8DllHelper().IsAvailable());
  EXPECT_TRUE(SrpapiDllHelper().IsAvailable() && Edpwin32DllHelper().IsAvailable()) << "they need not be there";
  Missing present("kernel32.dll", true);
  EXPECT_NE(present.function, nullptr);
  present.Require("No function of this name");
  EXPECT_FALSE(present.IsAvailable());
  present.Require("GetCurrentProcessId");
  EXPECT_EQ(present.function(), GetCurrentProcessId()) << "what resolves stays usable";
  EXPECT_FALSE(present.IsAvailable()) << "and one missing function is remembered";

  const Missing optional("lumen-no-such-library.dll", false);
  EXPECT_TRUE(optional.IsAvailable());
  EXPECT_EQ(optional.function, nullptr);
  EXPECT_FALSE(Missing("lumen-no-such-library.dll", true).IsAvailable());
  EXPECT_FALSE(Missing("..\\..\\lumen-no-such-library.dll", true).IsAvailable());
}

TEST(DllHelpers, ABareNameIsLookedForInTheSystemFolderOnly) {
  wchar_t own[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, own, MAX_PATH);
  const WideString folder = WideString(own).substr(0, WideView(own).rfind(L'\\'));
  const WideString library = folder + L"\\lumen-stray.dll";
  ASSERT_TRUE(CopyFileW(L"C:\\windows\\system32\\version.dll", library.c_str(), FALSE));
  EXPECT_EQ(LoadSystemLibrary(L"lumen-stray.dll"), nullptr) << "beside the program it would be found by the search";
  const LibraryHandle byPath(LoadSystemLibrary(library.c_str()));
  EXPECT_TRUE(byPath.IsValid());
  DeleteFileW(library.c_str());
}

TEST(Registry, ValuesAreReadAsWhatTheyAre) {
  EXPECT_EQ(DeleteKeyTree(HKEY_CURRENT_USER, FromUtf8(kTestKey).c_str()), ERROR_FILE_NOT_FOUND);
  RegistryKey key = CreateKey(HKEY_CURRENT_USER, kTestKey, KEY_ALL_ACCESS);
  EXPECT_EQ(WriteText(key.Get(), "text", "value"), 0);
  EXPECT_EQ(WriteNumber(key.Get(), "number", 0xFFFFFFFE), 0);
  EXPECT_EQ(WriteText(key.Get(), nullptr, "default"), 0);
  RegSetValueExA(key.Get(), "unterminated", 0, REG_SZ, reinterpret_cast<const BYTE*>("abcd"), 3);
  RegSetValueExA(key.Get(), "empty", 0, REG_SZ, nullptr, 0);
  const std::pair<const char*, std::optional<std::string>> rows[] = {
      {"text", "value"}, {nullptr, "default"}, {"unterminated", "abc"}, {"empty", ""}, {"number", std::nullopt}};
  for (const auto& [name, text] : rows) EXPECT_EQ(ReadText(key.Get(), name), text);
  EXPECT_EQ(ReadNumber(key.Get(), "number"), 0xFFFFFFFE);
  EXPECT_EQ(ReadNumber(key.Get(), "text"), std::nullopt);
  key.Reset();
  EXPECT_EQ(DeleteValue(HKEY_CURRENT_USER, kTestKey, "text"), 0);
  EXPECT_EQ(DeleteValue(HKEY_CURRENT_USER, kTestKey, "text"), ERROR_FILE_NOT_FOUND);
  CreateKey(HKEY_CURRENT_USER, (std::string(kTestKey) + "\\below\\deeper").c_str(), KEY_READ).Reset();
  EXPECT_EQ(DeleteKeyTree(HKEY_CURRENT_USER, FromUtf8(kTestKey).c_str()), 0);
  EXPECT_FALSE(OpenKey(HKEY_CURRENT_USER, kTestKey, KEY_READ).IsValid());
}

}  // namespace
