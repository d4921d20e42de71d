#include "ui/toolkit/TgaImage.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kHeaderLength = 18;  // identifier and colour map are empty, so pixels follow at once
constexpr uint8_t kRunLengthBit = 8;
constexpr uint8_t kRunBit = 128;
constexpr uint32_t kOpaque = 0xFF000000;

template <size_t kBytes>
uint32_t ReadPixel(const uint8_t* from) {
  if constexpr (kBytes == 4) {
    uint32_t pixel;
    std::memcpy(&pixel, from, 4);
    return pixel;
  } else {
    return from[0] | static_cast<uint32_t>(from[1]) << 8 | static_cast<uint32_t>(from[2]) << 16 | kOpaque;
  }
}

template <size_t kBytes>
void CopyPixels(const uint8_t* from, uint32_t* to, size_t count) {
  if constexpr (kBytes == 4) {
    std::memcpy(to, from, count * 4);
  } else {
    for (size_t i = 0; i < count; ++i) to[i] = ReadPixel<kBytes>(from + i * kBytes);
  }
}

// A packet may carry more pixels than the image has left; what is over is dropped.
template <size_t kBytes>
void DecodeRuns(std::span<const uint8_t> data, std::span<uint32_t> pixels) {
  const uint8_t* from = data.data();
  const uint8_t* const end = from + data.size();
  uint32_t* to = pixels.data();
  uint32_t* const last = to + pixels.size();
  while (to != last && from != end) {
    const uint8_t packet = *from++;
    size_t count = std::min<size_t>((packet & 127) + size_t{1}, static_cast<size_t>(last - to));
    const auto left = static_cast<size_t>(end - from);
    if ((packet & kRunBit) != 0) {
      if (left < kBytes) return;
      std::fill_n(to, count, ReadPixel<kBytes>(from));
      from += kBytes;
    } else {
      count = std::min(count, left / kBytes);
      if (count == 0) return;
      CopyPixels<kBytes>(from, to, count);
      from += count * kBytes;
    }
    to += count;
  }
}

// Plain files of 32 bits keep the first byte of each pixel only. No image of ours is stored so, and a reader of the
// results may count on it.
void DecodePlain32(std::span<const uint8_t> data, std::span<uint32_t> pixels) {
  const size_t count = std::min(pixels.size(), data.size() / 4);
  for (size_t i = 0; i < count; ++i) pixels[i] = data[i * 4];
}

}  // namespace

std::optional<TgaHeader> ReadTgaHeader(std::span<const uint8_t> data) {
  if (data.size() < kHeaderLength) return std::nullopt;
  TgaHeader header;
  header.runLength = (data[2] & kRunLengthBit) != 0;
  header.width = static_cast<uint16_t>(data[12] | data[13] << 8);
  header.height = static_cast<uint16_t>(data[14] | data[15] << 8);
  header.depth = data[16];
  return header;
}

void DecodeTga(std::span<const uint8_t> data, const TgaHeader& header, std::span<uint32_t> pixels) {
  if (data.size() < kHeaderLength) return;
  data = data.subspan(kHeaderLength);
  pixels = pixels.first(std::min(pixels.size(), header.PixelCount()));
  if (header.depth == 32) {
    header.runLength ? DecodeRuns<4>(data, pixels) : DecodePlain32(data, pixels);
  } else if (header.depth == 24) {
    if (header.runLength) {
      DecodeRuns<3>(data, pixels);
    } else {
      CopyPixels<3>(data.data(), pixels.data(), std::min(pixels.size(), data.size() / 3));
    }
  }
}
