// What registering a kind leaves on the machine, and what still runs when any one of its steps fails.
#include "install/Registration.h"

#include <deque>

#include "install/ControlRegistration.h"
#include "tests/install/InstallFixture.h"
#include "tests/support/CountFixture.h"
#include "tests/support/FaultSteps.h"
#include "tests/support/ImportHook.h"
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

// Answers of DllRegisterServer that a real control rarely gives.
std::deque<HRESULT> g_answers;

HRESULT WINAPI AnswerNext() {
  const HRESULT answer = g_answers.empty() ? E_UNEXPECTED : g_answers.front();
  if (!g_answers.empty()) g_answers.pop_front();
  return answer;
}

FARPROC WINAPI FindScripted(HMODULE /*module*/, LPCSTR name) {
  const bool wanted = std::string_view(name) == "DllRegisterServer";
  return wanted ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&AnswerNext)) : nullptr;
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

TEST_F(Registration, AnyStepMayFailAndEndsItsOwnSeriesOnly) {
  FaultSteps faults;
  for (const KindRow& row : kKindRows) {
    bool result = false;
    const auto registering = [&] { result = Register(row); };
    const auto fresh = [&] {
      ClearMachine();
      for (const char* const file : {row.player, "LumenUtil.exe"}) SetFileAttributesW(PathOf(file).Data(), 0);
      host.Forget();
    };
    (void)Player(row.player);
    (void)File("LumenUtil.exe");
    fresh();
    const Lines all = faults.Run(0, registering);
    Lines lines;
    for (size_t at = 0; at < all.size(); ++at) {
      // The repairs of the class keys are many and alike; the first stands for all.
      const auto repairs = [&](size_t step) { return all[step].starts_with("security MACHINE"); };
      if (at > 0 && repairs(at) && repairs(at - 1)) continue;
      fresh();
      const DWORD handles = counts::KernelHandles();
      const Lines steps = faults.Run(at + 1, registering);
      lines.push_back(all[at] + (result ? "" : " => fails"));
      if (counts::KernelHandles() != handles) lines.back() += " => leaves a key open";
      for (const std::string& report : host.Reports()) lines.back() += " + " + report;
      EXPECT_EQ(shim->WasRegistrationReached(), result ? 1 : 0) << all[at];
      if (all.size() == steps.size()) continue;
      lines.back() += " without the next " + std::to_string(all.size() - steps.size());
      Lines left(all.begin(), all.begin() + static_cast<ptrdiff_t>(at) + 1);
      left.insert(left.end(), all.end() - static_cast<ptrdiff_t>(steps.size() - left.size()), all.end());
      EXPECT_EQ(steps, left) << all[at];
    }
    ExpectGolden("registration-faults-" + std::string(row.name) + ".txt", lines);
  }
}

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

TEST_F(InstallFixture, RefusedRegistrationIsTriedOnceMoreAfterThePlayersStopped) {
  const MString control = Player("LumenPlayer.ocx");
  const std::string path = Text(control);
  struct {
    std::deque<HRESULT> answers;
    bool result;
    Lines reports;
  } const rows[] = {
      {{S_FALSE}, true, {}},
      {{E_FAIL, S_OK}, true, {"1 1032 " + path + " 80004005", "0 18"}},
      {{E_FAIL, E_ACCESSDENIED, S_OK}, false, {"1 1032 " + path + " 80004005", "0 18", "2 1032 " + path + " 80070005"}},
  };
  for (const auto& row : rows) {
    host.Forget();
    g_answers = row.answers;
    const ImportHook find(GetModuleHandleW(nullptr), "GetProcAddress", &FindScripted);
    EXPECT_EQ(RegisterControl(shim, control), row.result);
    EXPECT_EQ(host.Reports(), row.reports);
    EXPECT_EQ(g_answers.size(), row.answers.size() > 2 ? 1u : 0u) << "never a third time";
  }
}
