// What the module reported, in memory for the failure panel and, when asked for, line by line in a file.
//
// Any thread may add. Entries keep characters of their own instead of the module's text blocks: a block's count belongs
// to one thread, and the module that frees it may be gone before the log is.
#pragma once

#include <windows.h>

#include <mutex>
#include <vector>

#include "engine/Handles.h"
#include "engine/HostCallbacks.h"
#include "engine/WideText.h"

class HostMessageLog final : public MessageLog {
 public:
  // Appends from now on to `path`, UTF-8. False when the file cannot be opened.
  [[nodiscard]] bool OpenFile(const wchar_t* path);
  // A report cannot fail: an entry for which there is no memory is lost.
  void Add(uint32_t severity, uint32_t code, WideView text) noexcept;
  // Whether `code` was reported.
  [[nodiscard]] bool Holds(uint32_t code) const;
  // How many reports the user must be told of.
  [[nodiscard]] uint32_t CountToTell() const;

  // An index past the end answers 0 or an empty text.
  uint32_t Count() noexcept override;
  uint32_t Code(uint32_t index) noexcept override;
  uint32_t Severity(uint32_t index) noexcept override;
  MString* Text(MString* out, uint32_t index) noexcept override;
  MString* Format(MString* out, HostCallbacks* host, uint32_t severity, uint32_t code, MString text,
                  uint32_t reserved) noexcept override;

 private:
  struct Entry {
    uint32_t severity = 0;
    uint32_t code = 0;
    WideString text;
  };
  Entry At(uint32_t index) const;

  mutable std::mutex lock;
  std::vector<Entry> entries;
  FileHandle file;
};
