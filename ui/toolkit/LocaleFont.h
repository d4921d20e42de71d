// The font of texts, which depends on the thread's locale rather than on the language of the texts. Any thread.
#pragma once

#include <cstdint>

struct FontChoice {
  const char* face;
  int32_t height;
};

// `size` is the height that Latin text gets. Asked anew for each text: nothing holds a thread to its locale.
[[nodiscard]] FontChoice ChooseFont(uint32_t locale, int32_t size);
