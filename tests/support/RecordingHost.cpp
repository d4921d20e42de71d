#include "tests/support/RecordingHost.h"

#include <algorithm>

#include "engine/LumenBrokerShim.h"

void RecordingLog::Add(uint32_t severity, uint32_t code, const MString& text) {
  const std::lock_guard hold(lock);
  entries.push_back({severity, code, ToUtf8(text.View())});
}

Lines RecordingLog::AsLines() const {
  const std::lock_guard hold(lock);
  Lines lines;
  for (const Entry& entry : entries) {
    lines.push_back(std::to_string(entry.severity) + " " + std::to_string(entry.code));
    if (!entry.text.empty()) lines.back() += " " + entry.text;
  }
  return lines;
}

void RecordingLog::Clear() {
  const std::lock_guard hold(lock);
  entries.clear();
}

RecordingLog::Entry RecordingLog::At(uint32_t index) {
  const std::lock_guard hold(lock);
  if (index < entries.size()) return entries[index];
  ++readsPastTheEnd;
  return {};
}

uint32_t RecordingLog::Count() {
  const std::lock_guard hold(lock);
  return static_cast<uint32_t>(entries.size());
}
uint32_t RecordingLog::Code(uint32_t index) {
  return At(index).code;
}
uint32_t RecordingLog::Severity(uint32_t index) {
  return At(index).severity;
}
MString* RecordingLog::Text(MString* out, uint32_t index) {
  *out = MString(WideView(FromUtf8(At(index).text)));
  return out;
}

MString* RecordingLog::Format(MString* out, HostCallbacks* /*host*/, uint32_t /*severity*/, uint32_t code, MString text,
                              uint32_t /*reserved*/) {
  *out = MString::FromNumber(code);
  out->Append(MString(L": "));
  out->Append(text);
  return out;
}

void RecordingHost::Forget() {
  log.Clear();
  events.clear();
}

void RecordingHost::ReportMessage(uint64_t reserved, uint32_t severity, uint32_t code, MString text) {
  log.Add(severity, code, text);
  // Not an event of its own, but a wrong first argument has to show in every test that compares reports.
  if (reserved != 0) log.Add(severity, code, MString(L"(reserved argument is not 0)"));
}

void RecordingHost::LoadStringFallback(MString* out, uint32_t id, uint32_t flag) {
  if (usesModuleTexts && flag != 0) {
    shim->LoadString(out, id, 1);
    return;
  }
  events.push_back("LoadStringFallback " + std::to_string(id) + " " + std::to_string(flag));
  const auto known = fallbackTexts.find(id);
  const bool isKnown = known != fallbackTexts.end();
  *out = isKnown ? known->second : MString(WideView(FromUtf8("fallback " + std::to_string(id))));
}

bool RecordingHost::DecompressImage(void* output, uint32_t outputSize, const void* /*input*/, uint32_t inputSize) {
  events.push_back("DecompressImage " + std::to_string(outputSize) + " " + std::to_string(inputSize));
  if (unpackedImage.empty() || unpackedImage.size() != outputSize) return false;
  std::copy(unpackedImage.begin(), unpackedImage.end(), static_cast<uint8_t*>(output));
  return true;
}

void RecordingHost::NotifyConflictsCleared(void* reserved) {
  events.emplace_back(reserved == nullptr ? "NotifyConflictsCleared" : "NotifyConflictsCleared (reserved is not null)");
}

void RecordingHost::GetDownloadSettings(MString* out, uint8_t* flag) {
  *out = downloadSettings;
  *flag = downloadFlag;
}

bool RecordingHost::GetUpdateDialogData(SettingsTree* out) {
  if (updateDialogData.Data() == nullptr) return false;
  ParseSettings(out, updateDialogData);
  return true;
}
