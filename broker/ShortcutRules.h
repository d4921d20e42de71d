// What a shortcut that a client asks for may look like. A shortcut is a lasting foothold on the user's machine, so
// these tests are narrower than those of the file methods, and a refusal never says which of them failed.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "engine/WideText.h"

// A desktop shortcut's name: ASCII digits, letters and "_"; anything from 128 up passes.
[[nodiscard]] bool IsDesktopShortcutName(WideView name);
// Whether the address is the vendor's redirector, the only one that desktop shortcuts may lead to.
[[nodiscard]] bool IsRedirectAddress(WideView url);
// An internet shortcut's name: below 30 units, without control characters and the punctuation of paths and patterns.
[[nodiscard]] bool IsInternetShortcutName(WideView name);
// "http:" or "https:", in either case.
[[nodiscard]] bool IsHttpAddress(WideView url);
// Whether the icon is one that was made for this very name in `iconCache`, the icon cache folder without a last
// backslash: the name, then digits, blanks and parentheses only, then ".ico".
[[nodiscard]] bool IsIconCachePath(WideView iconPath, WideView iconCache, WideView name);
// Whether `strings` holds the mark-up that entitles `name` to `url`. Both are bounded in UTF-8: 30 and 192 bytes.
[[nodiscard]] bool EntitlesShortcut(std::span<const uint8_t> strings, WideView url, WideView name);

// At most one desktop shortcut in 3,001 milliseconds, from all clients together. Asking counts, also when refused.
class ShortcutRateLimit {
 public:
  // `now` is a tick count in milliseconds that may wrap.
  [[nodiscard]] bool Admit(uint32_t now) {
    const uint32_t distance = now - last_;
    last_ = now;
    return distance >= 3001;
  }

 private:
  uint32_t last_ = 0;
};
