// Removal where the inventory is silent, files that go by name and by pattern, and packages of earlier versions.
#include <windows.h>

#include <shellapi.h>

#include <functional>
#include <utility>

#include "broker/BrokerRegistration.h"
#include "engine/InstallEngine.h"
#include "engine/ProductIds.h"
#include "engine/ProductKeys.h"
#include "engine/SystemPaths.h"
#include "removal/UninstallEntries.h"
#include "tests/install/InstallFixture.h"
#include "tests/support/FaultSteps.h"
#include "tests/support/RegistrySnapshot.h"

namespace {

using namespace product_kind;

const std::string kControlServer = "Software\\Classes\\CLSID\\" LUMEN_CONTROL_CLASS_ID "\\InprocServer32";

class RemovalFiles : public InstallFixture {
 protected:
  void SetUp() override {
    InstallFixture::SetUp();
    host.osClass = 3;  // without the system files
    host.updateServiceFileName = MString(L"LumenUpdate.exe");
    host.feedbackServiceFileName = MString(L"LumenFeedback.exe");
  }
  // The severities and codes of what was reported, but for registry reads and deletions.
  Lines Codes() const {
    Lines codes;
    for (const std::string& report : host.Reports()) {
      const std::string code = report.substr(0, report.find(' ', 2));
      if (code != "1 1036" && code != "1 1037") codes.push_back(code);
    }
    return codes;
  }
  bool Remove(uint32_t kind) {
    host.Forget();
    return shim->RemoveProductKind(kind, Folder(), 0, 0);
  }
  MString Folder() const { return MString(WideView(folder->Path())); }
};

// What the shell was asked to start, and what was waited for without an end.
Lines g_started;

BOOL WINAPI Execute(SHELLEXECUTEINFOW* execution) {
  EXPECT_TRUE(execution->lpVerb == nullptr && execution->lpDirectory == nullptr && execution->cbSize == 112);
  execution->hProcess = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  g_started.push_back(ToUtf8(execution->lpFile) + " " + ToUtf8(execution->lpParameters) + " | " +
                      std::to_string(execution->fMask) + " " + std::to_string(execution->nShow));
  return TRUE;
}
DWORD WINAPI Wait(HANDLE object, DWORD milliseconds) {
  if (milliseconds == INFINITE) g_started.push_back("waited");
  return WaitForSingleObjectEx(object, 0, FALSE);
}

}  // namespace

TEST_F(RemovalFiles, WhatTheInventoryLacksTheRegistrationsTell) {
  const char* const files[] = {"LumenUtil.exe", "LumenUtil.dll", "np.dll"};
  for (const char* const file : files) (void)File(file);
  ASSERT_TRUE(shim->RegisterActiveXControl(Player("LumenPlayer.ocx")));
  WriteBrokerRegistration(PathOf("LumenUtil.exe").Narrow().get(), true);
  SetNumber(kSafeVersionsKey, "28.0", 127);
  EXPECT_FALSE(Remove(ActiveX)) << "the missing inventory counts";
  EXPECT_EQ(Codes(), (Lines{"1 1018", "1 1021"}));
  EXPECT_FALSE(FileIsThere("LumenPlayer.ocx") || FileIsThere(files[0]) || FileIsThere(files[1]));
  EXPECT_FALSE(KeyExists(kControlServer));
  EXPECT_TRUE(KeyExists(kSafeVersionsKey)) << "not asked for";
  SetText("SOFTWARE\\MozillaPlugins", "@corva.example/LumenPlayer", Text(PathOf("np.dll")).c_str());
  EXPECT_FALSE(Remove(Plugin));
  EXPECT_EQ(Codes(), (Lines{"1 1018", "1 1020", "1 1021"}));
  EXPECT_FALSE(FileIsThere("np.dll"));
}

