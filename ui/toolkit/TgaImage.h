// Reads the skin's image files: TGA with 24 or 32 bits a pixel, plain or run-length encoded, no identifier and no
// colour map. Only the fields that matter are looked at. Pure functions; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

struct TgaHeader {
  bool runLength = false;
  uint16_t width = 0;
  uint16_t height = 0;
  uint8_t depth = 0;  // bits a pixel

  [[nodiscard]] size_t PixelCount() const { return static_cast<size_t>(width) * height; }
};

// Nothing when the data ends within the header.
[[nodiscard]] std::optional<TgaHeader> ReadTgaHeader(std::span<const uint8_t> data);

// Writes the image's pixels as they lie in the file, bottom row first: blue in the low byte, then green, red and alpha.
// Of 24 bits alpha becomes 255; of 32 bits the colours must be premultiplied already. Stops where data or `pixels` end;
// pixels beyond that are left as they are. Depths other than 24 and 32 write nothing.
void DecodeTga(std::span<const uint8_t> data, const TgaHeader& header, std::span<uint32_t> pixels);
