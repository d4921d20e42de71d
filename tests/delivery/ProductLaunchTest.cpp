// Starting a product: a real process, and the ways round a start that fails.
#include "delivery/ProductLaunch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "delivery/ProductStatus.h"
#include "delivery/ProductStore.h"
#include "tests/delivery/AddOnMaterial.h"
#include "tests/support/DemoAddOnProcess.h"
#include "tests/support/Texts.h"

namespace {

using testing_files::ReadWhole;

std::vector<uint8_t> ServedFile(const wchar_t* name) {
  return addon::BytesOf(ReadWhole(addon::Folder(L"server\\files\\") + name));
}

// What the stand-ins answer, and what they were given.
struct Platform {
  DWORD error = 0;
  BOOL shellAnswer = TRUE;
  Lines asked;  // of the shell
};
Platform g_platform;

BOOL WINAPI RefuseToStart(LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID, LPCWSTR,
                          LPSTARTUPINFOW, LPPROCESS_INFORMATION) {
  SetLastError(g_platform.error);
  return FALSE;
}
BOOL WINAPI StartThroughShell(SHELLEXECUTEINFOW* execute) {
  g_platform.asked.push_back(ToUtf8(execute->lpVerb) + " " + ToUtf8(execute->lpFile) + " " +
                             std::to_string(execute->nShow) + " " + std::to_string(execute->fMask) +
                             (execute->lpParameters == nullptr ? "" : " with parameters"));
  return g_platform.shellAnswer;
}

class ProductLaunch : public testing::Test {
 protected:
  void SetUp() override {
    g_platform = {};
    ASSERT_EQ(InstallSignedPackage(L"DemoAddOn", ServedFile(L"DemoAddOn.package"), anchor.c_str()),
              StoreResult::Stored);
    ASSERT_EQ(StoreProductDigest(L"DemoAddOn", ServedFile(L"digest.s")), StoreResult::Stored);
  }
  bool Launch(const wchar_t* parameters, const wchar_t* name = L"DemoAddOn") {
    return LaunchProduct(name, parameters, anchor.c_str(), kernel32, shell32);
  }
  static std::string Seen() { return ReadWhole(addon::ProductFile(L"DemoAddOn", L"seen.txt")); }

