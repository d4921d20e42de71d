// A kind that was really registered is really taken away: what is left afterwards, and what becomes of the rest when
// one step fails.
#include <algorithm>
#include <map>
#include <utility>

#include "engine/ProductKeys.h"
#include "tests/install/InstallFixture.h"
#include "tests/support/FaultSteps.h"
#include "tests/support/RegistrySnapshot.h"

namespace {

using namespace product_kind;

constexpr char kRunOnce[] = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce";
constexpr char kAppletValue[] = "C:\\windows\\system32\\LumenApplet.cpl";

class RemovalSequence : public InstallFixture, public testing::WithParamInterface<KindRow> {
 protected:
  // Everything that an installed kind has, so that each step of its removal finds something to do.
  void Install(const KindRow& row) {
    ClearMachine();
    for (const char* file : {"LumenUtil.exe", "LumenUtil.dll", "LumenApplet.cpl", "LumenManager.exe"}) {
      SetFileAttributesW(PathOf(file).Data(), FILE_ATTRIBUTE_NORMAL);
      (void)File(file);
    }
    for (const char* file : {"LumenUpdate.exe", "LumenFeedback.exe"}) {
      ASSERT_TRUE(CopyFileW(L"tests\\PlayerService.exe", PathOf(file).Data(), FALSE)) << GetLastError();
      (void)File((std::string(file) + ".codes").c_str(), 0);
    }
    SetFileAttributesW(PathOf(row.player).Data(), FILE_ATTRIBUTE_NORMAL);
    ASSERT_TRUE(shim->RegisterProduct(row.kind, Player(row.player), PathOf("LumenUtil.exe"), L"", 1));
    SetText(kRunOnce, "LumenPlayerUpdate", "x", HKEY_CURRENT_USER);
    SetText(GetProductKey(row.kind), "x", "x", HKEY_CURRENT_USER);
    SetText(kPlayerKey, "LumenPlayerVersion", "x", HKEY_CURRENT_USER);
    SetText(kPlayerKey, "TwlInstall", "x", HKEY_CURRENT_USER);
    if (row.kind == ActiveX) SetText(kDistributionUnitKey, "x", "x");
    if (row.kind != ActiveX) SetText(GetOldUninstallKey(row.kind), "x", "x");
    SetNumber(kAppletCategory, kAppletValue, 0);
    SetNumber(kImageOptions + "LumenManager.exe", "DisableExceptionChainValidation", 0);
    SetNumber(kImageOptions + "LumenUpdate.exe", "DisableExceptionChainValidation", 0);
    host.Forget();
  }
  void SetUp() override {
    ClearOptions();
    InstallFixture::SetUp();
    host.flags = host_flag::ReleasePlayer;
    host.controlPanelAppletName = MString(L"LumenApplet.cpl");
    host.settingsManagerFileName = MString(L"LumenManager.exe");
    host.updateServiceFileName = MString(L"LumenUpdate.exe");
    host.feedbackServiceFileName = MString(L"LumenFeedback.exe");
  }
  // What the fixture does not know of.
  static void ClearOptions() {
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, kAppletCategory);
    for (const char* file : {"LumenManager.exe", "LumenUpdate.exe"}) {
      RegDeleteTreeA(HKEY_LOCAL_MACHINE, (kImageOptions + file).c_str());
    }
  }
  void TearDown() override {
    for (const char* file : {"LumenUtil.exe", "LumenPlayer.ocx"}) SetFileAttributesW(PathOf(file).Data(), 0);
    ClearOptions();
    InstallFixture::TearDown();
  }
  bool Remove(const KindRow& row) { return shim->RemoveProductKind(row.kind, folder->Path().c_str(), 0, 0); }

  // How often each code was reported, severity and code.
  std::map<std::string, int> Codes() const {
    std::map<std::string, int> codes;
    for (const std::string& report : host.Reports()) ++codes[report.substr(0, report.find(' ', 2))];
    codes.erase("1 1036");
    return codes;
  }
};

// What a failing step adds to the reports, or with "-" takes from them, by what the step's text contains; the first row
// that fits counts. The reports that a kind is not installed (1036) are left out.
struct Consequence {
  const char* step;
  Lines added;
};
const Consequence kConsequences[] = {
    {"ReleaseType", {"1 1021", "1 1037"}},
    // The kind still counts as installed, so its system files and services stay, and nothing misses the applet's value.
    {"delete key HKLM\\Software\\Halcyonics", {"1 1017", "1 1037", "-1 1037"}},
    {"Code Store", {"1 1021", "1 1037"}},
    {"HKCU", {"1 1021", "1 1037"}},
    {"delete key HKLM\\SOFTWARE\\MozillaPlugins", {"1 1037"}},  // what is left there harms nobody
    {"Image File Execution Options", {"1 1037"}},
    {"CurrentVersion\\Uninstall\\Corva Lumen Player Plugin", {"1 1037"}},
    {"CurrentVersion\\Uninstall\\Corva Lumen Player Pepper", {"1 1037"}},
    {"CurrentVersion\\Uninstall", {}},
    // The applet's value is deleted by the settings manager in its place, which else reports that it has gone.
    {"(again) delete value HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Control Panel", {}},
    {"delete value HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Control Panel", {"1 1048", "0 20"}},
    {"delete C:\\lumen tests\\LumenApplet.cpl", {"1 1048", "0 20", "-1 1037"}},
    {"delete C:\\lumen tests\\LumenManager.exe", {"-1 1037"}},
    {"delete C:\\lumen tests\\LumenUpdate.exe", {"1 1100"}},
    {"delete C:\\lumen tests\\LumenFeedback.exe", {"1 1738", "1 1738"}},
    {"start C:\\lumen tests\\LumenUpdate.exe", {"1 1118", "1 1100"}},
    {"start C:\\lumen tests\\LumenFeedback.exe", {"1 1739"}},
    {"delete C:\\lumen tests\\LumenPlayer.ocx", {"1 1015", "0 18"}},
    {"delete C:\\lumen tests\\LumenUtil", {"1 1015", "0 18"}},
    {"delete C:\\lumen tests\\", {"1 1015"}},  // a second try succeeds
    {"open ", {}},                             // denied is there
    // What is still read-only goes at the second try.
    {"attributes C:\\lumen tests\\Lumen", {"1 1015", "0 18"}},
    {"security ", {}},
    {"load ", {}},
    {"entry ", {}},
    {"delete key HKLM\\Software\\Classes", {}},
    {"ElevationPolicy", {}},
    {"NavigatorPluginsList", {}},
};

