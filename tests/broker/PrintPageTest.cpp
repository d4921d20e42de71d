// What is on the page that tools/account-printing printed through the broker's own process on a real printer and had
// rendered: regions of the picture are looked at.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

namespace {

constexpr double kDotsPerInch = 100;

// A rendered page, 8-bit red, green and blue.
struct Picture {
  int width = 0;
  int height = 0;
  std::string pixels;

  [[nodiscard]] uint32_t At(double x, double y) const {
    const auto row = static_cast<size_t>(y * kDotsPerInch);
    const size_t at = (row * static_cast<size_t>(width) + static_cast<size_t>(x * kDotsPerInch)) * 3;
    if (at + 3 > pixels.size()) return 0xFF00FF00;
    const auto channel = [&](size_t i) { return static_cast<uint32_t>(static_cast<uint8_t>(pixels[at + i])); };
    return channel(0) << 16 | channel(1) << 8 | channel(2);
  }
};

// The rendered page, a binary pixel map: "P6", a comment, width and height, 255, and the pixels.
Picture ReadPage() {
  std::ifstream in("../print-test.ppm", std::ios::binary);
  Picture picture;
  std::string kind;
  int most = 0;
  in >> kind >> std::ws;
  if (in.peek() == '#') in.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  in >> picture.width >> picture.height >> most;
  in.get();
  if (kind == "P6" && most == 255) picture.pixels.assign(std::istreambuf_iterator<char>(in), {});
  return picture;
}

class PrintedPage : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(picture.width, 850) << "Letter at 100 dots an inch";
    ASSERT_EQ(picture.height, 1100);
    ASSERT_EQ(picture.pixels.size(), 850u * 1100u * 3u);
  }
  // The share of dots in an area, in inches, that satisfy a test.
  template <class Test>
  [[nodiscard]] double Share(double left, double top, double right, double bottom, Test test) const {
    int all = 0;
    int hits = 0;
    for (double y = top; y < bottom; y += 1 / kDotsPerInch) {
      for (double x = left; x < right; x += 1 / kDotsPerInch, ++all) hits += test(picture.At(x, y)) ? 1 : 0;
    }
    return static_cast<double>(hits) / all;
  }
  const Picture picture = ReadPage();
};

bool IsNear(uint32_t a, uint32_t b) {
  for (int shift = 0; shift < 24; shift += 8) {
    if (std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF)) > 6) return false;
  }
  return true;
}

TEST_F(PrintedPage, EveryRegionHasItsColour) {
  constexpr uint32_t kWhite = 0xFFFFFF, kRed = 0xDC1E1E, kBlue = 0x1E3CC8, kGreen = 0x1EA03C, kPurple = 0x8C28A0;
  const struct {
    const char* why;
    double x, y;
    uint32_t colour;
  } places[] = {
      {"the margin", 0.3, 0.3, kWhite},
      {"the star's middle, by the winding fill", 1.75, 3, kRed},
      {"the zigzag's first peak", 3.75, 2.55, kBlue},
      {"the disc's middle", 6.5, 3, kGreen},
      {"the disc's rim, which a polygon would miss", 7, 2.48, kGreen},
      {"where its first curve ends", 4, 4.8, kPurple},
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
    const uint32_t found = picture.At(place.x, place.y);
    EXPECT_TRUE(IsNear(found, place.colour)) << place.why << ": " << std::hex << found << ", not " << place.colour;
  }
}

// Shapes of letters are the font's own; where there is ink, and how it is spread, is not.
TEST_F(PrintedPage, TextIsInTwoFontsSpacedAndTurned) {
  const auto dark = [](uint32_t colour) { return (colour & 0xFF) < 128; };
  EXPECT_GT(Share(0.75, 0.5, 3.5, 1.1, dark), 0.05) << "the heading";
  EXPECT_GT(Share(0.75, 1.2, 7, 1.5, dark), 0.05) << "the spaced line";
  EXPECT_EQ(Share(7.4, 1.1, 8, 1.6, dark), 0) << "behind it";
  // 47 characters, each 0.14 inches behind the one before, whatever the font's own widths are: the last word,
  // "broker", stands at the 42nd place, and the blank before it is empty.
  EXPECT_GT(Share(0.75 + 41 * 0.14, 1.2, 0.75 + 47 * 0.14, 1.5, dark), 0.05);
  EXPECT_EQ(Share(0.75 + 40 * 0.14 + 0.02, 1.2, 0.75 + 41 * 0.14 - 0.01, 1.5, dark), 0);
  EXPECT_GT(Share(0.75, 4.15, 4.5, 4.35, dark), 0.05) << "a note";
  // By 60 degrees from (6.5, 9.6): it climbs to the right, and nothing lies beside it.
  EXPECT_GT(Share(6.5, 8.8, 7.2, 9.6, dark), 0.01);
  EXPECT_EQ(Share(6.9, 9.4, 8, 9.7, dark), 0);
  EXPECT_EQ(Share(6.4, 8.2, 6.8, 8.8, dark), 0);
}

}  // namespace
