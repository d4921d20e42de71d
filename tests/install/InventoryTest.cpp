// What is installed, what may be installed over it, and what the clean-up of a kind takes away.
#include "install/Inventory.h"

#include "engine/ProductKeys.h"
#include "tests/install/InstallFixture.h"

TEST_F(InstallFixture, ReleaseTypeIsJudgedByTheLastKindNamed) {
  EXPECT_TRUE(shim->ReleaseTypeMatches(8 | 16 | 32768, 7)) << "nothing is installed";
  SetNumber(kMachinePlayer + "ActiveXReleaseType", "Release", 1);
  SetNumber(kMachinePlayer + "PluginReleaseType", "Release", 2);
  EXPECT_TRUE(shim->ReleaseTypeMatches(8 | 16, 2));
  EXPECT_FALSE(shim->ReleaseTypeMatches(8 | 16, 1));
  EXPECT_EQ(host.Reports(), Lines{});
  SetText(kMachinePlayer + "PepperReleaseType", "Other", "");
  EXPECT_TRUE(shim->ReleaseTypeMatches(8 | 32768, 0)) << "what cannot be read is 0";
  EXPECT_EQ(host.Reports(), Lines{"1 1036 SOFTWARE\\Halcyonics\\LumenPlayerPepperReleaseType/Release 2"});
}

TEST_F(InstallFixture, InstallIsRefusedByReleaseTypeAndByVersion) {
  struct Row {
    const char* why;
    uint32_t kinds, mode;
    uint32_t type;        // of every kind; 0 writes none
    uint32_t safe;        // 0 writes none
    const char* version;  // of every kind; null writes none
    bool allowed;
    uint32_t code;  // 5 when untouched
  };
  const Row rows[] = {
      {"no kind", 0, 1, 9, 999, "29", true, 5},
      {"another type of the control", 8, 1, 2, 0, nullptr, false, 1161},
      {"type goes before version", 32768, 1, 2, 0, "29", false, 1161},
      {"unsafe control", 8, 1, 1, 127, nullptr, false, 1013},
      {"the control may go back", 8, 1, 1, 126, "29", true, 5},
      {"the plug-in may not go back", 16, 1, 1, 0, "28.0.0.127", false, 1013},
      {"the PPAPI library may not go back", 32768, 0, 0, 0, "28.1", false, 1162},
      {"plug-ins do not ask the safe list", 16 | 32768, 1, 1, 999, "28.0.0.125", true, 5},
  };
  for (const Row& row : rows) {
    ClearMachine();
    for (const uint32_t kind : kAllKinds) {
      if (row.type != 0) SetNumber(GetReleaseTypeKey(kind), "Release", row.type);
      if (row.version != nullptr) SetText(GetProductKey(kind), "Version", row.version);
    }
    if (row.safe != 0) SetNumber(kSafeVersionsKey, "28.0", row.safe);
    uint32_t code = 5;
    EXPECT_EQ(shim->CheckInstallAllowed(row.kinds, &code, row.mode), row.allowed) << row.why;
    EXPECT_EQ(code, row.code) << row.why;
  }
}
