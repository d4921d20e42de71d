#include "host/HostMessageLog.h"

#include <cstdio>
#include <string>

#include "engine/LumenBrokerShim.h"
#include "host/ReportTexts.h"

namespace {

MString Now() {
  SYSTEMTIME t = {};
  GetSystemTime(&t);
  char text[32];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02uT%02u:%02u:%02uZ", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute,
                t.wSecond);
  return MString::FromNarrow(text);
}

}  // namespace

bool HostMessageLog::OpenFile(const wchar_t* path) {
  file.Reset(CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr));
  return file.IsValid();
}

void HostMessageLog::Add(uint32_t severity, uint32_t code, const MString& text) {
  entries.push_back({severity, code, text});
  if (!file) return;
  const std::string line = ToUtf8(LogLine(Now(), severity, code, text).View());
  DWORD written = 0;
  WriteFile(file.Get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

MString* HostMessageLog::Text(MString* out, uint32_t index) {
  *out = index < entries.size() ? entries[index].text : MString(L"");
  return out;
}

MString* HostMessageLog::Format(MString* out, HostCallbacks* host, uint32_t severity, uint32_t code, MString text,
                                uint32_t /*reserved*/) {
  const uint32_t id = StringIdOf(severity, code);
  MString pattern;
  if (host != nullptr && host->shim != nullptr) host->shim->LoadString(&pattern, id, 1);
  if (pattern.IsEmpty()) pattern = MString(EnglishText(51));
  *out = FillIn(pattern, id, code, text);
  return out;
}
