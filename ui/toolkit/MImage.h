// An image of the module's resources, ready to draw from.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

#include "ui/toolkit/GdiSupport.h"
#include "ui/toolkit/MRegion.h"

class HostCallbacks;

// In which form the resource is stored.
enum class ImageForm : int32_t {
  Plain = 0,      // type "IMG"
  Compressed = 1  // type "LZMG", unpacked by the host; the module holds none
};

namespace image_id {
constexpr int32_t Skin = 161;
constexpr int32_t Banner = 164;
}  // namespace image_id

class MImage {
 public:
  MImage() = default;
  MImage(const MImage&) = delete;
  MImage& operator=(const MImage&) = delete;

  // Loads resource `id` of `module`. What is missing or cannot be read leaves the image empty; regions that show it
  // then draw nothing. `host` serves the compressed form alone and may be null for the other.
  void Load(HMODULE module, int32_t id, ImageForm form = ImageForm::Plain, HostCallbacks* host = nullptr);

  // What regions and looks refer to; valid before Load too.
  [[nodiscard]] ImageRef Ref() const { return ImageRef(&slot); }
  [[nodiscard]] int32_t Width() const { return width; }
  [[nodiscard]] int32_t Height() const { return height; }

 private:
  void Decode(std::span<const uint8_t> data);

  DrawingContext slot = nullptr;  // the context of `dc`, where ImageRef finds it
  BitmapDc dc;
  int32_t width = 0;
  int32_t height = 0;
};
