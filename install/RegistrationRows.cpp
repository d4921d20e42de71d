#include "install/RegistrationRows.h"

#include <string>
#include <string_view>

#include "engine/ProductIds.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Vendor.h"

namespace {

constexpr char kCompatibilityKey[] =
    "SOFTWARE\\Microsoft\\Internet Explorer\\ActiveX Compatibility\\" LUMEN_CONTROL_CLASS_ID;
constexpr wchar_t kPublisher[] = L"Corva Systems Incorporated";

// How a kind is called in Add/Remove Programs, and on the uninstaller's command line.
struct KindNames {
  const wchar_t* label;
  const wchar_t* word;
};
KindNames NamesOf(uint32_t kind) {
  switch (kind) {
    case product_kind::ActiveX: return {L"ActiveX", L"activex"};
    case product_kind::Plugin: return {L"NPAPI", L"plugin"};
    case product_kind::Pepper: return {L"PPAPI", L"pepperplugin"};
    default: return {L"", L""};
  }
}

MString Key(const std::string& ascii) {
  return MString(WideView(WidenAscii(ascii)));
}

MString Joined(std::initializer_list<MString> parts) {
  MString text(L"");
  for (const MString& part : parts) text.Append(part);
  return text;
}

}  // namespace

RegistryRows UninstallEntryRows(uint32_t kind, const MString& version, const MString& uninstallerPath,
                                uint32_t sizeInKilobytes) {
  MString rest = version;
  const MString major = rest.TakeUntil(".");
  (void)rest.Take(1);
  const MString minor = rest.TakeUntil(".");
  const KindNames names = NamesOf(kind);
  const MString key = Key(GetUninstallEntryKey(kind));
  return {
      // The major version alone, so that updates within it keep the entry's name.
      {key, L"DisplayName", Joined({L"Corva Lumen Player ", major, L" ", names.label, L" 64-bit"})},
      {key, L"Publisher", MString(kPublisher)},
      {key, L"DisplayVersion", version},
      {key, L"HelpLink", MString(LUMEN_VENDOR_HOME_PAGE L"/go/lumenplayer_support/")},
      {key, L"NoModify", 1u},
      {key, L"NoRepair", 1u},
      {key, L"RequiresIESysFile", MString(L"4.70.0.1155")},
      {key, L"URLInfoAbout", MString(LUMEN_VENDOR_HOME_PAGE)},
      {key, L"URLUpdateInfo", MString(LUMEN_VENDOR_HOME_PAGE L"/go/getlumenplayer/")},
      {key, L"VersionMajor", major.ParseDigits()},
      {key, L"VersionMinor", minor.ParseDigits()},
      {key, L"UninstallString", Joined({uninstallerPath, L" -maintain ", names.word})},
      {key, L"DisplayIcon", uninstallerPath},
      {key, L"EstimatedSize", sizeInKilobytes},
  };
}

RegistryRows InventoryRows(uint32_t kind, const InventoryFacts& facts) {
  const MString key = Key(GetProductKey(kind));
  RegistryRows rows = {
      // Twice in succession, on purpose: logs of installations are compared write by write.
      {key, L"Version", facts.version},
      {key, L"Version", facts.version},
      {key, L"PlayerPath", facts.playerPath},
      {key, L"UninstallerPath", facts.uninstallerPath},
      {key, L"isScriptDebugger", facts.releasePlayer ? 0u : 1u},
      {key, L"isESR", 0u},
      {key, L"isMSI", facts.fromMsi ? 1u : 0u},
      {Key(GetReleaseTypeKey(kind)), L"Release", 1u},
  };
  // Lifts the browser's kill switch, which an earlier installation may have left on.
  if (kind == product_kind::ActiveX) rows.push_back({Key(kCompatibilityKey), L"Compatibility Flags", 0u});
  return rows;
}

MString PluginRegistryKey() {
  return L"SOFTWARE\\MozillaPlugins\\" LUMEN_PLUGIN_ID;
}

RegistryRows PluginRows(const MString& path, const MString& version) {
  const MString key = PluginRegistryKey();
  const MString name = Joined({L"Corva\u00AE Lumen\u00AE Player ", version, L" Plugin"});
  return {
      {key, L"Path", path},        {key, L"ProductName", name}, {key, L"Vendor", MString(kPublisher)},
      {key, L"Description", name}, {key, L"Version", version},
  };
}

MString ImageExecutionKey(const MString& fileName) {
  return Joined({L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\", fileName});
}
