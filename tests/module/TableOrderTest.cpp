// Pins the three tables that a host and the module share: a moved row calls the wrong operation in every host.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"

namespace {

struct Row {
  const char* name;
  size_t slot;
};

// The place in the table that a pointer to a virtual operation stands for: one more than its offset in bytes.
template <class Class, class Function>
Row RowOf(const char* name, Function Class::*operation) {
  uintptr_t words[2] = {};
  static_assert(sizeof(operation) == sizeof(words));
  std::memcpy(words, &operation, sizeof(words));
  EXPECT_EQ(words[0] % sizeof(void*), 1u) << name << " is not virtual";
  return {name, (words[0] - 1) / sizeof(void*)};
}

template <size_t N>
void ExpectInOrder(const Row (&rows)[N]) {
  for (size_t i = 0; i < N; ++i) EXPECT_EQ(rows[i].slot, i) << rows[i].name;
}

}  // namespace

TEST(TableOrder, Shim) {
  using S = LumenBrokerShim;
  const Row rows[] = {
      RowOf("Destroy", &S::Destroy),
      RowOf("LoadString", &S::LoadString),
      RowOf("CreateUI", &S::CreateUI),
      RowOf("DestroyUI", &S::DestroyUI),
      RowOf("ReleaseTypeMatches", &S::ReleaseTypeMatches),
      RowOf("CheckInstallAllowed", &S::CheckInstallAllowed),
      RowOf("IsUacEnabled", &S::IsUacEnabled),
      RowOf("UninstallProduct", &S::UninstallProduct),
      RowOf("RegisterProduct", &S::RegisterProduct),
      RowOf("RemoveUpdateService", &S::RemoveUpdateService),
      RowOf("RemoveProductKind", &S::RemoveProductKind),
      RowOf("RemoveNamedFiles", &S::RemoveNamedFiles),
      RowOf("RemoveOneFile", &S::RemoveOneFile),
      RowOf("RemovePatternFiles", &S::RemovePatternFiles),
      RowOf("RefreshElevationPolicy", &S::RefreshElevationPolicy),
      RowOf("RegisterBrokerServer", &S::RegisterBrokerServer),
      RowOf("RegisterActiveXControl", &S::RegisterActiveXControl),
      RowOf("RegisterPluginEntry", &S::RegisterPluginEntry),
      RowOf("UnregisterActiveXControl", &S::UnregisterActiveXControl),
      RowOf("StopPlayers", &S::StopPlayers),
      RowOf("RunBroker", &S::RunBroker),
      RowOf("GetEngine", &S::GetEngine),
      RowOf("GetAXFilenames", &S::GetAXFilenames),
      RowOf("GetPluginFilenames", &S::GetPluginFilenames),
      RowOf("GetPluginDirectories", &S::GetPluginDirectories),
      RowOf("GetAXFilenamePatterns", &S::GetAXFilenamePatterns),
      RowOf("GetPluginFilenamePatterns", &S::GetPluginFilenamePatterns),
      RowOf("GetPepperFilenamePatterns", &S::GetPepperFilenamePatterns),
      RowOf("GetProductManagerPatterns", &S::GetProductManagerPatterns),
      RowOf("GetProductManagerEntries", &S::GetProductManagerEntries),
      RowOf("StoreConflicts", &S::StoreConflicts),
      RowOf("HasStoredConflicts", &S::HasStoredConflicts),
      RowOf("FindConflicts", &S::FindConflicts),
      RowOf("GetExtraActiveXFiles", &S::GetExtraActiveXFiles),
      RowOf("GetExtraPluginFiles", &S::GetExtraPluginFiles),
      RowOf("GetExtraPepperFiles", &S::GetExtraPepperFiles),
      RowOf("AddExtraActiveXFile", &S::AddExtraActiveXFile),
      RowOf("AddExtraPluginFile", &S::AddExtraPluginFile),
      RowOf("AddExtraPepperFile", &S::AddExtraPepperFile),
      RowOf("LoadEngineLists", &S::LoadEngineLists),
      RowOf("MarkUpdateRejected", &S::MarkUpdateRejected),
      RowOf("ReadUpdateDescription", &S::ReadUpdateDescription),
      RowOf("ExtractMetaBlock", &S::ExtractMetaBlock),
      RowOf("ExtractUpdateVersion", &S::ExtractUpdateVersion),
      RowOf("FindDefaultBrowser", &S::FindDefaultBrowser),
      RowOf("OpenExpressInstallUrl", &S::OpenExpressInstallUrl),
      RowOf("OpenUrl", &S::OpenUrl),
      RowOf("OpenControlPanelApplet", &S::OpenControlPanelApplet),
      RowOf("IsBadRealPlayer", &S::IsBadRealPlayer),
      RowOf("GetInstalledVersionState", &S::GetInstalledVersionState),
      RowOf("WasRegistrationReached", &S::WasRegistrationReached),
  };
  static_assert(std::size(rows) == 51);
  ExpectInOrder(rows);
}