// Steps that the failure of another leaves without a cause.
bool DependsOn(const std::string& step, const std::string& failing) {
  if (failing.starts_with("load ")) return step.starts_with("entry ");
  if (failing.find("HKLM\\Software\\Halcyonics") == std::string::npos) return false;
  const char* const parts[] = {"LumenApplet", "LumenManager", "LumenUpdate", "LumenFeedback"};
  return std::any_of(std::begin(parts), std::end(parts), [&](auto* part) { return step.find(part) != step.npos; });
}

void Apply(const Lines& added, std::map<std::string, int>& codes) {
  for (const std::string& code : added) code[0] == '-' ? --codes[code.substr(1)] : ++codes[code];
  std::erase_if(codes, [](const auto& code) { return code.second == 0; });
}

}  // namespace

TEST_P(RemovalSequence, LeavesNothingOfTheKind) {
  const KindRow& row = GetParam();
  const RegistrySnapshot before;
  Install(row);
  EXPECT_TRUE(Remove(row));
  for (const char* file :
       {row.player, "LumenUtil.exe", "LumenApplet.cpl", "LumenManager.exe", "LumenUpdate.exe", "LumenFeedback.exe"}) {
    EXPECT_FALSE(FileIsThere(file)) << file;
  }
  EXPECT_EQ(FileIsThere("LumenUtil.dll"), row.kind != ActiveX) << "only the control's server has a module beside it";
  ExpectGolden("removed-" + std::string(row.name) + ".txt", RegistrySnapshot().Since(before));
  // Each step asks anew which kinds are left; the settings manager looks for the value that the applet has deleted.
  const std::string control = "1 1036 " + kMachinePlayer + "ActiveX/PlayerPath 2";
  const std::string plugin = "1 1036 " + kMachinePlayer + "Plugin/PlayerPath 2";
  const std::string pepper = "1 1036 " + kMachinePlayer + "Pepper/PlayerPath 2";
  const std::string category = std::string("1 1037 ") + kAppletCategory + "/" + kAppletValue + " 2";
  EXPECT_EQ(host.Reports(), (Lines{control, plugin, pepper, control, plugin, pepper, category, control, plugin, control,
                                   plugin, pepper}));
}

TEST_P(RemovalSequence, AnyStepMayFailAndTheOthersStillRun) {
  const KindRow& row = GetParam();
  FaultSteps faults;
  bool result = false;
  const auto removing = [&] { result = Remove(row); };
  Install(row);
  const Lines all = faults.Run(0, removing);
  ASSERT_TRUE(result);
  ASSERT_GT(all.size(), 15u);
  const auto baseline = Codes();
  const auto isClassKey = [&](size_t at) { return all[at].starts_with("delete key HKLM\\Software\\Classes\\"); };
  bool asked = false;
  for (size_t at = 0; at < all.size(); ++at) {
    // The class keys are many and alike; the first of a row of them stands for all. So do the questions whether a file
    // is there.
    if (at > 0 && isClassKey(at) && isClassKey(at - 1)) continue;
    if (all[at].starts_with("open ") && std::exchange(asked, true)) continue;
    SCOPED_TRACE(all[at]);
    Install(row);
    const Lines steps = faults.Run(at + 1, removing);
    for (const std::string& step : all) {
      const bool runs = std::count(steps.begin(), steps.end(), step) > 0;
      EXPECT_TRUE(runs || DependsOn(step, all[at])) << step;
    }
    const auto here = all.begin() + static_cast<std::ptrdiff_t>(at);
    const std::string text = (std::find(all.begin(), here, *here) != here ? "(again) " : "") + *here;
    const auto* const consequence =
        std::find_if(std::begin(kConsequences), std::end(kConsequences),
                     [&text](const auto& known) { return text.find(known.step) != std::string::npos; });
    ASSERT_NE(consequence, std::end(kConsequences)) << "no row for this step";
    auto expected = baseline;
    Apply(consequence->added, expected);
    if (row.kind != ActiveX) expected.erase("0 18");
    EXPECT_EQ(Codes(), expected);
    const bool fails = std::any_of(consequence->added.begin(), consequence->added.end(), [](const std::string& code) {
      return code == "1 1017" || code == "1 1021" || code == "1 1048" || code == "1 1100" || code == "1 1738";
    });
    EXPECT_EQ(result, !fails);
  }
}

INSTANTIATE_TEST_SUITE_P(EachKind, RemovalSequence, testing::ValuesIn(kKindRows),
                         [](const auto& row) { return row.param.name; });
