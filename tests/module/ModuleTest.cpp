// The loaded module as a host drives it: start, lists, directory listings, texts, and the broker's two operations.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

#include "engine/InstallEngine.h"
#include "engine/ProductIds.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "tests/module/LoadedModule.h"
#include "tests/support/ImportHook.h"

namespace {

namespace fs = std::filesystem;

const fs::path kSystemPlayer = "C:\\windows\\system32\\Halcyons\\Lumen";
constexpr char kAllLists[] =
    "AddRemoveProgramsGUIDsAX ax1 ax2; AddRemoveProgramsGUIDsPlugin pl; AddRemoveProgramsGUIDsPepper pe;"
    "FilenamesAX a.ocx; FilenamesPlugin np.dll;"
    "AddRemoveProgramsGUIDsAXSelf axSelf; AddRemoveProgramsGUIDsPluginSelf plSelf;"
    "AddRemoveProgramsGUIDsPepperSelf peSelf;"
    "AXFilenamePatterns Lumen:.ocx; PluginFilenamePatterns np:.dll; PepperFilenamePatterns pep:.dll;"
    "ProductManagerDirectoryPatterns addon;";

fs::path ProductBin() {
  return fs::path(_wgetenv(L"APPDATA")) / "Halcyonics\\Lumen Player\\corva.example\\bin";
}

// Sets up both directories that LoadEngineLists lists, and takes them away again.
class EngineLists : public ModuleFixture {
 protected:
  void SetUp() override {
    ModuleFixture::SetUp();
    for (const fs::path& folder : {kSystemPlayer, ProductBin()}) {
      fs::remove_all(folder);
      fs::create_directories(folder);
    }
    std::ofstream(kSystemPlayer / "Lumen28.ocx") << "x";
    fs::create_directory(ProductBin() / "addon1");
  }
  void TearDown() override {
    fs::remove_all(kSystemPlayer);
    fs::remove_all(ProductBin());
    ModuleFixture::TearDown();
  }
};

std::wstring Widen(const char* text) {
  return {text, text + std::strlen(text)};
}

}  // namespace

TEST_F(ModuleFixture, StartGivesAShimWithAnEngineAndNothingElseDone) {
  // Hosts read the data by their offsets.
  const auto at = [](const void* object, size_t offset) { return static_cast<const char*>(object) + offset; };
  const void* const callbacks = static_cast<HostCallbacks*>(&host);
  EXPECT_EQ(at(callbacks, 8), static_cast<void*>(&host.resourceModule));
  EXPECT_EQ(at(callbacks, 16), static_cast<void*>(&host.shim));
  EXPECT_EQ(at(shim, 8), static_cast<void*>(&shim->host));
  EXPECT_EQ(at(shim, 16), static_cast<void*>(&shim->engine));
  EXPECT_EQ(at(shim, 24), static_cast<void*>(&shim->browserName));
  EXPECT_EQ(at(shim, 40), static_cast<void*>(&shim->registrationReached));
  EXPECT_EQ(shim->host, &host);
  EXPECT_EQ(shim->WasRegistrationReached(), 0);
  EXPECT_EQ(shim->browserName.Length(), 0);
  ASSERT_NE(shim->GetEngine(), nullptr);
  const InstallEngine& engine = *shim->GetEngine();
  EXPECT_EQ(engine.shim, shim);
  EXPECT_EQ(engine.initialized, 0);
  EXPECT_EQ(ToUtf8(engine.version.View()), "28.0.0.126");
  EXPECT_EQ(ToUtf8(engine.productCode4.View()), "{14CAE90A-7395-4DF6-93AD-14AF6E52922B}");
  EXPECT_EQ(host.Reports(), Lines{});
  EXPECT_EQ(host.events, Lines{});
}

