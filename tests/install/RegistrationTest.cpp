// What registering a kind leaves on the machine, and what still runs when any one of its steps fails.
#include "install/Registration.h"

#include <algorithm>

#include "install/ControlRegistration.h"
#include "tests/install/InstallFixture.h"
#include "tests/support/CountFixture.h"
#include "tests/support/FaultSteps.h"
#include "tests/support/RegistrySnapshot.h"

namespace {

const std::string kUninstall = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Corva Lumen Player ";

class Registration : public InstallFixture {
 protected:
  void SetUp() override {
    InstallFixture::SetUp();
    host.flags = host_flag::ReleasePlayer;
    host.payloadPath = File("payload.bin", 5000);
    for (const auto add : {&LumenBrokerShim::AddExtraActiveXFile, &LumenBrokerShim::AddExtraPluginFile,
                           &LumenBrokerShim::AddExtraPepperFile}) {
      (shim->*add)(L"LumenPlayerHelper.exe");
      (shim->*add)(L"LumenPlayer.txt");
      (shim->*add)(L"LumenPlayerApp.exe");
    }
  }
  bool Register(const KindRow& row, uint8_t writeUninstallEntry = 1) {
    return shim->RegisterProduct(row.kind, PathOf(row.player), PathOf("LumenUtil.exe"), L"", writeUninstallEntry);
  }
};

class RegistrationOfKind : public Registration, public testing::WithParamInterface<KindRow> {};

// Steps of one series end with its first failure; a step of no series ends alone.
std::string SeriesOf(const std::string& step) {
  if (step.find("\\Uninstall\\") != std::string::npos) return "uninstall entry";
  if (step.find("Halcyonics") != std::string::npos || step.find("Compatibility") != std::string::npos) {
    return "inventory";
  }
  if (step.find("MozillaPlugins") != std::string::npos) return "plug-in entry";
  if (step.starts_with("attributes ") || step.starts_with("security C:")) {
    return "protection of" + step.substr(step.rfind('\\'));
  }
  return "";
}

bool EndsRegistration(const std::string& step) {
  return step.starts_with("load ") || step.starts_with("entry ");
}

// The broker's registration keeps a key open whose value it could not write.
bool LeavesKeyOpen(const std::string& step) {
  const bool value = step.starts_with("text ") || step.starts_with("number ");
  return value && SeriesOf(step).empty() && step.find("Image File") == std::string::npos;
}

// What is left of `all` when the step at `at` fails.
Lines StepsWhenFailing(const Lines& all, size_t at) {
  Lines left(all.begin(), all.begin() + static_cast<ptrdiff_t>(at) + 1);
  if (EndsRegistration(all[at])) return left;
  const std::string series = SeriesOf(all[at]);
  for (size_t i = at + 1; i < all.size(); ++i) {
    const bool ended = series.empty() ? i == at + 1 && all[at].starts_with("create ") : SeriesOf(all[i]) == series;
    if (!ended) left.push_back(all[i]);
  }
  return left;
}

// The one report of a failed value; the broker's registration, which comes first, is silent.
Lines ReportWhenFailing(const Lines& all, size_t at) {
  const std::string& step = all[at];
  const size_t rest = step.find(' ') + 1;
  if (step.starts_with("load ")) return {"2 1033 " + step.substr(rest) + " 5"};
  if (step.starts_with("entry ")) return {"2 1034 C:\\lumen tests\\LumenPlayer.ocx 5"};
  const std::string& write = step.starts_with("create ") && at + 1 < all.size() ? all[at + 1] : step;
  const bool number = write.starts_with("number ");
  if (!number && !write.starts_with("text ")) return {};
  if (SeriesOf(write).empty() && write.find("Image File") == std::string::npos) return {};
  std::string text = write.substr(write.find("HKLM\\") + 5);
  text.replace(text.find(" | "), 3, "/");
  return {"1 1035 " + text + (number ? "5" : " 5")};
}

}  // namespace

