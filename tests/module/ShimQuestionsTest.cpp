// What the shim answers about the machine: registry values and a function of the browser that may be missing.
#include "tests/module/LoadedModule.h"
#include "tests/support/ImportHook.h"

namespace {

constexpr wchar_t kPolicies[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Policies\\System";
constexpr wchar_t kOtherPlayer[] = L"SOFTWARE\\RealNetworks\\RealPlayer";
}  // namespace

TEST_F(ModuleFixture, UacIsOnWhenThePolicyIsAboveZero) {
  TestValue policy(HKEY_LOCAL_MACHINE, kPolicies, L"EnableLUA");
  for (const uint32_t value : {0u, 1u, 2u}) {
    policy.SetNumber(value);
    EXPECT_EQ(shim->IsUacEnabled(), value != 0) << value;
  }
  policy.SetText(L"1");  // not a number
  EXPECT_FALSE(shim->IsUacEnabled());
  policy.Delete();
  EXPECT_FALSE(shim->IsUacEnabled());
}

TEST_F(ModuleFixture, ABadPlayerIsOneWhoseVersionBeginsWithSix) {
  TestValue version(HKEY_LOCAL_MACHINE, kOtherPlayer, L"version");
  const std::pair<const wchar_t*, bool> rows[] = {{L"6.0.12.1", true}, {L"16.0", false}, {L"", false}};
  for (const auto& [text, bad] : rows) {
    version.SetText(text);
    EXPECT_EQ(shim->IsBadRealPlayer(), bad) << ToUtf8(text);
  }
  version.Delete();
  EXPECT_FALSE(shim->IsBadRealPlayer());
}

TEST_F(ModuleFixture, RefreshingThePolicyTellsWhetherTheBrowserCouldBeAsked) {
  static int refreshes = 0;
  static bool has = false;
  const ImportHook find(
      LoadedModule(), "GetProcAddress", +[](HMODULE, LPCSTR name) -> FARPROC {
        HRESULT(WINAPI * refresh)() = [] { return ++refreshes, E_FAIL; };
        const bool right = has && std::string_view(name) == "IERefreshElevationPolicy";
        return right ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(refresh)) : nullptr;
      });
  for (const bool there : {false, true}) {
    has = there;
    EXPECT_EQ(shim->RefreshElevationPolicy(), there) << "whatever it answers";
    EXPECT_EQ(GetModuleHandleW(L"ieframe.dll"), nullptr) << "it is freed";
  }
  EXPECT_EQ(refreshes, 1);
  const ImportHook load(
      LoadedModule(), "LoadLibraryW", +[](LPCWSTR path) -> HMODULE {
        EXPECT_STREQ(path, L"C:\\windows\\system32\\ieframe.dll");
        return nullptr;
      });
  EXPECT_FALSE(shim->RefreshElevationPolicy());
}
