#include "host/ReferenceHost.h"

#include <cstring>
#include <iterator>
#include <string>

#include "host/ReportTexts.h"

namespace {

constexpr size_t kLargestSettings = 4 << 20;

}  // namespace

WideString OwnPath() {
  wchar_t path[1040] = {};
  const DWORD length = GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)));
  return {path, length};
}

ReferenceHost::ReferenceHost() {
  flags = host_flag::ActiveX | host_flag::ReleasePlayer;
}

bool ReferenceHost::ReadSettings(const wchar_t* path) {
  const FileHandle file(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file) return GetLastError() == ERROR_FILE_NOT_FOUND;
  std::string text;
  char block[8192];
  DWORD read = 0;
  do {
    if (!ReadFile(file.Get(), block, sizeof(block), &read, nullptr)) return false;
    text.append(block, read);
  } while (read > 0 && text.size() < kLargestSettings);
  const WideString wide = FromUtf8(text);
  ParseSettings(&settings, MString(WideView(wide)));
  return true;
}

void ReferenceHost::ReportMessage(uint64_t /*reserved*/, uint32_t severity, uint32_t code, MString text) {
  log.Add(severity, code, text);
}

void ReferenceHost::LoadStringFallback(MString* out, uint32_t id, uint32_t /*flag*/) {
  const wchar_t* const text = EnglishText(id);
  *out = MString(text == nullptr ? L"" : text);
}

// This host's images are stored as they are.
bool ReferenceHost::DecompressImage(void* output, uint32_t outputSize, const void* input, uint32_t inputSize) {
  if (outputSize != inputSize) return false;
  std::memcpy(output, input, inputSize);
  return true;
}

MString* ReferenceHost::OneName(const wchar_t* setting, MString* out) {
  MString ignored;
  TwoNames(setting, out, &ignored);
  return out;
}

void ReferenceHost::TwoNames(const wchar_t* setting, MString* first, MString* second) {
  *first = MString(L"");
  *second = MString(L"");
  const SettingsNode* const node = FindSetting(&settings, MString(setting));
  if (node == nullptr || node->values == nullptr) return;
  *first = node->values->name;
  if (node->values->next != nullptr) *second = node->values->next->name;
}

MString* ReferenceHost::GetPayloadPath(MString* out) {
  return OneName(L"Host.Payload", out);
}
void ReferenceHost::NotifyConflictsCleared(void* /*reserved*/) {}
bool ReferenceHost::IsRestartRequired() {
  return false;
}
void ReferenceHost::GetBrowserPaths(MString* control, MString* helper) {
  TwoNames(L"Host.ActiveX", control, helper);
}
void ReferenceHost::GetPluginPaths(MString* control, MString* helper) {
  TwoNames(L"Host.Plugin", control, helper);
}
void ReferenceHost::GetPepperPaths(MString* control, MString* helper) {
  TwoNames(L"Host.Pepper", control, helper);
}
void ReferenceHost::GetControlPanelAppletName(MString* out) {
  OneName(L"Host.ControlPanelApplet", out);
}
void ReferenceHost::GetSettingsManagerFileName(MString* out) {
  OneName(L"Host.SettingsManager", out);
}
void ReferenceHost::GetUtilityPath(MString* out) {
  *out = MString(WideView(OwnPath()));
}
void ReferenceHost::GetUpdateServiceFileName(MString* out) {
  OneName(L"Host.UpdateService", out);
}
void ReferenceHost::GetFeedbackServiceFileName(MString* out) {
  OneName(L"Host.FeedbackService", out);
}

void ReferenceHost::GetDownloadSettings(MString* out, uint8_t* flag) {
  OneName(L"Host.TrustAnchor", out);
  *flag = 0;
}

MString* ReferenceHost::GetPreviousActiveXVersion(MString* out) {
  return OneName(L"Host.Previous.ActiveX", out);
}
MString* ReferenceHost::GetPreviousPluginVersion(MString* out) {
  return OneName(L"Host.Previous.Plugin", out);
}
MString* ReferenceHost::GetPreviousPepperVersion(MString* out) {
  return OneName(L"Host.Previous.Pepper", out);
}
MString* ReferenceHost::GetTaskCommandPath(MString* out) {
  *out = MString(WideView(OwnPath()));
  return out;
}
bool ReferenceHost::GetUpdateDialogData(SettingsTree* /*out*/) {
  return false;
}
