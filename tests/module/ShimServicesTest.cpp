// The shim's removal of the update service, on real files.
#include "engine/ProductKind.h"
#include "tests/module/LoadedModule.h"
#include "tests/support/TestFiles.h"

namespace {

constexpr wchar_t kFolder[] = L"C:\\LumenShimServices";

}  // namespace

TEST_F(ModuleFixture, AReleasePlayerKeepsItsUpdateServiceAndAnotherPlayersGoes) {
  const testing_files::CleanDirectory folder{kFolder};
  const WideString service = WideString(kFolder) + L"\\Halcyons\\Lumen\\LumenUpdate.exe";
  testing_files::MakeDirectories(WideString(kFolder) + L"\\Halcyons\\Lumen");
  testing_files::WriteWhole(service, "not a program");  // so it can be deleted but not asked to go
  host.updateServiceFileName = L"LumenUpdate.exe";
  host.flags = host_flag::ReleasePlayer;
  EXPECT_TRUE(shim->RemoveUpdateService(nullptr, MString(kFolder)));
  EXPECT_TRUE(testing_files::Exists(service));
  EXPECT_EQ(host.Reports(), Lines());
  host.flags = 0;
  EXPECT_FALSE(shim->RemoveUpdateService(nullptr, MString(kFolder)));
  EXPECT_FALSE(testing_files::Exists(service));
  const Lines reports = host.Reports();
  ASSERT_GE(reports.size(), 2u);
  EXPECT_EQ(reports.back(), "1 1100");
  EXPECT_EQ(std::count(reports.begin(), reports.end(), "1 1118"), 2) << "both switches of the notify mode";
  host.Forget();
  EXPECT_TRUE(shim->RemoveUpdateService(nullptr, MString(kFolder))) << "none is there any more";
}
