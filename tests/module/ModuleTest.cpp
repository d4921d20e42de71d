// The loaded module as a host drives it: start, lists, directory listings.
#include "engine/InstallEngine.h"
#include "tests/module/LoadedModule.h"
#include "tests/support/TestFiles.h"

namespace {

constexpr char kAllLists[] =
    "AddRemoveProgramsGUIDsAX ax1 ax2; AddRemoveProgramsGUIDsPlugin pl; AddRemoveProgramsGUIDsPepper pe;"
    "FilenamesAX a.ocx; FilenamesPlugin np.dll;"
    "AddRemoveProgramsGUIDsAXSelf axSelf; AddRemoveProgramsGUIDsPluginSelf plSelf;"
    "AddRemoveProgramsGUIDsPepperSelf peSelf;"
    "AXFilenamePatterns Lumen:.ocx; PluginFilenamePatterns np:.dll; PepperFilenamePatterns pep:.dll;"
    "ProductManagerDirectoryPatterns addon;";

// Sets up both directories that LoadEngineLists lists, and takes them away again.
class EngineLists : public ModuleFixture {
 protected:
  EngineLists() {
    testing_files::WriteWhole(system.Path() + L"\\Lumen28.ocx", "x");
    testing_files::MakeDirectories(product.Path() + L"\\addon1");
  }
  testing_files::CleanDirectory system{L"C:\\windows\\system32\\Halcyons\\Lumen"};
  testing_files::CleanDirectory product{testing_files::PlayerDirectory() + L"\\corva.example\\bin"};
};

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
  EXPECT_EQ(shim->WasRegistrationReached(), 0);
  EXPECT_EQ(shim->GetEngine()->shim, shim);
}

TEST_F(EngineLists, AllSettingsListingsAndExtraFilesAreRead) {
  host.UseSettings(WidenAscii(kAllLists).c_str());
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
  EXPECT_TRUE(shim->LoadEngineLists());
  EXPECT_EQ(Keys(shim->GetAXFilenames()), (Lines{"a.ocx", "a.ocx"})) << "quirk: a second load doubles the lists";
}
