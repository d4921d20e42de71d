// The byte arrays that carry drawing structures: which lengths are right, and how much of them the drawing system may
// be let loose on. Portable; nothing here draws. The layouts are the platform's own, little-endian.
//
// The lengths that are checked are those clients know; the drawing system may read further than they promise. Where it
// would, these functions lend it a copy filled up with zeros, which a client that sends whole structures cannot notice.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "broker/DrawingRelay.h"

// An array argument; nothing when it is absent, and a malformed one counts as absent.
using ByteArgument = std::optional<std::span<const uint8_t>>;

constexpr size_t kLogFontBytes = 92;
constexpr size_t kTextMetricsBytes = 60;
constexpr size_t kTransformBytes = 24;
// The two bitmap fills differ by design, and each refuses the other's header.
constexpr size_t kFillHeaderBytes = 44;
constexpr size_t kTransparentFillHeaderBytes = 48;

constexpr uint32_t kMostTextUnits = 8192;
constexpr uint32_t kGlyphIndices = 0x0010;   // text options: the text is indices of 16 bits
constexpr uint32_t kPairedSpacing = 0x2000;  // text options: spacing has a horizontal and a vertical value

// Whether the argument is there with exactly this length.
[[nodiscard]] bool HasLength(const ByteArgument& argument, size_t bytes);

// The rectangle, or nothing when the argument is not one.
[[nodiscard]] std::optional<DrawingRect> ReadRect(const ByteArgument& argument);

// The number of curve points to draw, or nothing when the array does not fit `count`.
[[nodiscard]] std::optional<uint32_t> CurvePoints(const ByteArgument& argument, uint32_t count);

// Whether the argument holds `count` units of text and a terminator. `count` is at most kMostTextUnits.
[[nodiscard]] bool HasText(const ByteArgument& argument, uint32_t count, uint32_t unitBytes);
// The text as the drawing system reads it: at least as long as the argument, and in glyph indices long enough for them.
[[nodiscard]] std::vector<uint8_t> ReadText(std::span<const uint8_t> text, uint32_t count, uint32_t options);

// Whether a spacing array is long enough for `count` characters, by the rule that clients know: it leaves out the last
// character's value, and is reckoned in 32 bits, so that no array is long enough for 0 characters.
[[nodiscard]] bool HasSpacing(std::span<const uint8_t> spacing, uint32_t count, uint32_t options);
// One value for each character, or two with kPairedSpacing; 0 where the array has none.
[[nodiscard]] std::vector<int32_t> ReadSpacing(std::span<const uint8_t> spacing, uint32_t count, uint32_t options);

// The platform's BITMAPINFOHEADER.
struct BitmapHeader {
  uint32_t size;
  int32_t width;
  int32_t height;  // negative: the first row is the top one
  uint16_t planes;
  uint16_t bitCount;
  uint32_t compression;
  uint32_t imageSize;
  int32_t horizontalResolution;
  int32_t verticalResolution;
  uint32_t coloursUsed;
  uint32_t coloursImportant;
};
static_assert(sizeof(BitmapHeader) == 40);

// The header at the front of an array of at least 40 bytes.
[[nodiscard]] BitmapHeader ReadBitmapHeader(std::span<const uint8_t> header);
// Whether an array of that many bytes has the pixels, by the rule that clients know: whole bytes a pixel times width
// times height without its sign, compared as signed 32-bit values. Fewer than 8 bits a pixel ask for nothing.
[[nodiscard]] bool HoldsPixels(const BitmapHeader& header, size_t bytes);

// A client's bitmap made safe to hand on. Lives as long as the drawing call; borrows `pixels` when they suffice.
class FillBitmap {
 public:
  // `header` has at least 40 bytes. Throws std::bad_alloc.
  FillBitmap(std::span<const uint8_t> header, std::span<const uint8_t> pixels);
  FillBitmap(const FillBitmap&) = delete;
  FillBitmap& operator=(const FillBitmap&) = delete;

  // False for what no drawing system draws, and for more missing pixels than are worth making up. Nothing is drawn
  // then.
  [[nodiscard]] bool IsDrawable() const { return pixels_ != nullptr; }
  [[nodiscard]] const uint8_t* Header() const { return header_.data(); }
  [[nodiscard]] const uint8_t* Pixels() const { return pixels_; }

 private:
  static constexpr size_t kLongestHeader = 124;  // the platform's newest
  static constexpr size_t kMostColours = 256;

  alignas(BitmapHeader) std::array<uint8_t, kLongestHeader + kMostColours * 4> header_{};
  std::vector<uint8_t> filledUp_;
  const uint8_t* pixels_ = nullptr;
};