  const WideString anchor = addon::Folder(L"authority\\root.der");
  const testing_files::CleanDirectory clean{addon::ProductsFolder()};
  const demo_addon::Stopped stopped;  // before the folder is cleaned
  Kernel32DllHelper kernel32;
  Shell32DllHelper shell32;
};

TEST_F(ProductLaunch, ParametersAreTheWholeCommandLine) {
  const std::string path = ToUtf8(addon::ProductFile(L"DemoAddOn", L"DemoAddOn.exe"));
  const struct {
    const wchar_t* parameters;
    std::string seen;
  } rows[] = {
      {L"play --file \"C:\\a b\\c.sol\" \"\" \\\"x", "play --file \"C:\\a b\\c.sol\" \"\" \\\"x"},
      {L"\u00e9", "\xC3\xA9"},
      {nullptr, "\"" + path + "\""},  // the platform's own
  };
  for (const auto& row : rows) {
    EXPECT_FALSE(IsProductRunning(L"DemoAddOn"));
    EXPECT_TRUE(Launch(row.parameters));
    EXPECT_TRUE(IsProductRunning(L"DemoAddOn"));
    EXPECT_TRUE(IsProductRunning(L"dEMOaDDoN"));
    EXPECT_FALSE(IsProductRunning(L"DemoAddOn2"));
    EXPECT_EQ(Seen(), row.seen);
    demo_addon::Stop();
  }
}

TEST_F(ProductLaunch, TheCallLastsUntilTheProductIsIdle) {
  const KernelHandle started(CreateEventA(nullptr, TRUE, FALSE, "LumenDemoAddOnStarted"));
  const KernelHandle go(CreateEventA(nullptr, TRUE, FALSE, "LumenDemoAddOnGo"));
  std::atomic<bool> returned = false;
  std::thread caller([&] {
    EXPECT_TRUE(Launch(L"x"));
    returned = true;
  });
  EXPECT_EQ(WaitForSingleObject(started.Get(), demo_addon::kPatience), WAIT_OBJECT_0);
  EXPECT_FALSE(returned) << "it runs and is not ready yet";
  SetEvent(go.Get());
  caller.join();
  EXPECT_TRUE(returned);
}

TEST_F(ProductLaunch, AProductThatWasChangedIsNotStarted) {
  const WideString executable = addon::ProductFile(L"DemoAddOn", L"DemoAddOn.exe");
  ASSERT_TRUE(ReadProductVersion(L"DemoAddOn", anchor.c_str()));
  std::string content = ReadWhole(executable);
  content[content.size() / 2] ^= 1;
  testing_files::WriteWhole(executable, content);
  EXPECT_FALSE(Launch(L"x"));
  EXPECT_FALSE(demo_addon::Find());
  EXPECT_EQ(Seen(), "(no file)");
  EXPECT_FALSE(ReadProductVersion(L"DemoAddOn", anchor.c_str()));
  for (const wchar_t* const name : {L"", L"Demo-AddOn", L"Other"}) EXPECT_FALSE(Launch(L"x", name)) << ToUtf8(name);
}

TEST_F(ProductLaunch, ElevationGoesThroughTheShellWithoutTheParameters) {
  kernel32.CreateProcessW = RefuseToStart;
  shell32.ShellExecuteExW = StartThroughShell;
  const Lines asked = {"open " + ToUtf8(addon::ProductFile(L"DemoAddOn", L"DemoAddOn.exe")) + " 1 0"};
  const struct {
    DWORD error;
    BOOL shellAnswer;
    bool launched;
    Lines asked;
  } rows[] = {{740, TRUE, true, asked}, {740, FALSE, false, asked}, {ERROR_ACCESS_DENIED, TRUE, false, {}}};
  for (const auto& row : rows) {
    g_platform = {row.error, row.shellAnswer, {}};
    EXPECT_EQ(Launch(L"lost"), row.launched) << row.error;
    EXPECT_EQ(g_platform.asked, row.asked) << row.error;
  }
  g_platform.error = 740;
  shell32.ShellExecuteExW = nullptr;
  EXPECT_FALSE(Launch(L"lost"));
}

TEST_F(ProductLaunch, WithoutTheWideFunctionTheNarrowOneStarts) {
  kernel32.CreateProcessW = nullptr;
  EXPECT_TRUE(Launch(L"by \"the other\" way"));
  EXPECT_EQ(Seen(), "by \"the other\" way");
}

TEST_F(ProductLaunch, TheVersionIsTheExecutables) {
  const std::optional<ProductVersion> version = ReadProductVersion(L"DemoAddOn", anchor.c_str());
  ASSERT_TRUE(version);
  EXPECT_EQ(version->mostSignificant, 0x00030001u);
  EXPECT_EQ(version->leastSignificant, 0x0004009Fu);
  EXPECT_FALSE(ReadProductVersion(L"DemoAddOn", nullptr)) << "another anchor";
  // A product that was signed, and has no version.
  const WideString other = addon::Folder(L"messages\\anchor.der");
  ASSERT_EQ(InstallSignedPackage(L"Demo", addon::MessageBytes("good.p7m"), other.c_str()), StoreResult::Stored);
  testing_files::WriteWhole(addon::ProductFile(L"Demo", L"data.txt"), "data");
  EXPECT_FALSE(ReadProductVersion(L"Demo", other.c_str())) << "no digest";
  ASSERT_EQ(StoreProductDigest(L"Demo", addon::MessageBytes("digest-good.p7m")), StoreResult::Stored);
  EXPECT_FALSE(ReadProductVersion(L"Demo", other.c_str()));
}

}  // namespace
