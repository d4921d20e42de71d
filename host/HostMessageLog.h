// What the module reported, in memory for the failure panel and, when asked for, line by line in a file.
#pragma once

#include <windows.h>

#include <vector>

#include "engine/Handles.h"
#include "engine/HostCallbacks.h"

class HostMessageLog final : public MessageLog {
 public:
  // Appends from now on to `path`, UTF-8. False when the file cannot be opened.
  [[nodiscard]] bool OpenFile(const wchar_t* path);
  void Add(uint32_t severity, uint32_t code, const MString& text);

  // An index past the end answers 0 or an empty text.
  uint32_t Count() override { return static_cast<uint32_t>(entries.size()); }
  uint32_t Code(uint32_t index) override { return index < entries.size() ? entries[index].code : 0; }
  uint32_t Severity(uint32_t index) override { return index < entries.size() ? entries[index].severity : 0; }
  MString* Text(MString* out, uint32_t index) override;
  MString* Format(MString* out, HostCallbacks* host, uint32_t severity, uint32_t code, MString text,
                  uint32_t reserved) override;

 private:
  struct Entry {
    uint32_t severity;
    uint32_t code;
    MString text;
  };
  std::vector<Entry> entries;
  FileHandle file;
};
