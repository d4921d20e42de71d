// Conflicts as a host asks for them: the module's own shim, real processes, real registry.
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "tests/module/LoadedModule.h"
#include "tests/removal/StartedProgram.h"

namespace {

using namespace product_kind;

constexpr wchar_t kControlKey[] = L"Software\\Halcyonics\\LumenPlayerActiveX";
constexpr wchar_t kPlayerKey[] = L"Software\\Halcyonics\\LumenPlayer";

class ShimConflicts : public ModuleFixture {
 protected:
  ShimConflicts() {
    CopyFileW(testing_files::Beside(L"fake_enterprise.dll").c_str(), control.c_str(), FALSE);
    playerPath.SetText(control.c_str());
    uninstallerPath.SetText(Below(L"uninstall.exe").c_str());
    stored.Delete();
    host.browserNames = {MString(L"lumen64_28.OCX"), MString(L"LumenHelper.exe")};
    host.conflictCheckIsOptional = true;
  }
  WideString Below(const wchar_t* name) const { return folder.Path() + L"\\" + name; }
  Lines Find(uint32_t kinds) {
    const std::unique_ptr<MStringList> found(shim->FindConflicts(kinds));
    return found == nullptr ? Lines{"(null)"} : Keys(found.get());
  }

  const testing_files::CleanDirectory folder{L"C:\\conflict-test"};
  TestValue playerPath{HKEY_LOCAL_MACHINE, kControlKey, L"PlayerPath"};
  TestValue uninstallerPath{HKEY_LOCAL_MACHINE, kControlKey, L"UninstallerPath"};
  TestValue stored{HKEY_CURRENT_USER, kPlayerKey, L"ConflictingProcs"};
  const WideString control = Below(L"Lumen64_28.ocx");
};

}  // namespace

TEST_F(ShimConflicts, AProcessWithTheControlLoadedIsNamedAndStored) {
  host.UseSettings(L"FriendlyProcessNames { viewer \"The Viewer\"; }; PluginConflicts { known; };");
  const StartedProgram viewer(Below(L"Viewer.exe"), control);
  const StartedProgram known(Below(L"Known.exe"));
  EXPECT_EQ(Find(ActiveX), Lines{"viewer"});
  EXPECT_EQ(Find(Pepper), Lines{});
  EXPECT_EQ(Find(0), Lines{});
  host.installSource = 8;
  EXPECT_TRUE(shim->StoreConflicts(Plugin | ActiveX));
  EXPECT_EQ(ReadText(HKEY_CURRENT_USER, "Software\\Halcyonics\\LumenPlayer", "ConflictingProcs"), "The Viewer,known");
  EXPECT_TRUE(shim->HasStoredConflicts());
  EXPECT_FALSE(shim->HasStoredConflicts());
  EXPECT_FALSE(shim->StoreConflicts(0));
  EXPECT_FALSE(stored.Exists());
  host.conflictCheckIsOptional = false;
  EXPECT_EQ(Find(ActiveX), Lines{"viewer"});
  uninstallerPath.Delete();
  EXPECT_EQ(Find(ActiveX), Lines{}) << "a kind with one of its paths is not installed";
  EXPECT_EQ(host.Reports(), Lines{}) << "the panel asks at every tick";
}

TEST_F(ShimConflicts, TheControlsHelperIsEndedUnlessTheBrowserIsAConflict) {
  host.UseSettings(L"ActiveXConflicts { iexplore; };");
  const StartedProgram helper(Below(L"lumenhelper.exe"));
  {
    const StartedProgram browser(Below(L"IExplore.exe"));
    EXPECT_EQ(Find(ActiveX), Lines{"iexplore"});
    EXPECT_TRUE(helper.Runs());
  }
  host.payloadPath = MString(WideView(Below(L"LUMENHELPER.exe")));
  EXPECT_EQ(Find(ActiveX), Lines{});
  EXPECT_TRUE(helper.Runs()) << "it is what this run installs from";
  host.payloadPath = MString(L"C:\\payload.exe");
  EXPECT_EQ(Find(ActiveX), Lines{});
  EXPECT_EQ(helper.ExitCode(), 0u);
}

TEST_F(ShimConflicts, ARunningBrowserIsFoundWithItsPath) {
  EXPECT_FALSE(shim->FindDefaultBrowser());
  const StartedProgram browser(Below(L"SeaMonkey.exe"));
  EXPECT_TRUE(shim->FindDefaultBrowser());
  EXPECT_EQ(Text(shim->browserName), "C:\\conflict-test\\SeaMonkey.exe");
}
