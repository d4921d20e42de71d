// What is on the page that tools/account-printing printed through the broker's own process on a real printer and had
// rendered: regions of the picture are looked at.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace {

constexpr int kWidth = 850, kHeight = 1100;  // Letter at 100 dots an inch

// The rendered page, a binary pixel map with red, green and blue bytes at its end.
class PrintedPage : public testing::Test {
 protected:
  void SetUp() override {
    std::ifstream in("../print-test.ppm", std::ios::binary);
    page.assign(std::istreambuf_iterator<char>(in), {});
    ASSERT_TRUE(page.starts_with("P6\n"));
    ASSERT_NE(page.substr(0, 80).find("\n850 1100\n255\n"), std::string::npos);
    ASSERT_GT(page.size(), kPixelBytes);
    page.erase(0, page.size() - kPixelBytes);
  }
  // One of the colours, by its shift, at a place in inches.
  [[nodiscard]] int Channel(double x, double y, int shift) const { return ChannelAt(Dot(x), Dot(y), shift); }
  [[nodiscard]] int ChannelAt(int x, int y, int shift) const {
    return static_cast<uint8_t>(page.at(static_cast<size_t>(3 * (y * kWidth + x) + 2 - shift / 8)));
  }
  static int Dot(double inches) { return static_cast<int>(inches * 100); }
  static constexpr size_t kPixelBytes = size_t{kWidth} * kHeight * 3;
  std::string page;
};

TEST_F(PrintedPage, EveryRegionHasItsColour) {
  constexpr int kWhite = 0xFFFFFF, kRed = 0xDC1E1E, kBlue = 0x1E3CC8, kGreen = 0x1EA03C, kPurple = 0x8C28A0;
  const struct {
    const char* why;
    double x, y;
    int colour;
  } places[] = {
      {"the margin", 0.3, 0.3, kWhite},
      {"the star's middle, by the winding fill", 1.75, 3, kRed},
      {"the zigzag's first peak", 3.75, 2.55, kBlue},
      {"the disc's rim, which a polygon would miss", 7, 2.48, kGreen},
      {"where the wave's first curve ends", 4, 4.8, kPurple},
      {"above the wave", 4, 4.4, kWhite},
      {"the diamond's quarters: red", 1.8, 6.1, 0xFF0000},
      {"green", 2.2, 6.5, 0x00A000},
      {"the bitmap's corner outside the diamond", 1.2, 5.5, kWhite},
      {"grey below the mask, outside the disc", 4.55, 5.35, 0xC8C8C8},
      {"a black field of the mask: this driver draws it as it is", 5.25, 6.05, 0x000000},
      {"the rectangle inside its clip", 1.5, 9, 0x149696},
      {"the rectangle outside its clip", 2.5, 9, kWhite},
      {"the frame", 3.05, 9, 0x000000},
      {"inside the frame, after the clip was put back", 3.75, 8.75, kWhite},
  };
  for (const auto& place : places) {
    for (int shift = 0; shift < 24; shift += 8) {
      EXPECT_NEAR(Channel(place.x, place.y, shift), place.colour >> shift & 0xFF, 6) << place.why << ", " << shift;
    }
  }
}

// Shapes of letters are the font's own; where there is ink, and how it is spread, is not.
TEST_F(PrintedPage, TextIsInTwoFontsSpacedAndTurned) {
  const struct {
    const char* why;
    double left, top, right, bottom;
    double least;  // share of dark dots that is passed; 0 where there must be none
  } areas[] = {
      {"the heading", 0.75, 0.5, 3.5, 1.1, 0.05},
      {"the spaced line", 0.75, 1.2, 7, 1.5, 0.05},
      {"behind it", 7.4, 1.1, 8, 1.6, 0},
      // 47 characters, each 0.14 inches behind the one before, whatever the font's own widths are.
      {"the last word, \"broker\", from the 42nd place", 6.49, 1.2, 7.33, 1.5, 0.05},
      {"the blank before it", 6.37, 1.2, 6.48, 1.5, 0},
      {"a note", 0.75, 4.15, 4.5, 4.35, 0.05},
      {"text turned by 60 degrees from (6.5, 9.6), which climbs to the right", 6.5, 8.8, 7.2, 9.6, 0.01},
      {"right of it", 6.9, 9.4, 8, 9.7, 0},
      {"left of it", 6.4, 8.2, 6.8, 8.8, 0},
  };
  for (const auto& area : areas) {
    int all = 0, dark = 0;
    for (int y = Dot(area.top); y < Dot(area.bottom); ++y) {
      for (int x = Dot(area.left); x < Dot(area.right); ++x, ++all) dark += ChannelAt(x, y, 0) < 128 ? 1 : 0;
    }
    if (area.least == 0) EXPECT_EQ(dark, 0) << area.why;
    if (area.least != 0) EXPECT_GT(static_cast<double>(dark) / all, area.least) << area.why;
  }
}

}  // namespace
