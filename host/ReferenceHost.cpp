#include "host/ReferenceHost.h"

#include <cstring>
#include <string>

#include "engine/LumenBrokerShim.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "engine/ReportCode.h"
#include "host/ReportTexts.h"

namespace {

constexpr size_t kLargestSettings = 4 << 20;
constexpr size_t kLongestPath = 32768;

MString Quoted(const MString& text) {
  return MString(WideView(L"\"" + WideString(text.View()) + L"\" "));
}

}  // namespace

WideString OwnPath() {
  WideString path(kLongestPath, 0);
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

WideString SettingsPath() {
  const WideString own = OwnPath();
  return own.substr(0, own.rfind(L'.')) + L".settings";
}

ReferenceHost::ReferenceHost(uint32_t kinds) : flags(kinds), taskCommand(OwnPath()) {
  for (const uint32_t kind : {product_kind::ActiveX, product_kind::Plugin, product_kind::Pepper}) {
    const auto version = ReadText(HKEY_LOCAL_MACHINE, GetProductKey(kind).c_str(), "Version");
    if (version) previousVersions[kind] = FromUtf8(*version);
  }
}

void ReferenceHost::Tell(Severity severity, ReportCode code, const WideString& text) {
  log.Add(static_cast<uint32_t>(severity), static_cast<uint32_t>(code), text);
}

bool ReferenceHost::ReadSettings(const wchar_t* path) {
  const FileHandle file(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file) return false;
  std::string text;
  char block[8192];
  DWORD read = 0;
  do {
    if (!ReadFile(file.Get(), block, sizeof(block), &read, nullptr)) return false;
    text.append(block, read);
    if (text.size() > kLargestSettings) return false;
  } while (read > 0);
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);  // editors put a byte order mark there
  const WideString wide = FromUtf8(text);
  ParseSettings(&settings, MString(WideView(wide)));
  return true;
}

void ReferenceHost::ReportMessage(uint64_t /*reserved*/, uint32_t severity, uint32_t code, MString text) noexcept {
  log.Add(severity, code, text.View());
}

MString ReferenceHost::OwnText(uint32_t id) {
  // With no room for it the text is not copied, and its place in the program is given.
  const wchar_t* resource = nullptr;
  const int length = LoadStringW(GetModuleHandleW(nullptr), id, reinterpret_cast<wchar_t*>(&resource), 0);
  if (length > 0) return MString(WideView(resource, static_cast<size_t>(length)));
  const wchar_t* const text = HostText(id);
  return MString(text == nullptr ? L"MISSING LOCALIZATION" : text);
}

// The window asks with a flag and means the module's tables first; those ask without it for what they lack.
void ReferenceHost::LoadStringFallback(MString* out, uint32_t id, uint32_t flag) noexcept {
  if (flag != 0 && shim != nullptr) {
    shim->LoadString(out, id, 1);
  } else {
    *out = OwnText(id);
  }
}

uint32_t ReferenceHost::GetFlags() noexcept {
  return flags | (playersGone || Yes(L"Host.Debugger") ? 0 : host_flag::ReleasePlayer);
}

// This host's images are stored as they are.
bool ReferenceHost::DecompressImage(void* output, uint32_t outputSize, const void* input, uint32_t inputSize) noexcept {
  if (output == nullptr || input == nullptr || outputSize != inputSize) return false;
  std::memcpy(output, input, inputSize);
  return true;
}

bool ReferenceHost::IsRestartRequired() noexcept {
  return restartRequired || log.Holds(static_cast<uint32_t>(ReportCode::SystemFileQueued));
}

void ReferenceHost::TwoNames(const wchar_t* setting, MString* first, MString* second) const {
  *first = MString(L"");
  *second = MString(L"");
  const SettingsNode* const node = FindSetting(&settings, MString(setting));
  if (node == nullptr || node->values == nullptr) return;
  *first = node->values->name;
  if (node->values->next != nullptr) *second = node->values->next->name;
}

