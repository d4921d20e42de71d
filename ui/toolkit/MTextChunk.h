// A stretch of text in one style, and the small mark-up that texts are cut into such stretches by.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/MString.h"

enum LinkKind : int32_t { kNoLink = 0, kUrlLink = 1, kSettingsLink = 2 };

struct MTextChunk {
  MTextChunk* next = nullptr;  // owned by the list's head
  MString text;
  MString href;
  int32_t linkKind = kNoLink;
  bool newLine = false;  // begins a line
  bool bold = false;
  int32_t spacing = 0;  // moves every line of the chunk down
  uint32_t color = 16777215;

  // An address without a target is shown as plain text.
  [[nodiscard]] bool IsLink() const { return linkKind == kSettingsLink || (linkKind == kUrlLink && !href.IsEmpty()); }
};

struct ChunkListDeleter {
  void operator()(MTextChunk* first) const;
};
using ChunkList = std::unique_ptr<MTextChunk, ChunkListDeleter>;

// Tags: a (first quoted value is the target), ncp (the player's settings), strong, br, li, ul; any other is dropped,
// and entities stay as they are. A line feed begins a line before the text in front of it. Empty for a text that shows
// nothing. Any thread.
[[nodiscard]] ChunkList ParseMarkup(const MString& text);
