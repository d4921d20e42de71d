// Starting a product: a real process, and the ways round a start that fails. Parameters, and a product that was
// changed, are met by tools/account-addons.
#include "delivery/ProductLaunch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "delivery/ProductStore.h"
#include "tests/delivery/AddOnMaterial.h"
#include "tests/support/DemoAddOnProcess.h"
#include "tests/support/Texts.h"

namespace {

// What the stand-ins answer, and what the shell was asked.
DWORD g_error = 0;
BOOL g_shellAnswer = TRUE;
Lines g_asked;

BOOL WINAPI RefuseToStart(LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID, LPCWSTR,
                          LPSTARTUPINFOW, LPPROCESS_INFORMATION) {
  SetLastError(g_error);
  return FALSE;
}
BOOL WINAPI StartThroughShell(SHELLEXECUTEINFOW* execute) {
  g_asked.push_back(ToUtf8(execute->lpVerb) + " " + ToUtf8(execute->lpFile) + " " + std::to_string(execute->nShow) +
                    " " + std::to_string(execute->fMask) +
                    (execute->lpParameters == nullptr ? "" : " with parameters"));
  return g_shellAnswer;
}

class ProductLaunch : public testing::Test {
 protected:
  ~ProductLaunch() override { demo_addon::Stop(); }  // before the folder is cleaned
  void SetUp() override {
    demo_addon::Stop();
    const auto served = [](const wchar_t* name) { return addon::BytesOf(addon::Folder(L"server\\files\\") + name); };
    ASSERT_EQ(InstallSignedPackage(L"DemoAddOn", served(L"DemoAddOn.package"), anchor.c_str()), StoreResult::Stored);
    ASSERT_EQ(StoreProductDigest(L"DemoAddOn", served(L"digest.s")), StoreResult::Stored);
  }
  bool Launch(const wchar_t* parameters) {
    return LaunchProduct(L"DemoAddOn", parameters, anchor.c_str(), kernel32, shell32);
  }

  const WideString anchor = addon::Folder(L"authority\\root.der");
  const WideString executable = addon::ProductFile(L"DemoAddOn", L"DemoAddOn.exe");
  const testing_files::CleanDirectory clean{addon::ProductsFolder()};
  Kernel32DllHelper kernel32;
  Shell32DllHelper shell32;
};

TEST_F(ProductLaunch, TheCallLastsUntilTheProductIsIdle) {
  const KernelHandle started(CreateEventA(nullptr, TRUE, FALSE, "LumenDemoAddOnStarted"));
  const KernelHandle go(CreateEventA(nullptr, TRUE, FALSE, "LumenDemoAddOnGo"));
  std::atomic<bool> returned = false;
  std::thread caller([&] {
    kernel32.CreateProcessW = nullptr;  // the narrow function starts it then
    EXPECT_TRUE(Launch(nullptr));
    returned = true;
  });
  EXPECT_EQ(WaitForSingleObject(started.Get(), demo_addon::kPatience), WAIT_OBJECT_0);
  EXPECT_FALSE(returned) << "it runs and is not ready yet";
  SetEvent(go.Get());
  caller.join();
  EXPECT_EQ(testing_files::ReadWhole(addon::ProductFile(L"DemoAddOn", L"seen.txt")), "\"" + ToUtf8(executable) + "\"")
      << "without parameters the platform makes the command line";
}

TEST_F(ProductLaunch, ElevationGoesThroughTheShellWithoutTheParameters) {
  kernel32.CreateProcessW = RefuseToStart;
  const Lines asked = {"open " + ToUtf8(executable) + " 1 0"};
  const struct {
    DWORD error;
    decltype(shell32.ShellExecuteExW) shell;
    BOOL answer;
    Lines asked;
  } rows[] = {{740, StartThroughShell, TRUE, asked},
              {740, StartThroughShell, FALSE, asked},
              {740, nullptr, FALSE, {}},
              {ERROR_ACCESS_DENIED, StartThroughShell, FALSE, {}}};
  for (const auto& row : rows) {
    g_asked.clear();
    g_error = row.error;
    shell32.ShellExecuteExW = row.shell;
    g_shellAnswer = row.answer;
    EXPECT_EQ(Launch(L"lost"), row.answer == TRUE) << row.error;
    EXPECT_EQ(g_asked, row.asked) << row.error;
  }
}

}  // namespace