TEST_F(RemovalFiles, FilesGoByNameAndByPattern) {
  // The engine lists the player's system directory and the user's product directory when it is filled.
  const WideString system = *GetSystem32Path() + L"\\Halcyons\\Lumen";
  const testing_files::CleanDirectory systemFolder(system);
  const testing_files::CleanDirectory products(*ProductDirectory());
  const WideString beside = products.Path() + L"\\..\\beside";
  for (const wchar_t* name :
       {L"Lumen1.ocx", L"Lumen2.ocx", L"LumenUtil64.exe", L"np64.dll", L"pep64.dll", L"keep.txt"}) {
    testing_files::WriteWhole(system + L"\\" + name, "x");
  }
  for (const wchar_t* name : {L"addon1", L"other"}) {
    testing_files::MakeDirectories(products.Path() + L"\\" + name + L"\\deep");
  }
  testing_files::WriteWhole(beside, "the parent matches \".\" and is passed by");
  testing_files::MakeDirectories(folder->Path() + L"\\opera\\Program\\Plugins");
  for (const char* name : {"old.ocx", "LumenUtil_9.exe", "readme.txt", "other.txt", "np.dll", "np.xpt",
                           "opera\\Program\\Plugins\\np.dll"}) {
    (void)File(name);
  }
  SetText("Software\\Opera Software", "Last CommandLine", Text(PathOf("opera\\opera.exe")).c_str());
  host.UseSettings(
      L"FilenamesAX old.ocx LumenUtil_9.exe readme.txt missing.txt; FilenamesPlugin np.dll np.xpt;"
      L"AXFilenamePatterns Lumen:.ocx LumenUtil:.exe . none:.x; PluginFilenamePatterns np:.dll; "
      L"PepperFilenamePatterns pep:.dll; ProductManagerDirectoryPatterns addon: .;");
  (void)shim->LoadEngineLists();

  FaultSteps faults;
  Lines lines;
  const auto record = [&](const std::string& what, const std::function<void()>& act) {
    host.Forget();
    lines.push_back(what);
    bool inClassKeys = false;
    for (const std::string& step : faults.Run(0, act)) {
      const bool isClassKey = step.starts_with("delete key HKLM\\Software\\");
      if (!isClassKey || !std::exchange(inClassKeys, isClassKey)) lines.push_back("  " + step);  // one for all
    }
    for (const std::string& report : host.Reports()) lines.push_back("  reports " + report);
  };
  record("named, the control's", [&] { EXPECT_TRUE(shim->RemoveNamedFiles(ActiveX, Folder())); });
  record("named, the others'", [&] { EXPECT_TRUE(shim->RemoveNamedFiles(Plugin | Pepper, Folder())); });
  EXPECT_EQ(host.events, Lines{"FileRemovalFinished 0"});
  for (const char* const name : {"any.ocx", "any.OCX", "LumenUtil1.exe", "GetLumen_1.exe", "LumenUtil.dll",
                                 "MyLumenUtil.exe", "LumenUtil:.exe"}) {
    const MString path = File("file.bin");
    SetFileAttributesW(path.Data(), FILE_ATTRIBUTE_READONLY);
    record(name, [&] { EXPECT_TRUE(shim->RemoveOneFile(MString::FromNarrow(name), path)); });
    EXPECT_FALSE(FileIsThere("file.bin"));
  }
  const MString directory{WideView(system)};
  record("by pattern, two kinds", [&] { EXPECT_TRUE(shim->RemovePatternFiles(ActiveX | Plugin, directory)); });
  record("by pattern, all kinds", [&] { EXPECT_TRUE(shim->RemovePatternFiles(ActiveX | Plugin | Pepper, directory)); });
  ExpectGolden("removed-files.txt", lines);
  EXPECT_FALSE(testing_files::Exists(products.Path() + L"\\addon1"));
  EXPECT_TRUE(testing_files::Exists(products.Path() + L"\\other"));
  EXPECT_TRUE(DeleteFileW(beside.c_str()));
}

TEST_F(RemovalFiles, PackagesThatAreInstalledGoByTheSystemsInstaller) {
  host.UseSettings(
      L"AddRemoveProgramsGUIDsAX \"{A-1}\" \"{A-2}\"; AddRemoveProgramsGUIDsAXSelf \"{A-3}\"; "
      L"AddRemoveProgramsGUIDsPlugin \"{P-1}\";");
  (void)shim->LoadEngineLists();
  const std::string plain = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
  const std::string other = "SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
  SetText(plain + "{A-1}", "DisplayName", "x");
  SetText(other + "{A-3}", "DisplayName", "x");
  SetText(plain + "{P-1}", "DisplayName", "x");
  {
    const ImportHook execute(GetModuleHandleW(nullptr), "ShellExecuteExW", &Execute);
    const ImportHook wait(GetModuleHandleW(nullptr), "WaitForSingleObject", &Wait);
    EXPECT_TRUE(shim->UninstallProduct(ActiveX, L"", 0));
    EXPECT_TRUE(shim->UninstallProduct(Pepper, L"", 0));
  }
  const std::string installer = "C:\\windows\\system32\\msiexec.exe /q /X ";
  EXPECT_EQ(g_started, (Lines{installer + "{A-1} | 64 1", "waited", installer + "{A-3} | 64 1", "waited"}));
  for (const std::string& key : {plain + "{A-1}", other + "{A-3}", plain + "{P-1}"}) {
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, key.c_str());
  }
}
