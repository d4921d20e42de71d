// The committed images: each place that controls and panels cut out of them holds what it is named for.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ui/toolkit/Geometry.h"
#include "ui/toolkit/TgaImage.h"

namespace {

struct Image {
  TgaHeader header;
  std::vector<uint8_t> file;
  std::vector<uint32_t> pixels;

  [[nodiscard]] uint32_t At(int32_t x, int32_t y) const {
    return pixels[static_cast<size_t>(header.height - 1 - y) * header.width + static_cast<size_t>(x)];
  }
  // The pixels of a place, row by row from its top.
  [[nodiscard]] std::vector<uint32_t> Cut(const SourceRect& place) const {
    std::vector<uint32_t> cut;
    for (int32_t y = place.y; y < place.y + place.height; ++y) {
      for (int32_t x = place.x; x < place.x + place.width; ++x) cut.push_back(At(x, y));
    }
    return cut;
  }
};

Image Load(const std::string& name) {
  Image image;
  std::ifstream in(LUMEN_SOURCE_DIR "/resources/art/" + name, std::ios::binary);
  image.file.assign(std::istreambuf_iterator<char>(in), {});
  image.header = ReadTgaHeader(image.file).value_or(TgaHeader());
  image.pixels.resize(image.header.PixelCount());
  DecodeTga(image.file, image.header, image.pixels);
  return image;
}

uint32_t Alpha(uint32_t pixel) {
  return pixel >> 24;
}
// How much of a place is covered, 0 to 1.
double Cover(const Image& image, const SourceRect& place) {
  double sum = 0;
  const auto cut = image.Cut(place);
  for (const uint32_t pixel : cut) sum += Alpha(pixel) / 255.0;
  return sum / static_cast<double>(cut.size());
}

TEST(Images, AreRunLengthCodedPremultipliedAndComplete) {
  const struct {
    const char* name;
    uint16_t width, height;
  } rows[] = {{"skin.tga", 569, 175}, {"banner.tga", 460, 130}, {"third.tga", 72, 44}};
  for (const auto& row : rows) {
    const Image image = Load(row.name);
    ASSERT_GT(image.file.size(), 44u) << row.name;
    EXPECT_EQ(image.header.width, row.width);
    EXPECT_EQ(image.header.height, row.height);
    EXPECT_EQ(image.header.depth, 32);
    EXPECT_TRUE(image.header.runLength);
    const std::vector<uint8_t> start(image.file.begin(), image.file.begin() + 3);
    EXPECT_EQ(start, (std::vector<uint8_t>{0, 0, 10})) << "no identifier, no colour map";
    EXPECT_EQ(image.file[17], 8) << "eight bits of alpha, bottom row first";
    const std::string end(image.file.end() - 18, image.file.end());
    EXPECT_EQ(end, std::string("TRUEVISION-XFILE.\0", 18));
    for (const uint32_t pixel : image.pixels) {
      const uint32_t most = std::max({pixel & 255, pixel >> 8 & 255, pixel >> 16 & 255});
      ASSERT_LE(most, Alpha(pixel)) << row.name;
    }
  }
}

TEST(SkinSheet, EveryPlaceHoldsSomethingAndBackgroundsAreOpaque) {
  const Image skin = Load("skin.tga");
  const struct {
    const char* name;
    SourceRect place;
    double least, most;
  } rows[] = {
      {"bar of the window", {1, 0, 3, 68}, 1, 1},
      {"track", {4, 44, 9, 33}, 0.9, 1},
      {"fill", {2, 77, 4, 29}, 0.9, 1},
      {"button looks", {6, 77, 28, 33}, 0.9, 1},
      {"check boxes", {4, 0, 30, 30}, 0.7, 1},
      {"radio buttons", {2, 140, 30, 30}, 0.5, 0.8},
      {"restart icon", {5, 30, 13, 13}, 0.15, 0.7},
      {"row icon", {20, 30, 13, 13}, 0.5, 0.9},
      {"logo", {34, 0, 47, 71}, 0.15, 0.6},
      {"warning", {0, 110, 33, 30}, 0.4, 0.8},
      {"focus ring", {13, 44, 15, 15}, 0.15, 0.6},
      {"ring's middle", {20, 51, 1, 1}, 0, 0},
      {"side image", {39, 71, 42, 49}, 0.15, 0.8},
      {"small background", {33, 123, 122, 52}, 1, 1},
      {"splash background", {155, 0, 414, 175}, 1, 1},
      {"conflicts strip", {0, 22, 1, 65}, 1, 1},
      {"failure strip", {0, 15, 1, 72}, 1, 1},
  };
  for (const auto& row : rows) {
    EXPECT_GE(Cover(skin, row.place), row.least - 0.001) << row.name;
    EXPECT_LE(Cover(skin, row.place), row.most + 0.001) << row.name;
  }
  const Image banner = Load("banner.tga");
  EXPECT_GT(Cover(banner, {0, 0, 400, 130}), 0.05);
  EXPECT_EQ(Cover(banner, {402, 0, 58, 130}), 0) << "panels show 400 columns; nothing is cut off";
}

TEST(SkinSheet, LooksCanBeToldApartAndMiddlesCanBeStretched) {
  const Image skin = Load("skin.tga");
  const std::vector<std::vector<SourceRect>> groups = {
      {{6, 77, 7, 33}, {13, 77, 7, 33}, {20, 77, 7, 33}, {27, 77, 7, 33}},
      {{4, 0, 15, 15}, {19, 0, 15, 15}, {4, 15, 15, 15}, {19, 15, 15, 15}},
      {{2, 140, 15, 15}, {17, 140, 15, 15}, {2, 155, 15, 15}, {17, 155, 15, 15}},
  };
  for (const auto& group : groups) {
    for (size_t i = 0; i < group.size(); ++i) {
      for (size_t j = i + 1; j < group.size(); ++j) EXPECT_NE(skin.Cut(group[i]), skin.Cut(group[j])) << i << " " << j;
    }
  }
  // A cap ends in the column that the middle repeats, so no seam shows.
  for (const int32_t x : {9, 16, 23, 30}) {
    EXPECT_EQ(skin.Cut({x, 79, 1, 29}), skin.Cut({x - 1, 79, 1, 29})) << x;
    EXPECT_EQ(skin.Cut({x, 79, 1, 29}), skin.Cut({x + 1, 79, 1, 29})) << x;
  }
  // The last rows of the backgrounds are stretched down to the bar and must be the window's own colour there.
  EXPECT_EQ(skin.At(300, 174), 0xFF323333u);
}

}  // namespace
