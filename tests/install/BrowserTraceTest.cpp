// What installing learns from browsers.
#include "install/PluginDirectories.h"

#include "tests/install/InstallFixture.h"

TEST_F(InstallFixture, PluginDirectoriesComeFromEveryBrowserInTurnAndOnce) {
  SetText("Software\\Mozilla\\Firefox 3\\extensions", "Plugins", "C:\\ff3\\plugins");
  SetText("Software\\Mozilla\\Firefox 4", "Plugins", "not here");
  SetText("Software\\Mozilla\\Seamonkey\\extensions", "Plugins", "C:\\sea\\plugins");
  SetText("Software\\Opera Software", "Last CommandLine", "C:\\mine\\opera.exe", HKEY_CURRENT_USER);
  SetText("Software\\Opera Software", "Last CommandLine", "C:\\all\\opera.exe");
  SetText("Software\\Opera Software", "Plugin Path", "C:\\all\\Plugins");
  const Lines found = {"C:\\ff3\\plugins", "C:\\sea\\plugins", "C:\\mine\\Program\\Plugins", "C:\\all\\Plugins",
                       "C:\\fallback"};
  RefreshPluginDirectories(shim, L"C:\\fallback");
  EXPECT_EQ(Keys(shim->GetPluginDirectories()), found);
  EXPECT_EQ(host.Reports(), (Lines{"1 1036 Software\\Mozilla\\Firefox 4\\extensions/Plugins 2",
                                   "1 1036 Software\\Opera Software/Plugin Path 2"}));
  RefreshPluginDirectories(shim, L"C:\\other");
  EXPECT_EQ(Keys(shim->GetPluginDirectories()), found);
}