// Each kind begins on the same machine, so all are compared with one reading of it.
TEST_F(Registration, LeavesWhatTheGoldenTextsSay) {
  const RegistrySnapshot before;
  for (const KindRow& row : kKindRows) {
    ClearMachine();
    (void)Player(row.player);
    (void)File("LumenUtil.exe");
    EXPECT_TRUE(Register(row));
    EXPECT_EQ(shim->WasRegistrationReached(), 1);
    EXPECT_EQ(host.Reports(), Lines{});
    // A second registration finds nothing to change.
    EXPECT_TRUE(Register(row));
    ExpectGolden("registered-" + std::string(row.name) + ".txt", RegistrySnapshot().Since(before));
    // Only the control and its server are guarded against being changed.
    for (const char* const file : {row.player, "LumenUtil.exe"}) {
      const bool readOnly = (GetFileAttributesW(PathOf(file).Data()) & FILE_ATTRIBUTE_READONLY) != 0;
      EXPECT_EQ(readOnly, row.kind == product_kind::ActiveX) << file;
      SetFileAttributesW(PathOf(file).Data(), 0);
    }
  }
}

TEST_P(RegistrationOfKind, AnyStepMayFailAndEndsItsOwnSeriesOnly) {
  const KindRow& row = GetParam();
  (void)Player(row.player);
  (void)File("LumenUtil.exe");
  FaultSteps faults;
  bool result = false;
  const auto registering = [&] { result = Register(row); };
  const auto fresh = [&] {
    ClearMachine();
    for (const char* const file : {row.player, "LumenUtil.exe"}) SetFileAttributesW(PathOf(file).Data(), 0);
    host.Forget();
  };
  fresh();
  const Lines all = faults.Run(0, registering);
  ASSERT_GT(all.size(), 20u);
  for (size_t at = 0; at < all.size(); ++at) {
    // The repairs of the class keys are many and alike; the first stands for all.
    const auto repairs = [&](size_t step) { return all[step].starts_with("security MACHINE"); };
    if (at > 0 && repairs(at) && repairs(at - 1)) continue;
    fresh();
    const DWORD handles = counts::KernelHandles();
    const Lines steps = faults.Run(at + 1, registering);
    EXPECT_EQ(counts::KernelHandles() - handles, LeavesKeyOpen(all[at]) ? 1u : 0u) << all[at];
    EXPECT_EQ(steps, StepsWhenFailing(all, at)) << all[at];
    EXPECT_EQ(host.Reports(), ReportWhenFailing(all, at)) << all[at];
    EXPECT_EQ(result, !EndsRegistration(all[at])) << all[at];
    EXPECT_EQ(shim->WasRegistrationReached(), result ? 1 : 0) << all[at];
  }
}

INSTANTIATE_TEST_SUITE_P(EachKind, RegistrationOfKind, testing::ValuesIn(kKindRows),
                         [](const auto& row) { return row.param.name; });

TEST_F(InstallFixture, DebuggersPackagesAndAMissingPayloadShow) {
  struct {
    uint32_t flags, source, debugger, msi;
  } const rows[] = {{1024, 2, 0, 1}, {16, 4, 1, 0}};
  const std::string key = kMachinePlayer + "Plugin";
  for (const auto& row : rows) {
    host.flags = row.flags;
    host.installSource = row.source;
    EXPECT_TRUE(shim->RegisterProduct(product_kind::Plugin, L"C:\\p.dll", L"C:\\u.exe", L"", 0));
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, key.c_str(), "isScriptDebugger"), row.debugger);
    EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, key.c_str(), "isMSI"), row.msi);
  }
  EXPECT_FALSE(KeyExists(kUninstall + "NPAPI")) << "not asked for";
  EXPECT_TRUE(WriteUninstallEntry(shim, product_kind::Pepper, L"C:\\u.exe"));
  EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, (kUninstall + "PPAPI").c_str(), "EstimatedSize"), 18432u);
}

TEST_F(InstallFixture, PluginPathIsReadBesideTheEntryAndNotInIt) {
  EXPECT_TRUE(shim->RegisterPluginEntry(L"C:\\np.dll"));
  EXPECT_FALSE(ReadPluginPath(&host)) << "no value that registration writes";
  EXPECT_EQ(host.Reports(), Lines{"1 1036 SOFTWARE\\MozillaPlugins\\@corva.example/LumenPlayer/ 2"});
  SetText("SOFTWARE\\MozillaPlugins", "@corva.example/LumenPlayer", "C:\\other\\np.dll");
  const auto path = ReadPluginPath(&host);
  EXPECT_EQ(path ? Text(*path) : "(none)", "C:\\other\\np.dll");
}

TEST_F(InstallFixture, ImageOptionsNeverGoAllAtOnce) {
  SetNumber(kImageOptions + "LumenPlayerApp.exe", "x", 1);
  EXPECT_FALSE(DeleteImageExecutionKey(&host, L""));
  EXPECT_TRUE(KeyExists(kImageOptions + "LumenPlayerApp.exe"));
}
