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
  const MString baseDirectory = SystemPlayerDirectory();
  const MString productDirectory = ToMString(ProductDirectory());
  bool all = true;
  for (const ListSource& source : kBeforeSystemEntries) {
    const bool found = LoadStringList(&(this->*source.list), settings, MString(source.setting));
    if (source.counts) all = found && all;
  }
  all = ListDirectory(&systemEntries, baseDirectory, shim) && all;
  all = LoadStringList(&productManagerPatterns, settings, MString(L"ProductManagerDirectoryPatterns")) && all;
  all = ListDirectory(&productManagerEntries, productDirectory, shim) && all;
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
