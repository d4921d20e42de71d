// A picture of what is on the screen, kept as a PNG file.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

struct ScreenPicture {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> pixels;  // red, green, blue; rows from the top

  // The whole of a window, its frame and what lies over it included. Empty when the screen cannot be read.
  [[nodiscard]] static ScreenPicture Of(HWND window);
  [[nodiscard]] bool Save(const std::string& path) const;
  [[nodiscard]] bool operator==(const ScreenPicture&) const = default;
};
