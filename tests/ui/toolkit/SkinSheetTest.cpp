// The committed images: each place that controls and panels cut out of them holds what it is named for.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "ui/toolkit/Geometry.h"
#include "ui/toolkit/TgaImage.h"

namespace {

struct Image {
  explicit Image(const char* name) {
    std::ifstream in(std::string(LUMEN_SOURCE_DIR "/resources/art/") + name, std::ios::binary);
    const std::vector<uint8_t> file(std::istreambuf_iterator<char>(in), {});
    header = ReadTgaHeader(file).value_or(TgaHeader());
    pixels.resize(header.PixelCount());
    DecodeTga(file, header, pixels);
  }
  // The pixels of a place, row by row from its top.
  [[nodiscard]] std::vector<uint32_t> Cut(const SourceRect& place) const {
    std::vector<uint32_t> cut;
    for (int32_t y = place.y; y < place.y + place.height; ++y) {
      const auto row = pixels.begin() + (header.height - 1 - y) * header.width + place.x;
      cut.insert(cut.end(), row, row + place.width);
    }
    return cut;
  }

  TgaHeader header;
  std::vector<uint32_t> pixels;
};

TEST(SkinSheet, LooksCanBeToldApartAndMiddlesCanBeStretched) {
  const Image skin("skin.tga");
  // Of buttons, check boxes and radio buttons, four each.
  const SourceRect looks[] = {{6, 77, 7, 33},   {13, 77, 7, 33},   {20, 77, 7, 33},  {27, 77, 7, 33},
                              {4, 0, 15, 15},   {19, 0, 15, 15},   {4, 15, 15, 15},  {19, 15, 15, 15},
                              {2, 140, 15, 15}, {17, 140, 15, 15}, {2, 155, 15, 15}, {17, 155, 15, 15}};
  std::set<std::vector<uint32_t>> different;
  for (const SourceRect& look : looks) different.insert(skin.Cut(look));
  EXPECT_EQ(different.size(), std::size(looks));
  for (const uint32_t pixel : skin.pixels) {
    ASSERT_LE(std::max({pixel & 255, pixel >> 8 & 255, pixel >> 16 & 255}), pixel >> 24) << "premultiplied";
  }
  for (const int32_t x : {9, 16, 23, 30}) {
    EXPECT_EQ(skin.Cut({x, 79, 1, 29}), skin.Cut({x + 1, 79, 1, 29})) << "a seam shows beside the middle at " << x;
  }
  // The last rows of the backgrounds are stretched down to the bar and must be the window's own colour there.
  EXPECT_EQ(skin.Cut({300, 174, 1, 1}).front(), 0xFF323333u);
}

}  // namespace
