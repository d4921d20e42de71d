#include "host/WhatIf.h"

#include <windows.h>

#include <set>

#include "engine/FilePattern.h"
#include "engine/InstallEngine.h"
#include "engine/ProductIds.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "host/Console.h"
#include "host/PayloadList.h"
#include "install/RegistrationRows.h"

namespace {

bool Exists(const WideString& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void Would(const std::string& what, const WideString& which) {
  Say("would " + what + " " + ToUtf8(which) + "\n");
}

void WouldWrite(const RegistryRows& rows) {
  for (const RegistryRow& row : rows) {
    const auto* const text = std::get_if<MString>(&row.data);
    const std::string data =
        text != nullptr ? "\"" + ToUtf8(text->View()) + "\"" : std::to_string(std::get<uint32_t>(row.data));
    Would("write HKLM", WideString(row.key.View()) + L"\\" + WideString(row.name.View()) + L" = " + FromUtf8(data));
  }
}

void TellKind(const Session& session, uint32_t kind) {
  const SettingsTree* const settings = session.host.GetSettings();
  const MString& version = session.module->GetEngine()->version;
  const WideString player = PlayerDirectory() + PlayerName(settings, kind);
  const WideString uninstaller = PlayerDirectory() + UninstallerName(settings, kind);
  const MString uninstallerText{WideView(uninstaller)};
  if (kind == product_kind::ActiveX) {
    Would("register the broker at", uninstaller);
    Would("call DllRegisterServer of", player);
  }
  if (kind == product_kind::Plugin) WouldWrite(PluginRows(MString(WideView(player)), version));
  MString payload;
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  const bool sized = GetFileAttributesExW(session.host.GetPayloadPath(&payload)->Data(), GetFileExInfoStandard, &data);
  const uint64_t bytes = (uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
  const auto kilobytes = sized ? static_cast<uint32_t>(bytes >> 10) : kUnknownPayloadSize;
  WouldWrite(UninstallEntryRows(kind, version, uninstallerText, kilobytes));
  InventoryFacts facts;
  facts.version = version;
  facts.playerPath = MString(WideView(player));
  facts.uninstallerPath = uninstallerText;
  facts.releasePlayer = (session.host.GetFlags() & host_flag::ReleasePlayer) != 0;
  facts.fromMsi = session.host.GetInstallSource() == 2;
  WouldWrite(InventoryRows(kind, facts));
}

// One file may be named by the inventory and by a pattern.
void WouldDelete(const WideString& path, std::set<WideString>* told) {
  if (!path.empty() && Exists(path) && told->insert(path).second) Would("delete", path);
}

void WouldDeleteKey(const std::string& key) {
  if (OpenKey(HKEY_LOCAL_MACHINE, key.c_str(), KEY_READ)) Would("delete HKLM", WidenAscii(key));
}

void WouldDeletePatterns(const Session& session, const MStringList* patterns, std::set<WideString>* told) {
  const MString directory{WideView(PlayerDirectory())};
  for (const auto* pattern = patterns->Head(); pattern != nullptr; pattern = pattern->next) {
    const MString found = FindMatchingFile(session.module->GetEngine()->systemEntries, directory, pattern->key);
    WouldDelete(WideString(found.View()), told);
  }
}

void TellRemovalOf(const Session& session, uint32_t kind) {
  std::set<WideString> told;
  const std::string product = GetProductKey(kind);
  for (const char* const name : {"PlayerPath", "UninstallerPath"}) {
    const auto path = ReadText(HKEY_LOCAL_MACHINE, product.c_str(), name);
    if (path) WouldDelete(WidenFromCodePage(*path), &told);
  }
  switch (kind) {
    case product_kind::ActiveX:
      WouldDeletePatterns(session, session.module->GetAXFilenamePatterns(), &told);
      WouldDeleteKey("SOFTWARE\\Classes\\CLSID\\" LUMEN_CONTROL_CLASS_ID);
      break;
    case product_kind::Plugin: WouldDeletePatterns(session, session.module->GetPluginFilenamePatterns(), &told); break;
    default: WouldDeletePatterns(session, session.module->GetPepperFilenamePatterns(), &told); break;
  }
  WouldDeleteKey(product);
  WouldDeleteKey(GetReleaseTypeKey(kind));
  WouldDeleteKey(GetUninstallEntryKey(kind));
}

}  // namespace

HostExit TellInstallation(const Session& session, const std::vector<FileToCopy>& files) {
  for (const FileToCopy& file : files) Would(Exists(file.destination) ? "replace" : "copy", file.destination);
  for (const uint32_t kind : EachKind(session.line.kinds)) TellKind(session, kind);
  for (const PayloadFile& service : ServiceFiles(session.host.GetSettings(), session.host.AnalyticsAllowed())) {
    if (Exists(PayloadFolder(session) + service.name)) Would("set up the service", service.name);
  }
  if ((session.line.kinds & product_kind::Pepper) != 0) {
    Would("schedule the hourly check of",
          PlayerDirectory() + UninstallerName(session.host.GetSettings(), product_kind::Pepper));
  }
  return HostExit::Done;
}

HostExit TellRemoval(const Session& session) {
  for (const uint32_t kind : EachKind(session.line.kinds)) TellRemovalOf(session, kind);
  if ((session.line.kinds & product_kind::Pepper) != 0) Would("take back", L"the hourly check");
  for (const PayloadFile& service : ServiceFiles(session.host.GetSettings(), true)) {
    const WideString path = PlayerDirectory() + service.name;
    if (!AnyInstalled(kAllKinds & ~session.line.kinds) && Exists(path)) Would("remove the service", path);
  }
  return HostExit::Done;
}
