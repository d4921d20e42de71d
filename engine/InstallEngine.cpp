#include "engine/InstallEngine.h"

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/Reporting.h"
#include "engine/SettingsTree.h"
#include "engine/SystemPaths.h"

namespace {

struct ListSource {
  const wchar_t* setting;
  MStringList InstallEngine::*list;
  bool counts;
};

// The PPAPI ids of "Self" go to the plug-in list. The PPAPI clean-up never sees them, and installed settings rely on
// that.
constexpr ListSource kBeforeSystemEntries[] = {
    {L"AddRemoveProgramsGUIDsAX", &InstallEngine::guidsAX, true},
    {L"AddRemoveProgramsGUIDsPlugin", &InstallEngine::guidsPlugin, true},
    {L"AddRemoveProgramsGUIDsPepper", &InstallEngine::guidsPepper, true},
    {L"FilenamesAX", &InstallEngine::filenamesAX, true},
    {L"FilenamesPlugin", &InstallEngine::filenamesPlugin, true},
    {L"AddRemoveProgramsGUIDsAXSelf", &InstallEngine::guidsAX, false},
    {L"AddRemoveProgramsGUIDsPluginSelf", &InstallEngine::guidsPlugin, false},
    {L"AddRemoveProgramsGUIDsPepperSelf", &InstallEngine::guidsPlugin, false},
    {L"AXFilenamePatterns", &InstallEngine::axPatterns, true},
    {L"PluginFilenamePatterns", &InstallEngine::pluginPatterns, true},
    {L"PepperFilenamePatterns", &InstallEngine::pepperPatterns, true},
};

MString ToMString(const std::optional<WideString>& text) {
  return text ? MString(WideView(*text)) : MString();
}

// Lists a directory that may not have been found. An unknown one must not be listed as it stands: it would be the root
// of the current drive, and removal deletes what it finds by the listing.
bool ListKnown(MStringList* list, const std::optional<WideString>& root, const MString& directory,
               LumenBrokerShim* shim) {
  if (root) return ListDirectory(list, directory, shim);
  Report(shim->host, Severity::Survived, ReportCode::DirectoryNotListed,
         PathAndError(MString(L""), ERROR_PATH_NOT_FOUND));
  return false;
}

}  // namespace

MString SystemPlayerDirectory() {
  MString directory = ToMString(GetSystem32Path());
  directory.AppendPath(L'\\', MString(L"Halcyons"));
  directory.AppendPath(L'\\', MString(L"Lumen"));
  directory.Append(MString(L"\\"));
  return directory;
}

bool InstallEngine::LoadEngineLists() {
  const SettingsTree* const settings = shim->host->GetSettings();
  const std::optional<WideString> systemDirectory = GetSystem32Path();
  const std::optional<WideString> productDirectory = ProductDirectory();
  bool all = true;
  for (const ListSource& source : kBeforeSystemEntries) {
    const bool found = LoadStringList(&(this->*source.list), settings, MString(source.setting));
    if (source.counts) all = found && all;
  }
  all = ListKnown(&systemEntries, systemDirectory, SystemPlayerDirectory(), shim) && all;
  all = LoadStringList(&productManagerPatterns, settings, MString(L"ProductManagerDirectoryPatterns")) && all;
  all = ListKnown(&productManagerEntries, productDirectory, ToMString(productDirectory), shim) && all;
  return all;
}

bool ListDirectory(MStringList* list, const MString& directory, LumenBrokerShim* shim) {
  MString pattern = directory;
  pattern.Append(MString(L"\\*"));
  WIN32_FIND_DATAW entry = {};
  const FindHandle search(FindFirstFileW(pattern.Data(), &entry));
  if (!search) {
    const DWORD error = GetLastError();
    Report(shim->host, Severity::Survived, ReportCode::DirectoryNotListed, PathAndError(directory, error));
    return false;
  }
  while (FindNextFileW(search.Get(), &entry)) list->Add(MString(entry.cFileName));
  return true;
}
