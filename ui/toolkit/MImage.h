// An image of the module's resources, ready to draw from.
#pragma once

#include <windows.h>

#include <cstdint>

#include "engine/Handles.h"
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
  ~MImage();

  // Loads resource `id` of `module`. What is missing or cannot be read leaves the image empty; regions that show it
  // then draw nothing. `host` serves the compressed form alone and may be null for the other.
  void Load(HMODULE module, int32_t id, ImageForm form = ImageForm::Plain, HostCallbacks* host = nullptr);

  // What regions and looks refer to; valid before Load too.
  [[nodiscard]] ImageRef Ref() const { return ImageRef(&slot); }
  [[nodiscard]] int32_t Width() const { return width; }
  [[nodiscard]] int32_t Height() const { return height; }

 private:
  void Decode(const uint8_t* data, size_t size);

  DrawingContext slot = nullptr;  // the context in `dc`, where ImageRef finds it
  MemoryDc dc;
  GdiObject bitmap;
  int32_t width = 0;
  int32_t height = 0;
};
