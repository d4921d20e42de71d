// The loaded module as a host drives it: start, lists, directory listings, texts, and the broker's two operations.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

#include "engine/InstallEngine.h"
#include "engine/ProductIds.h"
#include "engine/ProductKind.h"
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
  EXPECT_EQ(shim->host, &host);
  EXPECT_EQ(shim->WasRegistrationReached(), 0);
  EXPECT_EQ(shim->browserName.Length(), 0);
  ASSERT_NE(shim->GetEngine(), nullptr);
  const InstallEngine& engine = *shim->GetEngine();
  EXPECT_EQ(engine.shim, shim);
  EXPECT_EQ(engine.initialized, 0);
  EXPECT_EQ(ToUtf8(engine.version.View()), "28.0.0.126");
  EXPECT_EQ(ToUtf8(engine.productCode4.View()), "{14CAE90A-7395-4DF6-93AD-14AF6E52922B}");
  EXPECT_EQ(shim->GetAXFilenames()->Count(), 0);
  EXPECT_EQ(host.Reports(), Lines{});
  EXPECT_EQ(host.events, Lines{});
}

TEST_F(ModuleFixture, DataFieldsFollowTheTableInTheirOrder) {
  const auto offset = [](const void* object, const void* field) {
    return static_cast<const char*>(field) - static_cast<const char*>(object);
  };
  const HostCallbacks* const callbacks = &host;
  EXPECT_EQ(offset(callbacks, &callbacks->resourceModule), 8);
  EXPECT_EQ(offset(callbacks, &callbacks->shim), 16);
  EXPECT_EQ(offset(shim, &shim->host), 8);
  EXPECT_EQ(offset(shim, &shim->engine), 16);
  EXPECT_EQ(offset(shim, &shim->browserName), 24);
  EXPECT_EQ(offset(shim, &shim->registrationReached), 40);
}

TEST_F(ModuleFixture, EachListGetterAnswersWithItsOwnListOfTheEngine) {
  InstallEngine* const engine = shim->GetEngine();
  const std::pair<MStringList*, MStringList*> rows[] = {
      {shim->GetAXFilenames(), &engine->filenamesAX},
      {shim->GetPluginFilenames(), &engine->filenamesPlugin},
      {shim->GetPluginDirectories(), &engine->pluginDirectories},
      {shim->GetAXFilenamePatterns(), &engine->axPatterns},
      {shim->GetPluginFilenamePatterns(), &engine->pluginPatterns},
      {shim->GetPepperFilenamePatterns(), &engine->pepperPatterns},
      {shim->GetProductManagerPatterns(), &engine->productManagerPatterns},
      {shim->GetProductManagerEntries(), &engine->productManagerEntries},
      {shim->GetExtraActiveXFiles(), &engine->extraActiveXFiles},
      {shim->GetExtraPluginFiles(), &engine->extraPluginFiles},
      {shim->GetExtraPepperFiles(), &engine->extraPepperFiles},
  };
  for (size_t i = 0; i < std::size(rows); ++i) EXPECT_EQ(rows[i].first, rows[i].second) << "row " << i;
}

TEST_F(ModuleFixture, ExtraFilesGoToTheListOfTheirKind) {
  EXPECT_TRUE(shim->AddExtraActiveXFile(MString(L"a.exe")));
  EXPECT_TRUE(shim->AddExtraPluginFile(MString(L"p.exe")));
  EXPECT_TRUE(shim->AddExtraPepperFile(MString(L"q.exe")));
  EXPECT_TRUE(shim->AddExtraActiveXFile(MString(L"b.exe")));
  EXPECT_EQ(Keys(shim->GetExtraActiveXFiles()), (Lines{"a.exe", "b.exe"}));
  EXPECT_EQ(Keys(shim->GetExtraPluginFiles()), Lines{"p.exe"});
  EXPECT_EQ(Keys(shim->GetExtraPepperFiles()), Lines{"q.exe"});
}

TEST_F(EngineLists, AllSettingsAndListingsAreRead) {
  host.UseSettings(Widen(kAllLists).c_str());
  EXPECT_TRUE(shim->LoadEngineLists());
  const InstallEngine& engine = *shim->GetEngine();
  EXPECT_EQ(Keys(&engine.guidsAX), (Lines{"ax1", "ax2", "axSelf"}));
  EXPECT_EQ(Keys(&engine.filenamesAX), Lines{"a.ocx"});
  EXPECT_EQ(Keys(&engine.filenamesPlugin), Lines{"np.dll"});
  EXPECT_EQ(Keys(&engine.axPatterns), Lines{"Lumen:.ocx"});
  EXPECT_EQ(Keys(&engine.pluginPatterns), Lines{"np:.dll"});
  EXPECT_EQ(Keys(&engine.pepperPatterns), Lines{"pep:.dll"});
  EXPECT_EQ(Keys(&engine.productManagerPatterns), Lines{"addon"});
  EXPECT_EQ(Keys(&engine.systemEntries), (Lines{"..", "Lumen28.ocx"}));
  EXPECT_EQ(Keys(&engine.productManagerEntries), (Lines{"..", "addon1"}));
  EXPECT_EQ(engine.reserved.Count(), 0);
  EXPECT_EQ(host.Reports(), Lines{});
}

