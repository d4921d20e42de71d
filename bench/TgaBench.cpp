// Decoding the skin sheet beside a public decoder doing the same from the same bytes.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

#include "bench/BenchSupport.h"
#include "ui/toolkit/TgaImage.h"

#define STBI_ONLY_TGA
#define STBI_NO_STDIO
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>

namespace {

std::vector<uint8_t> FileBytes(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Both decoders agree on every pixel, but for the order of red and blue and of the rows.
bool Agree(const std::vector<uint32_t>& ours, const uint8_t* theirs, int width, int height) {
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t mine[4];
      std::memcpy(mine,
                  &ours[static_cast<size_t>(height - 1 - y) * static_cast<size_t>(width) + static_cast<size_t>(x)], 4);
      const uint8_t* const other =
          theirs + (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 4;
      if (mine[0] != other[2] || mine[1] != other[1] || mine[2] != other[0] || mine[3] != other[3]) return false;
    }
  }
  return true;
}

}  // namespace

int main() {
  const std::vector<uint8_t> file = FileBytes(LUMEN_SKIN_SHEET);
  const auto header = ReadTgaHeader(file);
  if (!header) return 1;
  std::vector<uint32_t> pixels(header->PixelCount());
  int width = 0, height = 0, channels = 0;
  DecodeTga(file, *header, pixels);
  uint8_t* const checked =
      stbi_load_from_memory(file.data(), static_cast<int>(file.size()), &width, &height, &channels, 4);
  const bool same = checked != nullptr && Agree(pixels, checked, width, height);
  stbi_image_free(checked);
  if (!same) {
    std::printf("DecodeTga: the decoders disagree\n");
    return 1;
  }
  const double ours = Nanoseconds(20, 50, [&] {
    std::vector<uint32_t> fresh(header->PixelCount());
    DecodeTga(file, *header, fresh);
    Keep(fresh);
  });
  const double theirs = Nanoseconds(20, 50, [&] {
    uint8_t* const decoded =
        stbi_load_from_memory(file.data(), static_cast<int>(file.size()), &width, &height, &channels, 4);
    Keep(decoded);
    stbi_image_free(decoded);
  });
  std::printf("DecodeTga, skin sheet     %8.0f us     public one   %8.0f us     ratio %.2f\n", ours / 1000,
              theirs / 1000, ours / theirs);
}
