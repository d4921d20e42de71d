// What people read when something failed: the reference host's reports on the failure panel, in the module's own words.
#include <windows.h>

#include <gtest/gtest.h>

#include "engine/ProductKind.h"
#include "host/ReferenceHost.h"
#include "tests/module/LoadedModule.h"
#include "tests/support/Texts.h"
#include "tests/ui/toolkit/WindowDriver.h"
#include "ui/panels/MInstallerWindow.h"
#include "ui/toolkit/MorphUI.h"

namespace {

struct Failure {
  ReportCode code;
  const char* words;  // what the message begins with
  enum { Install, InstallAttention, RemoveAttention } heading = Install;
};

const Failure kFailures[] = {
    {ReportCode::InstallRefusedByVersionInMode1, "The version of Corva® Lumen® Player that you are trying to install"},
    {ReportCode::InstallRefusedByReleaseType, "You must run the Lumen Player uninstaller before"},
    {ReportCode::InstallRefusedByVersion, "The beta version of Corva® Lumen® Player"},
    {ReportCode::FileNotDeleted, "A required file (x) could not be written"},
    {ReportCode::ControlNotLoaded, "The ActiveX control for Lumen Player could not be registered."},
    {ReportCode::RegisterServerMissing, "The ActiveX control for Lumen Player could not be registered."},
    {ReportCode::InstallerBlocked, "The Lumen Player Settings Manager is currently open.", Failure::InstallAttention},
    {ReportCode::InstallerNeedsRestart, "Please restart your system to complete the installation process.",
     Failure::InstallAttention},
    {ReportCode::SystemFileQueued, "Please restart your system to complete the uninstallation process.",
     Failure::RemoveAttention},
    {ReportCode::SystemFileNotRemoved, "The Lumen Player Settings Manager is currently open.",
     Failure::RemoveAttention},
    {ReportCode::UpdateServiceNotRemoved, "The update service could not be removed."},
    {ReportCode::ServiceStopTimedOut, "A service did not stop in time: x"},
    {ReportCode::AdministratorWanted, "You must have administrative privileges to install Corva® Lumen® Player."},
    {ReportCode::AnotherInstallerActive, "Cannot continue because another Lumen® Player installer or uninstaller"},
    {ReportCode::PayloadMissing, "Cannot continue because the program is damaged."},
    {ReportCode::PayloadNotPermitted, "A required file (x) could not be written due to insufficient permissions."},
    {ReportCode::PayloadNotInstalled, "A required file (x) could not be installed."},
    {ReportCode::PlayerInUse, "Lumen Player could not be installed because an existing version may still be in use."},
    {ReportCode::PlayerNotRegistered, "A player (x) could not be registered."},
    {ReportCode::PlayerNotRemoved, "Not every player could be removed."},
    {static_cast<ReportCode>(5555), "Error '5555'.  No further information is available."},
};

TEST(FailureWords, AreThoseOfTheNewestReport) {
  const LCID before = GetThreadLocale();
  SetThreadLocale(MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT));
  const char* const headings[] = {"The installation encountered errors:", "The installer needs your attention.",
                                  "The uninstaller needs your attention."};
  for (const Failure& row : kFailures) {
    SCOPED_TRACE(row.words);
    ReferenceHost host(product_kind::ActiveX);
    host.resourceModule = LoadedModule();
    ASSERT_NE(StartModule(&host), nullptr);
    MorphUI* const ui = host.shim->CreateUI();
    ASSERT_NE(ui, nullptr);
    const auto& window = *static_cast<MInstallerWindow*>(ui->window);
    host.Tell(Severity::MustTell, ReportCode::PayloadMissing, L"y");
    host.Tell(Severity::MustTell, row.code, L"x");
    host.Tell(Severity::Survived, ReportCode::DirectoryNotListed, L"z");
    ui->PostEvent(FailureEventId, kShowLastError, 0);
    driver::PumpInput(window.handle);
    const std::string shown = Text(window.failurePanel->messageText->text);
    EXPECT_TRUE(shown.starts_with(row.words)) << shown;
    EXPECT_EQ(shown.find('^'), std::string::npos) << shown;
    EXPECT_EQ(Text(window.failurePanel->headerText->text), headings[row.heading]);
    EXPECT_EQ(Text(window.title), row.heading == Failure::RemoveAttention ? "Uninstall Corva Lumen Player"
                                                                          : "Corva Lumen Player 28.0 Installer");
    host.shim->DestroyUI(nullptr, ui);
    host.shim->Destroy(1);
  }
  SetThreadLocale(before);
}

}  // namespace