TEST(TableOrder, HostCallbacks) {
  using H = HostCallbacks;
  const Row rows[] = {
      RowOf("ReportMessage", &H::ReportMessage),
      RowOf("LoadStringFallback", &H::LoadStringFallback),
      RowOf("GetMessageLog", &H::GetMessageLog),
      RowOf("GetFlags", &H::GetFlags),
      RowOf("DecompressImage", &H::DecompressImage),
      RowOf("GetPayloadPath", &H::GetPayloadPath),
      RowOf("ConflictCheckIsOptional", &H::ConflictCheckIsOptional),
      RowOf("ConflictsBlockInstall", &H::ConflictsBlockInstall),
      RowOf("NotifyConflictsCleared", &H::NotifyConflictsCleared),
      RowOf("IsRestartRequired", &H::IsRestartRequired),
      RowOf("GetBrowserPaths", &H::GetBrowserPaths),
      RowOf("GetPluginPaths", &H::GetPluginPaths),
      RowOf("GetPepperPaths", &H::GetPepperPaths),
      RowOf("GetControlPanelAppletName", &H::GetControlPanelAppletName),
      RowOf("GetSettingsManagerFileName", &H::GetSettingsManagerFileName),
      RowOf("GetUtilityPath", &H::GetUtilityPath),
      RowOf("GetUpdateServiceFileName", &H::GetUpdateServiceFileName),
      RowOf("GetFeedbackServiceFileName", &H::GetFeedbackServiceFileName),
      RowOf("GetSettings", &H::GetSettings),
      RowOf("GetInstallSource", &H::GetInstallSource),
      RowOf("GetDownloadSettings", &H::GetDownloadSettings),
      RowOf("GetOsClass", &H::GetOsClass),
      RowOf("SkipsUpdateChoice", &H::SkipsUpdateChoice),
      RowOf("AnalyticsAllowed", &H::AnalyticsAllowed),
      RowOf("GetSessionMode", &H::GetSessionMode),
      RowOf("BeginRemoval", &H::BeginRemoval),
      RowOf("FileRemovalFinished", &H::FileRemovalFinished),
      RowOf("GetPreviousActiveXVersion", &H::GetPreviousActiveXVersion),
      RowOf("GetPreviousPluginVersion", &H::GetPreviousPluginVersion),
      RowOf("GetPreviousPepperVersion", &H::GetPreviousPepperVersion),
      RowOf("GetTaskCommandPath", &H::GetTaskCommandPath),
      RowOf("GetUpdateDialogData", &H::GetUpdateDialogData),
      RowOf("SetAutoUpdateChoice", &H::SetAutoUpdateChoice),
      RowOf("StoreUpdateChoice", &H::StoreUpdateChoice),
  };
  static_assert(std::size(rows) == 34);
  ExpectInOrder(rows);
}

TEST(TableOrder, MessageLog) {
  const Row rows[] = {
      RowOf("Count", &MessageLog::Count),       RowOf("Code", &MessageLog::Code),
      RowOf("Severity", &MessageLog::Severity), RowOf("Text", &MessageLog::Text),
      RowOf("Format", &MessageLog::Format),
  };
  ExpectInOrder(rows);
}
