#include "host/HostMessageLog.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <string>

#include "engine/LumenBrokerShim.h"
#include "engine/ReportCode.h"
#include "host/ReportTexts.h"

namespace {

WideString Now() {
  SYSTEMTIME t = {};
  GetSystemTime(&t);
  char text[32];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02uT%02u:%02u:%02uZ", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute,
                t.wSecond);
  return WidenAscii(text);
}

}  // namespace

bool HostMessageLog::OpenFile(const wchar_t* path) {
  file.Reset(CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr));
  return file.IsValid();
}

void HostMessageLog::Add(uint32_t severity, uint32_t code, WideView text) noexcept {
  try {
    const std::string line = ToUtf8(LogLine(Now(), severity, code, text));
    const std::lock_guard guard(lock);
    DWORD written = 0;
    // One call a line, so that several processes may share a file.
    if (file) WriteFile(file.Get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    entries.push_back({severity, code, WideString(text)});
  } catch (const std::bad_alloc&) {
  }
}

bool HostMessageLog::Holds(uint32_t code) const {
  const std::lock_guard guard(lock);
  return std::any_of(entries.begin(), entries.end(), [code](const Entry& entry) { return entry.code == code; });
}

uint32_t HostMessageLog::CountToTell() const {
  const std::lock_guard guard(lock);
  const auto count = std::count_if(entries.begin(), entries.end(), [](const Entry& entry) {
    return entry.severity >= static_cast<uint32_t>(::Severity::MustTell);
  });
  return static_cast<uint32_t>(count);
}

HostMessageLog::Entry HostMessageLog::At(uint32_t index) const {
  const std::lock_guard guard(lock);
  return index < entries.size() ? entries[index] : Entry();
}

uint32_t HostMessageLog::Count() noexcept {
  const std::lock_guard guard(lock);
  return static_cast<uint32_t>(entries.size());
}
uint32_t HostMessageLog::Code(uint32_t index) noexcept {
  return At(index).code;
}
uint32_t HostMessageLog::Severity(uint32_t index) noexcept {
  return At(index).severity;
}
MString* HostMessageLog::Text(MString* out, uint32_t index) noexcept {
  *out = MString(WideView(At(index).text));
  return out;
}

MString* HostMessageLog::Format(MString* out, HostCallbacks* host, uint32_t severity, uint32_t code, MString text,
                                uint32_t /*reserved*/) noexcept {
  const uint32_t id = StringIdOf(severity, code);
  // A general text says nothing but the number, so the host's own sentence goes before it.
  if (IsGeneral(id) && TextOfCode(code) != nullptr) {
    *out = Meaning(severity, code, text);
    return out;
  }
  MString pattern;
  if (host != nullptr && host->shim != nullptr) {
    host->shim->LoadString(&pattern, id, 1);
  } else {
    pattern = MString(HostText(id));
  }
  *out = FillIn(pattern, id, code, text);
  return out;
}