MString* ReferenceHost::OneName(const wchar_t* setting, MString* out) const {
  MString ignored;
  TwoNames(setting, out, &ignored);
  return out;
}

uint32_t ReferenceHost::Number(const wchar_t* setting) const {
  return SettingNumber(setting, 0);
}

uint32_t ReferenceHost::SettingNumber(const wchar_t* setting, uint32_t otherwise) const {
  MString text;
  return OneName(setting, &text)->IsEmpty() ? otherwise : text.ParseDigits();
}

bool ReferenceHost::Yes(const wchar_t* setting) const {
  MString text;
  return OneName(setting, &text)->Equals(MString(L"yes"));
}

MString* ReferenceHost::GetPayloadPath(MString* out) noexcept {
  // A vendor's setup is one file that carries its payload in itself.
  if (OneName(L"Host.Payload", out)->IsEmpty()) *out = MString(WideView(OwnPath()));
  return out;
}
void ReferenceHost::GetBrowserPaths(MString* control, MString* helper) noexcept {
  TwoNames(L"Host.ActiveX", control, helper);
}
void ReferenceHost::GetPluginPaths(MString* control, MString* helper) noexcept {
  TwoNames(L"Host.Plugin", control, helper);
}
void ReferenceHost::GetPepperPaths(MString* control, MString* helper) noexcept {
  TwoNames(L"Host.Pepper", control, helper);
}
void ReferenceHost::GetControlPanelAppletName(MString* out) noexcept {
  OneName(L"Host.ControlPanelApplet", out);
}
void ReferenceHost::GetSettingsManagerFileName(MString* out) noexcept {
  OneName(L"Host.SettingsManager", out);
}
// This program understands -refreshIEElevationPolicies itself.
void ReferenceHost::GetUtilityPath(MString* out) noexcept {
  *out = MString(WideView(OwnPath()));
}
void ReferenceHost::GetUpdateServiceFileName(MString* out) noexcept {
  OneName(L"Host.UpdateService", out);
}
void ReferenceHost::GetFeedbackServiceFileName(MString* out) noexcept {
  OneName(L"Host.FeedbackService", out);
}

void ReferenceHost::GetDownloadSettings(MString* out, uint8_t* flag) noexcept {
  OneName(L"Host.TrustAnchor", out);
  *flag = 0;
}

MString* ReferenceHost::Previous(uint32_t kind, MString* out) const {
  const auto found = previousVersions.find(kind);
  *out = found == previousVersions.end() ? MString(L"") : MString(WideView(found->second));
  return out;
}
MString* ReferenceHost::GetPreviousActiveXVersion(MString* out) noexcept {
  return Previous(product_kind::ActiveX, out);
}
MString* ReferenceHost::GetPreviousPluginVersion(MString* out) noexcept {
  return Previous(product_kind::Plugin, out);
}
MString* ReferenceHost::GetPreviousPepperVersion(MString* out) noexcept {
  return Previous(product_kind::Pepper, out);
}
MString* ReferenceHost::GetTaskCommandPath(MString* out) noexcept {
  *out = MString(WideView(taskCommand));
  return out;
}

bool ReferenceHost::GetUpdateDialogData(SettingsTree* out) noexcept {
  MString message;
  if (OneName(L"Host.UpdateDialog.message", &message)->IsEmpty()) return false;
  MString width;
  MString height;
  TwoNames(L"Host.UpdateDialog.size", &width, &height);
  MString text(L"message ");
  text.Append(Quoted(message));
  text.Append(MString(L"; "));
  if (!width.IsEmpty()) {
    text.Append(MString(L"size "));
    text.Append(Quoted(width));
    if (!height.IsEmpty()) text.Append(Quoted(height));
    text.Append(MString(L"; "));
  }
  text.Append(MString(L"autoUpdateMode "));
  text.Append(MString::FromNumber(updateChoice.value_or(Number(L"Host.UpdateDialog.autoUpdateMode"))));
  text.Append(MString(L";"));
  ParseSettings(out, text);
  return true;
}
