// Image files of any content: no write beyond the bitmap, whatever header and packets say, and the decoder ends.
#include <vector>

#include "ui/toolkit/TgaImage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto header = ReadTgaHeader({data, size});
  if (!header) return 0;
  // The platform makes the bitmap of exactly this size, or none when it is too large.
  constexpr size_t kLargest = 1 << 16;
  if (header->PixelCount() > kLargest) return 0;
  std::vector<uint32_t> pixels(header->PixelCount());
  DecodeTga({data, size}, *header, pixels);
  return 0;
}
