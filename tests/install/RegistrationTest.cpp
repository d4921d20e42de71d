// What registering a kind leaves on the machine, and what still runs when any one of its steps fails.
#include "install/Registration.h"

#include "tests/install/InstallFixture.h"
#include "tests/support/FaultSteps.h"
#include "tests/support/PlatformCounts.h"
#include "tests/support/RegistrySnapshot.h"

namespace {

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
  bool Register(const KindRow& row) {
    return shim->RegisterProduct(row.kind, PathOf(row.player), PathOf("LumenUtil.exe"), L"", 1);
  }
};

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

TEST_F(InstallFixture, ImageOptionsNeverGoAllAtOnce) {
  SetNumber(kImageOptions + "LumenPlayerApp.exe", "x", 1);
  EXPECT_FALSE(DeleteImageExecutionKey(&host, L""));
  EXPECT_TRUE(KeyExists(kImageOptions + "LumenPlayerApp.exe"));
}
