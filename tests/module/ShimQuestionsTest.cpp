// What the shim answers about the machine: registry values and a function of the browser that may be missing.
#include "tests/module/LoadedModule.h"
#include "tests/support/ImportHook.h"

namespace {

constexpr wchar_t kPolicies[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Policies\\System";
constexpr wchar_t kOtherPlayer[] = L"SOFTWARE\\RealNetworks\\RealPlayer";
constexpr wchar_t kPlayer[] = L"Software\\Halcyonics\\LumenPlayer";

// The stand-ins for the calls that RefreshElevationPolicy makes.
std::wstring g_loaded;
bool g_hasLibrary = false;
bool g_hasExport = false;
int g_refreshes = 0;
int g_freed = 0;

HRESULT WINAPI Refresh() {
  ++g_refreshes;
  return E_FAIL;
}
HMODULE WINAPI Load(LPCWSTR path) {
  g_loaded = path;
  return g_hasLibrary ? GetModuleHandleW(nullptr) : nullptr;
}
FARPROC WINAPI Find(HMODULE /*module*/, LPCSTR name) {
  const bool right = g_hasExport && std::string_view(name) == "IERefreshElevationPolicy";
  return right ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Refresh)) : nullptr;
}
BOOL WINAPI Free(HMODULE /*module*/) {
  ++g_freed;
  return TRUE;
}

}  // namespace

TEST_F(ModuleFixture, UacIsOnWhenThePolicyIsAboveZero) {
  SavedValue policy(HKEY_LOCAL_MACHINE, kPolicies, L"EnableLUA");
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
  SavedValue version(HKEY_LOCAL_MACHINE, kOtherPlayer, L"version");
  const std::pair<const wchar_t*, bool> rows[] = {{L"6.0.12.1", true}, {L"16.0", false}, {L"", false}};
  for (const auto& [text, bad] : rows) {
    version.SetText(text);
    EXPECT_EQ(shim->IsBadRealPlayer(), bad) << ToUtf8(text);
  }
  version.Delete();
  EXPECT_FALSE(shim->IsBadRealPlayer());
}

TEST_F(ModuleFixture, AskingForStoredConflictsClearsThem) {
  SavedValue stored(HKEY_CURRENT_USER, kPlayer, L"ConflictingProcs");
  stored.Delete();
  EXPECT_FALSE(shim->HasStoredConflicts());
  stored.SetText(L"Browser,Mail");
  EXPECT_TRUE(shim->HasStoredConflicts());
  EXPECT_FALSE(stored.Exists());
  EXPECT_FALSE(shim->HasStoredConflicts());
}

TEST_F(ModuleFixture, RefreshingThePolicyTellsWhetherTheBrowserCouldBeAsked) {
  struct Row {
    bool library, entry, result;
    int refreshes, freed;
  };
  for (const Row& row : {Row{false, false, false, 0, 0}, Row{true, false, false, 0, 1}, Row{true, true, true, 1, 1}}) {
    g_hasLibrary = row.library;
    g_hasExport = row.entry;
    g_refreshes = g_freed = 0;
    const ImportHook load(LoadedModule(), "LoadLibraryW", &Load);
    const ImportHook find(LoadedModule(), "GetProcAddress", &Find);
    const ImportHook freeing(LoadedModule(), "FreeLibrary", &Free);
    EXPECT_EQ(shim->RefreshElevationPolicy(), row.result);
    EXPECT_EQ(ToUtf8(g_loaded.c_str()), "C:\\windows\\system32\\ieframe.dll");
    EXPECT_EQ(g_refreshes, row.refreshes);
    EXPECT_EQ(g_freed, row.freed);
  }
}
