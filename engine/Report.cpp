#include "engine/HostCallbacks.h"
#include "engine/Reporting.h"

void Report(HostCallbacks* host, Severity severity, ReportCode code, const MString& text) {
  if (host == nullptr) return;
  host->ReportMessage(0, static_cast<uint32_t>(severity), static_cast<uint32_t>(code), text);
}