TEST_F(EngineLists, AllSettingsListingsAndExtraFilesAreRead) {
  host.UseSettings(Widen(kAllLists).c_str());
  EXPECT_TRUE(shim->LoadEngineLists());
  EXPECT_TRUE(shim->AddExtraActiveXFile(MString(L"a.exe")));
  EXPECT_TRUE(shim->AddExtraPluginFile(MString(L"p.exe")));
  EXPECT_TRUE(shim->AddExtraPepperFile(MString(L"q.exe")));
  const InstallEngine& engine = *shim->GetEngine();
  EXPECT_EQ(shim->GetPluginDirectories(), &engine.pluginDirectories);
  const std::pair<const MStringList*, Lines> rows[] = {
      {&engine.guidsAX, {"ax1", "ax2", "axSelf"}},
      {&engine.guidsPlugin, {"pl", "plSelf", "peSelf"}},  // quirk: those of PPAPI itself go to the plug-in's list
      {&engine.guidsPepper, {"pe"}},
      {shim->GetAXFilenames(), {"a.ocx"}},
      {shim->GetPluginFilenames(), {"np.dll"}},
      {shim->GetAXFilenamePatterns(), {"Lumen:.ocx"}},
      {shim->GetPluginFilenamePatterns(), {"np:.dll"}},
      {shim->GetPepperFilenamePatterns(), {"pep:.dll"}},
      {shim->GetProductManagerPatterns(), {"addon"}},
      {&engine.systemEntries, {"..", "Lumen28.ocx"}},
      {shim->GetProductManagerEntries(), {"..", "addon1"}},
      {shim->GetExtraActiveXFiles(), {"a.exe"}},
      {shim->GetExtraPluginFiles(), {"p.exe"}},
      {shim->GetExtraPepperFiles(), {"q.exe"}},
      {&engine.reserved, {}},
  };
  for (const auto& [list, keys] : rows) EXPECT_EQ(Keys(list), keys);
  EXPECT_EQ(host.Reports(), Lines{});
  EXPECT_TRUE(shim->LoadEngineLists());
  EXPECT_EQ(Keys(shim->GetAXFilenames()), (Lines{"a.ocx", "a.ocx"})) << "quirk: a second load doubles the lists";
}

TEST_F(EngineLists, OnlySomeMissingSettingsMakeItFalseAndTheRestIsStillRead) {
  for (const std::string missing :
       {"AddRemoveProgramsGUIDsAX ", "AddRemoveProgramsGUIDsPlugin ", "AddRemoveProgramsGUIDsPepper ", "FilenamesAX ",
        "FilenamesPlugin ", "AddRemoveProgramsGUIDsAXSelf", "AddRemoveProgramsGUIDsPluginSelf",
        "AddRemoveProgramsGUIDsPepperSelf", "AXFilenamePatterns", "PluginFilenamePatterns", "PepperFilenamePatterns",
        "ProductManagerDirectoryPatterns"}) {
    RecordingHost own;
    std::string text = kAllLists;
    text.insert(text.find(missing), "Not");  // renames the setting
    own.UseSettings(Widen(text.c_str()).c_str());
    shim->host = &own;
    EXPECT_EQ(shim->LoadEngineLists(), missing.ends_with("Self")) << missing;
    EXPECT_EQ(own.Reports(), Lines{}) << missing;
    shim->host = &host;
  }
  // Read in the rounds after it was missing: every list has grown in eleven of twelve rounds.
  EXPECT_EQ(shim->GetEngine()->pepperPatterns.Count(), 11);
  EXPECT_EQ(shim->GetEngine()->productManagerPatterns.Count(), 11);
}

TEST_F(EngineLists, AnUnlistableDirectoryIsReportedAndTheOtherIsStillListed) {
  fs::remove_all(kSystemPlayer);
  host.UseSettings(Widen(kAllLists).c_str());
  EXPECT_FALSE(shim->LoadEngineLists());
  EXPECT_EQ(host.Reports(), Lines{"1 1113 C:\\windows\\system32\\Halcyons\\Lumen\\ 3"});
  EXPECT_EQ(Keys(shim->GetProductManagerEntries()), (Lines{"..", "addon1"}));
}

