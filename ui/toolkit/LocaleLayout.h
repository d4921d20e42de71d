// What depends on the thread's locale rather than on the language of the texts: faces, and small corrections where East
// Asian glyphs sit higher. Read at each use, since nothing holds a thread to its locale. Any thread.
#pragma once

#include <array>
#include <cstdint>

struct FontChoice {
  const char* face;
  int32_t height;
};

// `size` is the height that Latin text gets.
[[nodiscard]] FontChoice ChooseFont(uint32_t locale, int32_t size);

// Pixels that texts move down.
struct LocaleOffsets {
  int32_t splash;
  int32_t autoUpdate;
  int32_t restartNote;
  int32_t updateChoice;                       // its heading, body and link
  std::array<int32_t, 3> updateChoiceLabels;  // 0: the label is left alone
};
[[nodiscard]] const LocaleOffsets& OffsetsOf(uint32_t locale);
