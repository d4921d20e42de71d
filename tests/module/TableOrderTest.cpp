// Pins the four tables that a host and the module share: a moved row calls the wrong operation in every host.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "ui/toolkit/MorphUI.h"

namespace {

// The place in the table that a pointer to a virtual operation stands for: one more than its offset in bytes.
template <class Class, class Function>
size_t SlotOf(Function Class::*operation) {
  uintptr_t words[2] = {};
  static_assert(sizeof(operation) == sizeof(words));
  std::memcpy(words, &operation, sizeof(words));
  EXPECT_EQ(words[0] % sizeof(void*), 1u) << "not virtual";
  return (words[0] - 1) / sizeof(void*);
}

template <class... Operations>
void ExpectInOrder(Operations... operations) {
  size_t place = 0;
  for (const size_t slot : {SlotOf(operations)...}) EXPECT_EQ(slot, place++);
}

TEST(TableOrder, Shim) {
  using S = LumenBrokerShim;
  ExpectInOrder(&S::Destroy, &S::LoadString, &S::CreateUI, &S::DestroyUI, &S::ReleaseTypeMatches,
                &S::CheckInstallAllowed, &S::IsUacEnabled, &S::UninstallProduct, &S::RegisterProduct,
                &S::RemoveUpdateService, &S::RemoveProductKind, &S::RemoveNamedFiles, &S::RemoveOneFile,
                &S::RemovePatternFiles, &S::RefreshElevationPolicy, &S::RegisterBrokerServer,
                &S::RegisterActiveXControl, &S::RegisterPluginEntry, &S::UnregisterActiveXControl, &S::StopPlayers,
                &S::RunBroker, &S::GetEngine, &S::GetAXFilenames, &S::GetPluginFilenames, &S::GetPluginDirectories,
                &S::GetAXFilenamePatterns, &S::GetPluginFilenamePatterns, &S::GetPepperFilenamePatterns,
                &S::GetProductManagerPatterns, &S::GetProductManagerEntries, &S::StoreConflicts, &S::HasStoredConflicts,
                &S::FindConflicts, &S::GetExtraActiveXFiles, &S::GetExtraPluginFiles, &S::GetExtraPepperFiles,
                &S::AddExtraActiveXFile, &S::AddExtraPluginFile, &S::AddExtraPepperFile, &S::LoadEngineLists,
                &S::MarkUpdateRejected, &S::ReadUpdateDescription, &S::ExtractMetaBlock, &S::ExtractUpdateVersion,
                &S::FindDefaultBrowser, &S::OpenExpressInstallUrl, &S::OpenUrl, &S::OpenControlPanelApplet,
                &S::IsBadRealPlayer, &S::GetInstalledVersionState, &S::WasRegistrationReached);
}

TEST(TableOrder, HostCallbacks) {
  using H = HostCallbacks;
  ExpectInOrder(&H::ReportMessage, &H::LoadStringFallback, &H::GetMessageLog, &H::GetFlags, &H::DecompressImage,
                &H::GetPayloadPath, &H::ConflictCheckIsOptional, &H::ConflictsBlockInstall, &H::NotifyConflictsCleared,
                &H::IsRestartRequired, &H::GetBrowserPaths, &H::GetPluginPaths, &H::GetPepperPaths,
                &H::GetControlPanelAppletName, &H::GetSettingsManagerFileName, &H::GetUtilityPath,
                &H::GetUpdateServiceFileName, &H::GetFeedbackServiceFileName, &H::GetSettings, &H::GetInstallSource,
                &H::GetDownloadSettings, &H::GetOsClass, &H::SkipsUpdateChoice, &H::AnalyticsAllowed,
                &H::GetSessionMode, &H::BeginRemoval, &H::FileRemovalFinished, &H::GetPreviousActiveXVersion,
                &H::GetPreviousPluginVersion, &H::GetPreviousPepperVersion, &H::GetTaskCommandPath,
                &H::GetUpdateDialogData, &H::SetAutoUpdateChoice, &H::StoreUpdateChoice);
}

TEST(TableOrder, MessageLog) {
  ExpectInOrder(&MessageLog::Count, &MessageLog::Code, &MessageLog::Severity, &MessageLog::Text, &MessageLog::Format);
}

TEST(TableOrder, MorphUI) {
  ExpectInOrder(&MorphUI::SetEventCallback, &MorphUI::Notify, &MorphUI::SetWindow, &MorphUI::PostEvent,
                &MorphUI::RunMessageLoop, &MorphUI::GetString);
}

}  // namespace