TEST_F(EngineLists, QuirkTheFirstEntryIsSkippedWhateverItIs) {
  const ImportHook one(
      LoadedModule(), "FindNextFileW", +[](HANDLE, LPWIN32_FIND_DATAW) -> BOOL { return FALSE; });
  host.UseSettings(Widen(kAllLists).c_str());
  EXPECT_TRUE(shim->LoadEngineLists());
  EXPECT_EQ(shim->GetEngine()->systemEntries.Count(), 0);
  EXPECT_EQ(shim->GetProductManagerEntries()->Count(), 0);
}

TEST_F(EngineLists, AnUnknownProductDirectoryIsNotTakenForTheRootOfTheDrive) {
  const ImportHook noFolders(
      LoadedModule(), "SHGetFolderPathW", +[](HWND, int, HANDLE, DWORD, LPWSTR) -> HRESULT { return E_FAIL; });
  host.UseSettings(Widen(kAllLists).c_str());
  EXPECT_FALSE(shim->LoadEngineLists());
  EXPECT_EQ(shim->GetProductManagerEntries()->Count(), 0);
  EXPECT_EQ(Keys(&shim->GetEngine()->systemEntries), (Lines{"..", "Lumen28.ocx"}));
  EXPECT_EQ(host.Reports(), Lines{"1 1113  3"});
}

TEST_F(ModuleFixture, WithoutAnEngineOperationsFailCleanly) {
  InstallEngine* const engine = std::exchange(shim->engine, nullptr);
  EXPECT_EQ(shim->GetEngine(), nullptr);
  EXPECT_EQ(shim->GetExtraPepperFiles(), nullptr);
  EXPECT_FALSE(shim->AddExtraPluginFile(MString(L"p")));
  EXPECT_FALSE(shim->LoadEngineLists());
  shim->engine = engine;
}

TEST_F(ModuleFixture, TextsComeFromTheResourcesOrTheHostOrSayThatTheyAreMissing) {
  // No module of texts is given, so the test program's own is asked, which has none.
  MString text;
  EXPECT_EQ(shim->LoadString(&text, 30, 0), &text);
  EXPECT_EQ(ToUtf8(text.View()), "MISSING LOCALIZATION");
  EXPECT_EQ(host.events, Lines{});
  host.fallbackTexts[30] = MString(L"from the host");
  EXPECT_EQ(shim->LoadString(&text, 30, 1), &text);
  EXPECT_EQ(ToUtf8(text.View()), "from the host");
  EXPECT_EQ(host.events, Lines{"LoadStringFallback 30 0"});
}

TEST_F(ModuleFixture, BrokerRegistrationIsForTheActiveXKindOnly) {
  const std::wstring key = L"Software\\Classes\\CLSID\\" + Widen(LUMEN_BROKER_CLASS_ID_6) + L"\\LocalServer32";
  const auto read = [&] { return ToUtf8(ReadWideText(HKEY_LOCAL_MACHINE, key.c_str(), L"").value_or(L"")); };
  const std::string before = read();
  for (const uint32_t kind : {0u, product_kind::Plugin, product_kind::Pepper, 24u}) {
    EXPECT_TRUE(shim->RegisterBrokerServer(MString(L"C:\\other.exe"), kind));
    EXPECT_EQ(read(), before) << kind;
  }
  EXPECT_TRUE(shim->RegisterBrokerServer(MString(L"C:\\lumen\\server.exe"), product_kind::ActiveX));
  EXPECT_EQ(read(), "C:\\lumen\\server.exe");
  if (before.empty()) {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.substr(0, key.rfind(L'\\')).c_str());
  } else {
    shim->RegisterBrokerServer(MString(WideView(FromUtf8(before))), product_kind::ActiveX);
  }
}

TEST_F(ModuleFixture, RunBrokerEndsWithTheExitCodeOfTheQuitMessage) {
  PostQuitMessage(7);
  EXPECT_EQ(shim->RunBroker(), 7u);
  EXPECT_EQ(host.Reports(), Lines{});
  EXPECT_TRUE(shim->StopPlayers());
  EXPECT_EQ(host.Reports(), Lines{"0 18"});
}
