// A kind that was really registered is really taken away: what is left afterwards, and what becomes of the rest when
// one step fails.
#include <algorithm>
#include <iterator>
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
    if (row.kind == ActiveX) SetNumber(kSafeVersionsKey, "28.0", 127);
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
  bool Remove(const KindRow& row) { return shim->RemoveProductKind(row.kind, folder->Path().c_str(), 1, 0); }
};

// What `lines` has more than `others`, each behind `sign`.
std::string Surplus(const char* sign, Lines lines, Lines others) {
  std::sort(lines.begin(), lines.end());
  std::sort(others.begin(), others.end());
  Lines surplus;
  std::set_difference(lines.begin(), lines.end(), others.begin(), others.end(), std::back_inserter(surplus));
  std::string text;
  for (const std::string& line : surplus) text += sign + line;
  return text;
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
}

TEST_P(RemovalSequence, AnyStepMayFailAndTheOthersStillRun) {
  const KindRow& row = GetParam();
  FaultSteps faults;
  bool result = false;
  const auto removing = [&] { result = Remove(row); };
  Install(row);
  const Lines all = faults.Run(0, removing);
  ASSERT_TRUE(result);
  const Lines usual = host.Reports();
  Lines lines;
  for (const std::string& report : usual) lines.push_back("as ever: " + report);
  const auto isClassKey = [&](size_t at) { return all[at].starts_with("delete key HKLM\\Software\\Classes\\"); };
  bool asked = false;
  for (size_t at = 0; at < all.size(); ++at) {
    // The class keys are many and alike; the first of a row of them stands for all. So do the questions whether a file
    // is there.
    if (at > 0 && isClassKey(at) && isClassKey(at - 1)) continue;
    if (all[at].starts_with("open ") && std::exchange(asked, true)) continue;
    Install(row);
    const Lines steps = faults.Run(at + 1, removing);
    const Lines reports = host.Reports();
    lines.push_back(all[at] + (result ? "" : " => fails") + Surplus(" + ", reports, usual) +
                    Surplus(" - ", usual, reports) + Surplus(" without ", all, steps));
  }
  ExpectGolden("removal-faults-" + std::string(row.name) + ".txt", lines);
}

INSTANTIATE_TEST_SUITE_P(EachKind, RemovalSequence, testing::ValuesIn(kKindRows),
                         [](const auto& row) { return row.param.name; });
