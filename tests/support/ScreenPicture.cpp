#include "tests/support/ScreenPicture.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#include <stb_image_write.h>
#pragma GCC diagnostic pop

#include "ui/toolkit/GdiSupport.h"

ScreenPicture ScreenPicture::Of(HWND window) {
  RECT frame = {};
  GetWindowRect(window, &frame);
  ScreenPicture picture;
  const int width = frame.right - frame.left;
  const int height = frame.bottom - frame.top;
  BITMAPINFO info = {};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const WindowDc screen(nullptr);
  void* bits = nullptr;
  const GdiObject bitmap(CreateDIBSection(screen.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  const MemoryDc copy(CreateCompatibleDC(screen.Get()));
  const SelectedObject selected(copy.Get(), bitmap.Get());
  if (!bitmap || !BitBlt(copy.Get(), 0, 0, width, height, screen.Get(), frame.left, frame.top, SRCCOPY)) return picture;
  GdiFlush();
  picture.width = width;
  picture.height = height;
  const auto* const source = static_cast<const uint8_t*>(bits);
  for (size_t at = 0; at < static_cast<size_t>(width) * static_cast<size_t>(height) * 4; at += 4) {
    picture.pixels.insert(picture.pixels.end(), {source[at + 2], source[at + 1], source[at]});
  }
  return picture;
}

bool ScreenPicture::Save(const std::string& path) const {
  stbi_write_png_compression_level = 9;
  return !pixels.empty() && stbi_write_png(path.c_str(), width, height, 3, pixels.data(), width * 3) != 0;
}
