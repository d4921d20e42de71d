#include "host/PayloadList.h"

#include "engine/ProductKind.h"

namespace {

const wchar_t* SettingOf(uint32_t kind) {
  switch (kind) {
    case product_kind::ActiveX: return L"ActiveX";
    case product_kind::Plugin: return L"Plugin";
    default: return L"Pepper";
  }
}

WideString FirstValue(const SettingsTree* settings, const WideString& name) {
  const auto values = SettingValues(settings, name);
  return values.empty() ? WideString() : values.front();
}

}  // namespace

std::vector<WideString> SettingValues(const SettingsTree* settings, const WideString& name) {
  std::vector<WideString> values;
  const SettingsNode* const node = FindSetting(settings, MString(WideView(name)));
  for (const auto* value = node == nullptr ? nullptr : node->values; value != nullptr; value = value->next) {
    values.emplace_back(value->name.View());
  }
  return values;
}

WideString PlayerName(const SettingsTree* settings, uint32_t kind) {
  return FirstValue(settings, WideString(L"Host.") + SettingOf(kind));
}

WideString UninstallerName(const SettingsTree* settings, uint32_t kind) {
  return FirstValue(settings, WideString(L"Host.Uninstaller.") + SettingOf(kind));
}

WideString UpdateServiceName(const SettingsTree* settings) {
  return FirstValue(settings, L"Host.UpdateService");
}

std::vector<PayloadFile> FilesOfKind(const SettingsTree* settings, uint32_t kind) {
  std::vector<PayloadFile> files;
  const WideString player = PlayerName(settings, kind);
  if (!player.empty()) files.push_back({player, FileSource::Payload, kind});
  const WideString uninstaller = UninstallerName(settings, kind);
  if (!uninstaller.empty()) {
    const WideString stem = uninstaller.substr(0, uninstaller.rfind(L'.'));
    files.push_back({uninstaller, FileSource::Program, kind});
    files.push_back({stem + L".dll", FileSource::Module, kind});
    files.push_back({stem + L".settings", FileSource::Settings, kind});
  }
  for (const WideString& extra : SettingValues(settings, WideString(L"Host.ExtraFiles.") + SettingOf(kind))) {
    files.push_back({extra, FileSource::Payload, kind, true});
  }
  return files;
}

std::vector<PayloadFile> ServiceFiles(const SettingsTree* settings, bool analytics) {
  std::vector<PayloadFile> files;
  const WideString update = UpdateServiceName(settings);
  const WideString feedback = FirstValue(settings, L"Host.FeedbackService");
  if (!update.empty()) files.push_back({update, FileSource::Payload, 0, true});
  if (!feedback.empty() && analytics) files.push_back({feedback, FileSource::Payload, 0, true});
  return files;
}
