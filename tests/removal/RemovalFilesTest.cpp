// Removal where the inventory is silent, files that go by name and by pattern, and packages of earlier versions.
#include <windows.h>

#include <shellapi.h>

#include <algorithm>

#include "broker/BrokerRegistration.h"
#include "engine/InstallEngine.h"
#include "engine/ProductIds.h"
#include "engine/ProductKeys.h"
#include "engine/SystemPaths.h"
#include "removal/UninstallEntries.h"
#include "tests/install/InstallFixture.h"
#include "tests/support/ImportHook.h"

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
  // Of these, the ones that are there.
  Lines There(const Lines& names) const {
    Lines there;
    for (const std::string& name : names) {
      if (FileIsThere(name.c_str())) there.push_back(name);
    }
    return there;
  }
  void MakeFiles(const Lines& names) const {
    for (const std::string& name : names) (void)File(name.c_str());
  }
  MString Folder() const { return MString(WideView(folder->Path())); }
};

// What the shell was asked to start.
Lines g_started;
std::vector<HANDLE> g_given;
std::vector<HANDLE> g_waitedFor;

BOOL WINAPI Execute(SHELLEXECUTEINFOW* execution) {
  EXPECT_TRUE(execution->lpVerb == nullptr && execution->lpDirectory == nullptr);
  g_started.push_back(ToUtf8(execution->lpFile) + " " + ToUtf8(execution->lpParameters) + " | " +
                      std::to_string(execution->fMask) + " " + std::to_string(execution->nShow) + " " +
                      std::to_string(execution->cbSize));
  execution->hProcess = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  g_given.push_back(execution->hProcess);
  return TRUE;
}
DWORD WINAPI Wait(HANDLE object, DWORD milliseconds) {
  EXPECT_EQ(milliseconds, INFINITE);
  g_waitedFor.push_back(object);
  return WAIT_OBJECT_0;
}

}  // namespace

TEST_F(RemovalFiles, WithoutPathsTheRestIsStillCleaned) {
  for (const uint32_t kind : kAllKinds) {
    host.Forget();
    SetText(GetReleaseTypeKey(kind), "x", "x");
    EXPECT_FALSE(shim->RemoveProductKind(kind, Folder(), 0, 0));
    EXPECT_EQ(Codes(), (Lines{"1 1018", "1 1019", "1 1020", "1 1021"}));
    EXPECT_FALSE(KeyExists(GetReleaseTypeKey(kind)));
  }
}

TEST_F(RemovalFiles, WhatTheInventoryLacksTheRegistrationsTell) {
  const MString player = Player("LumenPlayer.ocx");
  MakeFiles({"LumenUtil.exe", "LumenUtil.dll", "np.dll"});
  ASSERT_TRUE(shim->RegisterActiveXControl(player));
  WriteBrokerRegistration(PathOf("LumenUtil.exe").Narrow().get(), true);
  host.Forget();
  EXPECT_FALSE(shim->RemoveProductKind(ActiveX, Folder(), 0, 0)) << "the missing inventory counts";
  EXPECT_EQ(Codes(), (Lines{"1 1018", "1 1021"}));
  EXPECT_EQ(There({"LumenPlayer.ocx", "LumenUtil.exe", "LumenUtil.dll"}), Lines());
  EXPECT_FALSE(KeyExists(kControlServer));
  host.Forget();
  SetText("SOFTWARE\\MozillaPlugins", "@corva.example/LumenPlayer", Text(PathOf("np.dll")).c_str());
  EXPECT_FALSE(shim->RemoveProductKind(Plugin, Folder(), 0, 0));
  EXPECT_EQ(Codes(), (Lines{"1 1018", "1 1020", "1 1021"}));
  EXPECT_FALSE(FileIsThere("np.dll"));
}

TEST_F(RemovalFiles, UnregisteringTellsWhetherAControlWasThere) {
  EXPECT_FALSE(shim->UnregisterActiveXControl(0, L""));
  SetNumber(kSafeVersionsKey, "28.0", 127);
  const MString player = Player("LumenPlayer.ocx");
  ASSERT_TRUE(shim->RegisterActiveXControl(player));
  EXPECT_TRUE(shim->UnregisterActiveXControl(0, L""));
  EXPECT_TRUE(KeyExists(kSafeVersionsKey));
  EXPECT_FALSE(KeyExists(kControlServer));
  EXPECT_TRUE(DeleteFileW(player.Data())) << "it is no longer protected";
  EXPECT_FALSE(shim->UnregisterActiveXControl(1, L""));
  EXPECT_FALSE(KeyExists(kSafeVersionsKey)) << "asked for, whether or not there was a control";
}