TEST_F(EngineLists, QuirkPepperSelfIdsGoToThePluginList) {
  host.UseSettings(Widen(kAllLists).c_str());
  EXPECT_TRUE(shim->LoadEngineLists());
  EXPECT_EQ(Keys(&shim->GetEngine()->guidsPlugin), (Lines{"pl", "plSelf", "peSelf"}));
  EXPECT_EQ(Keys(&shim->GetEngine()->guidsPepper), Lines{"pe"});
}

TEST_F(EngineLists, QuirkASecondLoadDoublesTheLists) {
  host.UseSettings(Widen(kAllLists).c_str());
  EXPECT_TRUE(shim->LoadEngineLists());
  EXPECT_TRUE(shim->LoadEngineLists());
  EXPECT_EQ(Keys(shim->GetAXFilenames()), (Lines{"a.ocx", "a.ocx"}));
}

TEST_F(EngineLists, OnlySomeMissingSettingsMakeItFalseAndTheRestIsStillRead) {
  const std::pair<const char*, bool> rows[] = {
      {"AddRemoveProgramsGUIDsAX ", false},
      {"AddRemoveProgramsGUIDsPlugin ", false},
      {"AddRemoveProgramsGUIDsPepper ", false},
      {"FilenamesAX ", false},
      {"FilenamesPlugin ", false},
      {"AddRemoveProgramsGUIDsAXSelf", true},
      {"AddRemoveProgramsGUIDsPluginSelf", true},
      {"AddRemoveProgramsGUIDsPepperSelf", true},
      {"AXFilenamePatterns", false},
      {"PluginFilenamePatterns", false},
      {"PepperFilenamePatterns", false},
      {"ProductManagerDirectoryPatterns", false},
  };
  for (const auto& [missing, expected] : rows) {
    RecordingHost own;
    std::string text = kAllLists;
    text.insert(text.find(missing), "Not");  // renames the setting
    own.UseSettings(Widen(text.c_str()).c_str());
    shim->host = &own;
    EXPECT_EQ(shim->LoadEngineLists(), expected) << missing;
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
  EXPECT_EQ(shim->GetAXFilenames(), nullptr);
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
  // Any module with a string table will do; the platform's own has one.
  host.resourceModule = LoadLibraryW(L"shell32.dll");
  wchar_t wanted[256] = {};
  uint32_t id = 1;
  while (id < 40000 && LoadStringW(host.resourceModule, id, wanted, 256) < 2) ++id;
  ASSERT_LT(id, 40000u) << "shell32 has no string";
  shim->LoadString(&text, id, 1);
  EXPECT_EQ(ToUtf8(text.View()), ToUtf8(wanted));
  EXPECT_EQ(host.events.size(), 1u);
}

TEST_F(ModuleFixture, StoppingPlayersIsReported) {
  EXPECT_TRUE(shim->StopPlayers());
  EXPECT_EQ(host.Reports(), Lines{"0 18"});
}

TEST_F(ModuleFixture, BrokerRegistrationIsForTheActiveXKindOnly) {
  const std::wstring key = L"Software\\Classes\\CLSID\\" + Widen(LUMEN_BROKER_CLASS_ID_6) + L"\\LocalServer32";
  WideString registered(MAX_PATH, L'\0');
  const auto read = [&] {
    DWORD size = MAX_PATH * sizeof(wchar_t);
    const LONG error =
        RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"", RRF_RT_REG_SZ, nullptr, registered.data(), &size);
    return error == ERROR_SUCCESS ? ToUtf8(registered.c_str()) : std::string("(none)");
  };
  const std::string before = read();
  for (const uint32_t kind : {0u, product_kind::Plugin, product_kind::Pepper, 24u}) {
    EXPECT_TRUE(shim->RegisterBrokerServer(MString(L"C:\\other.exe"), kind));
    EXPECT_EQ(read(), before) << kind;
  }
  EXPECT_TRUE(shim->RegisterBrokerServer(MString(L"C:\\lumen\\server.exe"), product_kind::ActiveX));
  EXPECT_EQ(read(), "C:\\lumen\\server.exe");
  if (before == "(none)") {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\CLSID\\" + Widen(LUMEN_BROKER_CLASS_ID_6)).c_str());
  } else {
    shim->RegisterBrokerServer(MString(WideView(FromUtf8(before))), product_kind::ActiveX);
  }
}

TEST_F(ModuleFixture, RunBrokerEndsWithTheExitCodeOfTheQuitMessage) {
  PostQuitMessage(7);
  EXPECT_EQ(shim->RunBroker(), 7u);
  EXPECT_EQ(host.Reports(), Lines{});
}
