// What stands behind the 32-bit cookies that a client holds instead of handles: files, searches and downloads, in one
// number space. Nothing in a record says which it is, and the table refuses no use of one as another.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "delivery/DownloadSession.h"
#include "engine/WideText.h"

constexpr intptr_t kNoHandle = -1;

// A file that a save dialog has chosen and nobody has opened yet; the values as CreateFileW takes them.
struct DeferredOpen {
  uint32_t desiredAccess = 0;
  uint32_t shareMode = 0;
  uint32_t creationDisposition = 0;
  uint32_t flagsAndAttributes = 0;
  std::optional<WideString> identity;  // the enterprise identity that the dialog's user chose, if any
};

struct BrokerCookieRecord {
  uint32_t cookie = 0;
  intptr_t handle = kNoHandle;  // of a file or a search; not closed with the record
  uint8_t executableSeen = 0;   // what was written through this cookie is an executable image
  uint8_t sniffActive = 0;      // the next write is still to be looked at
  uint8_t sniffBytes[10] = {};  // the bytes that mark an image, as far as seen: M, Z, header offset (4), P, E, 0, 0
  int32_t peOffset = 0;
  uint32_t writePosition = 0;
  std::optional<WideString> filePath;
  int32_t seekBase = 0;
  uint32_t lastWriteSize = 0;
  std::unique_ptr<DeferredOpen> deferredOpen;
  std::unique_ptr<DownloadSessionBase> download;
  BrokerCookieRecord* next = nullptr;
};