TEST_F(RemovalFiles, UninstallingAnswersForTheKindsOwnRegistration) {
  EXPECT_TRUE(shim->UninstallProduct(Pepper, L"", 0));
  EXPECT_FALSE(shim->UninstallProduct(Plugin, L"", 0)) << "no entry";
  EXPECT_TRUE(shim->RegisterPluginEntry(L"C:\\np.dll"));
  SetText(GetUninstallEntryKey(Plugin), "DisplayName", "x");
  EXPECT_TRUE(shim->UninstallProduct(Plugin, L"", 0));
  EXPECT_FALSE(KeyExists(GetUninstallEntryKey(Plugin)));
  EXPECT_TRUE(shim->UninstallProduct(ActiveX, L"", 0)) << "nothing left is a success";
  WriteBrokerRegistration("C:\\u.exe", true);
  SetText("Software\\Classes\\CLSID\\" LUMEN_BROKER_CLASS_ID_5, "", "x");
  SetText(GetUninstallEntryKey(ActiveX), "DisplayName", "x");
  EXPECT_TRUE(shim->UninstallProduct(ActiveX, L"", 0));
  for (const std::string& key :
       {std::string("Software\\Classes\\CLSID\\" LUMEN_BROKER_CLASS_ID_6),
        std::string("Software\\Classes\\CLSID\\" LUMEN_BROKER_CLASS_ID_5), GetUninstallEntryKey(ActiveX)}) {
    EXPECT_FALSE(KeyExists(key)) << key;
  }
}

