// A device context with pixels to look at: 64 by 64, 32 bits, white at first. Its handle travels as a client's does.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "broker/CoLumenBrokerServer.h"
#include "engine/Handles.h"

class MemoryCanvas {
 public:
  static constexpr int kSide = 64;

  MemoryCanvas() : dc_(CreateCompatibleDC(nullptr)) {
    const BITMAPINFO info = {{sizeof(BITMAPINFOHEADER), kSide, -kSide, 1, 32, 0, 0, 0, 0, 0, 0}, {}};
    void* bits = nullptr;
    bitmap_.Reset(CreateDIBSection(dc_.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    old_ = SelectObject(dc_.Get(), bitmap_.Get());
    pixels_ = static_cast<uint32_t*>(bits);
    std::fill_n(Pixels(), kSide * kSide, 0xFFFFFFu);
  }
  ~MemoryCanvas() { SelectObject(dc_.Get(), old_); }
  MemoryCanvas(const MemoryCanvas&) = delete;
  MemoryCanvas& operator=(const MemoryCanvas&) = delete;

  [[nodiscard]] HDC Get() const { return dc_.Get(); }
  // 0xrrggbb.
  [[nodiscard]] uint32_t At(int x, int y) const { return Pixels()[y * kSide + x] & 0xFFFFFF; }
  // How many pixels are of that colour.
  [[nodiscard]] int Count(uint32_t rgb) const {
    return static_cast<int>(
        std::count_if(Pixels(), Pixels() + kSide * kSide, [&](uint32_t pixel) { return (pixel & 0xFFFFFF) == rgb; }));
  }

 private:
  [[nodiscard]] uint32_t* Pixels() const { return GdiFlush(), pixels_; }

  MemoryDc dc_;
  GdiObject bitmap_;
  HGDIOBJ old_ = nullptr;
  uint32_t* pixels_ = nullptr;
};

// A broker object of this process with a canvas to draw on.
class CanvasTest : public testing::Test {
 protected:
  template <class Value>
  static std::string BytesOf(const Value& value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof(value));
  }
  static std::string Rect(LONG left, LONG top, LONG right, LONG bottom) {
    return BytesOf(RECT{left, top, right, bottom});
  }

  ComInitializer apartment;
  ComPtr<ILumenBroker6> broker = Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr));
  MemoryCanvas canvas;
  const ULONG dc = static_cast<ULONG>(reinterpret_cast<uintptr_t>(canvas.Get()));
};
