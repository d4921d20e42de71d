// A device context with pixels to look at: 64 by 64, 32 bits, white at first. Its handle travels as a client's does.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdint>

#include "engine/Handles.h"

class MemoryCanvas {
 public:
  static constexpr int kSide = 64;

  MemoryCanvas() : dc_(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = kSide;
    info.bmiHeader.biHeight = -kSide;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    bitmap_.Reset(CreateDIBSection(dc_.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    old_ = SelectObject(dc_.Get(), bitmap_.Get());
    pixels_ = static_cast<uint32_t*>(bits);
    Clear();
  }
  ~MemoryCanvas() { SelectObject(dc_.Get(), old_); }
  MemoryCanvas(const MemoryCanvas&) = delete;
  MemoryCanvas& operator=(const MemoryCanvas&) = delete;

  [[nodiscard]] HDC Get() const { return dc_.Get(); }
  [[nodiscard]] ULONG Wire() const { return static_cast<ULONG>(reinterpret_cast<uintptr_t>(dc_.Get())); }
  void Clear(uint32_t rgb = 0xFFFFFF) {
    GdiFlush();
    std::fill_n(pixels_, kSide * kSide, rgb);
  }
  // 0xrrggbb.
  [[nodiscard]] uint32_t At(int x, int y) const {
    GdiFlush();
    return pixels_[y * kSide + x] & 0xFFFFFF;
  }
  // How many pixels are of that colour.
  [[nodiscard]] int Count(uint32_t rgb) const {
    GdiFlush();
    return static_cast<int>(
        std::count_if(pixels_, pixels_ + kSide * kSide, [&](uint32_t pixel) { return (pixel & 0xFFFFFF) == rgb; }));
  }
  [[nodiscard]] bool IsBlank() const { return Count(0xFFFFFF) == kSide * kSide; }

 private:
  MemoryDc dc_;
  GdiObject bitmap_;
  HGDIOBJ old_ = nullptr;
  uint32_t* pixels_ = nullptr;
};