TEST_F(RemovalFiles, ALockedSystemFileIsToldAndAnEmptyOneQueued) {
  host.osClass = 2;
  host.controlPanelAppletName = MString(L"applet.cpl");
  for (const size_t size : {size_t{10}, size_t{0}}) {
    host.Forget();
    const MString path = File("applet.cpl", size);
    const FileHandle reader(
        CreateFileW(path.Data(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_FALSE(shim->RemoveProductKind(Plugin, Folder(), 0, 0));
    Lines codes = Codes();
    codes.erase(codes.begin(), codes.begin() + 4);  // no paths
    EXPECT_EQ(codes, size > 0 ? (Lines{"1 1048", "0 20", "2 1048"}) : (Lines{"1 1048", "0 20", "1 1046", "2 1047"}));
    EXPECT_TRUE(FileIsThere("applet.cpl"));
  }
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Session Manager",
                     L"PendingFileRenameOperations");
}

TEST_F(RemovalFiles, NamedFilesGoFromTheDirectoryAndThePluginsPlaces) {
  host.UseSettings(L"FilenamesAX old.ocx LumenUtil_9.exe readme.txt missing.txt; FilenamesPlugin np.dll np.xpt;");
  (void)shim->LoadEngineLists();
  MakeFiles({"old.ocx", "LumenUtil_9.exe", "readme.txt", "other.txt", "np.dll", "np.xpt"});
  const MString opera = PathOf("opera");
  testing_files::MakeDirectories(opera.Data() + WideString(L"\\Program\\Plugins"));
  testing_files::WriteWhole(opera.Data() + WideString(L"\\Program\\Plugins\\np.dll"), "x");
  SetText("Software\\Opera Software", "Last CommandLine", Text(PathOf("opera\\opera.exe")).c_str());
  EXPECT_TRUE(shim->RemoveNamedFiles(ActiveX, Folder()));
  const Lines kept = {"other.txt", "np.dll", "opera\\Program\\Plugins\\np.dll"};
  EXPECT_EQ(There({"old.ocx", "LumenUtil_9.exe", "readme.txt", kept[0], kept[1], kept[2]}), kept);
  EXPECT_TRUE(shim->RemoveNamedFiles(Plugin | Pepper, Folder()));
  EXPECT_EQ(There({"np.xpt", kept[0], kept[1], kept[2]}), Lines{"other.txt"});
  EXPECT_EQ(host.events, (Lines{"FileRemovalFinished 0", "FileRemovalFinished 0"}));
}

TEST_F(RemovalFiles, OneFileGoesByItsName) {
  struct {
    const wchar_t* name;
    bool unregisters, unprotects;
  } const rows[] = {{L"any.ocx", true, true},         {L"any.OCX", false, false},
                    {L"LumenUtil1.exe", false, true}, {L"GetLumen_1.exe", false, true},
                    {L"LumenUtil.dll", false, false}, {L"MyLumenUtil.exe", false, false},
                    {L"LumenUtil:.exe", false, true}};
  for (const auto& row : rows) {
    const MString path = File("file.bin");
    SetFileAttributesW(path.Data(), FILE_ATTRIBUTE_READONLY);
    SetText("Software\\Classes\\TidewaterLumen.TidewaterLumen", "", "x");
    host.Forget();
    EXPECT_TRUE(shim->RemoveOneFile(row.name, path));
    EXPECT_FALSE(FileIsThere("file.bin"));
    EXPECT_EQ(KeyExists("Software\\Classes\\TidewaterLumen.TidewaterLumen"), !row.unregisters) << ToUtf8(row.name);
    // A file that is still protected goes at the second try.
    EXPECT_EQ(Codes(), row.unprotects ? Lines{} : Lines{"1 1015"}) << ToUtf8(row.name);
  }
}

TEST_F(RemovalFiles, PatternsTakeTheLastMatchAndProductDirectoriesOnlyWithAllKinds) {
  // The engine lists the player's system directory and the user's product directory when it is filled.
  const WideString system = *GetSystem32Path() + L"\\Halcyons\\Lumen";
  const testing_files::CleanDirectory systemFolder(system);
  const testing_files::CleanDirectory products(*ProductDirectory());
  const auto inSystem = [&system](const char* name) { return system + L"\\" + WidenAscii(name); };
  for (const char* name : {"Lumen1.ocx", "Lumen2.ocx", "LumenUtil64.exe", "np64.dll", "pep64.dll", "keep.txt"}) {
    testing_files::WriteWhole(inSystem(name), "x");
  }
  testing_files::MakeDirectories(products.Path() + L"\\addon1\\deep");
  testing_files::WriteWhole(products.Path() + L"\\addon1\\deep\\file", "x");
  testing_files::MakeDirectories(products.Path() + L"\\other");
  testing_files::WriteWhole(products.Path() + L"\\..\\beside", "x");
  SetNumber(kImageOptions + "LumenUtil64.exe", "DisableExceptionChainValidation", 0);
  host.UseSettings(
      L"AXFilenamePatterns Lumen:.ocx LumenUtil:.exe . none:.x; PluginFilenamePatterns np:.dll; "
      L"PepperFilenamePatterns pep:.dll; ProductManagerDirectoryPatterns addon: .;");
  (void)shim->LoadEngineLists();
  host.Forget();
  const MString directory{WideView(system)};
  EXPECT_TRUE(shim->RemovePatternFiles(ActiveX | Plugin, directory));
  const auto there = [&](const char* name) { return testing_files::Exists(inSystem(name)); };
  EXPECT_NE(there("Lumen1.ocx"), there("Lumen2.ocx")) << "one match a pattern";
  EXPECT_FALSE(there("LumenUtil64.exe"));
  EXPECT_FALSE(KeyExists(kImageOptions + "LumenUtil64.exe"));
  EXPECT_FALSE(there("np64.dll"));
  EXPECT_TRUE(there("pep64.dll"));
  EXPECT_TRUE(testing_files::Exists(products.Path() + L"\\addon1"));
  EXPECT_TRUE(shim->RemovePatternFiles(ActiveX | Plugin | Pepper, directory));
  EXPECT_FALSE(there("pep64.dll"));
  EXPECT_TRUE(there("keep.txt"));
  EXPECT_FALSE(testing_files::Exists(products.Path() + L"\\addon1"));
  EXPECT_TRUE(testing_files::Exists(products.Path() + L"\\other"));
  EXPECT_TRUE(testing_files::Exists(products.Path() + L"\\..\\beside")) << "the parent matches \".\" and is passed by";
  EXPECT_EQ(Codes(), Lines{});
  DeleteFileW((products.Path() + L"\\..\\beside").c_str());
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
  g_started.clear();
  g_waitedFor.clear();
  {
    const ImportHook execute(GetModuleHandleW(nullptr), "ShellExecuteExW", &Execute);
    const ImportHook wait(GetModuleHandleW(nullptr), "WaitForSingleObject", &Wait);
    EXPECT_TRUE(shim->UninstallProduct(ActiveX, L"", 0));
    EXPECT_TRUE(shim->UninstallProduct(Pepper, L"", 0));
  }
  const std::string installer = "C:\\windows\\system32\\msiexec.exe /q /X ";
  EXPECT_EQ(g_started, (Lines{installer + "{A-1} | 64 1 112", installer + "{A-3} | 64 1 112"}));
  EXPECT_EQ(g_waitedFor, g_given);
  for (const std::string& key : {plain + "{A-1}", other + "{A-3}", plain + "{P-1}"}) {
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, key.c_str());
  }
}
