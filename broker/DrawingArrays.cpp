// Lengths, and copies that bound what the drawing system reads.
#include "broker/DrawingArrays.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t kPointBytes = 8;
constexpr uint64_t kMostFilledUp = 16u << 20;

enum Compression : uint32_t { kPlain = 0, kMasks = 3 };  // any other is compressed

// The bytes of one row; rows are padded to 32 bits. Nothing for rows that are too long for anyone.
std::optional<uint64_t> RowBytes(const BitmapHeader& header) {
  const uint64_t planes = std::max<uint64_t>(header.planes, 1);
  const uint64_t bytes = (static_cast<uint64_t>(header.width) * header.bitCount * planes + 31) / 32 * 4;
  if (bytes > kMostFilledUp) return std::nullopt;
  return bytes;
}

// How many rows the header announces. Reckoned wide, as the most negative height has no positive twin in 32 bits.
uint64_t Rows(const BitmapHeader& header) {
  const int64_t height = header.height;
  return static_cast<uint64_t>(height < 0 ? -height : height);
}

template <class Value>
std::vector<Value> Filled(std::span<const uint8_t> from, size_t count) {
  std::vector<Value> values(count);
  const size_t bytes = std::min(from.size(), count * sizeof(Value));
  if (bytes != 0) std::memcpy(values.data(), from.data(), bytes);
  return values;
}

constexpr uint32_t ValuesPerCharacter(uint32_t options) {
  return (options & kPairedSpacing) != 0 ? 2 : 1;
}

}  // namespace

bool HasLength(const ByteArgument& argument, size_t bytes) {
  return argument && argument->size() == bytes;
}

std::optional<DrawingRect> ReadRect(const ByteArgument& argument) {
  if (!HasLength(argument, sizeof(DrawingRect))) return std::nullopt;
  DrawingRect rect = {};
  std::memcpy(&rect, argument->data(), sizeof(rect));
  return rect;
}

std::optional<uint32_t> CurvePoints(const ByteArgument& argument, uint32_t count) {
  if (!argument) return std::nullopt;
  const uint32_t bytes = count * kPointBytes;
  if (bytes != 0 && argument->size() != bytes) return std::nullopt;
  // The product wraps from 0x20000000 points on, and a short array passes. There is nothing to draw in it.
  return uint64_t{count} * kPointBytes <= argument->size() ? count : 0;
}

bool HasText(const ByteArgument& argument, uint32_t count, uint32_t unitBytes) {
  return HasLength(argument, (size_t{count} + 1) * unitBytes);
}

std::vector<uint8_t> ReadText(std::span<const uint8_t> text, uint32_t count, uint32_t options) {
  // Glyph indices have 16 bits in a narrow call too, whose array has room for half of them.
  const size_t wanted = (options & kGlyphIndices) != 0 ? (size_t{count} + 1) * 2 : 0;
  return Filled<uint8_t>(text, std::max(text.size(), wanted));
}

bool HasSpacing(std::span<const uint8_t> spacing, uint32_t count, uint32_t options) {
  const uint32_t bytes = (count - 1) * 4 * ValuesPerCharacter(options);
  return spacing.size() >= bytes;
}

std::vector<int32_t> ReadSpacing(std::span<const uint8_t> spacing, uint32_t count, uint32_t options) {
  // The drawing system reads a value for the last character as well, which the rule does not ask for. It moves only
  // what would stand behind the text, and a client that cares sends it.
  return Filled<int32_t>(spacing, size_t{count} * ValuesPerCharacter(options));
}

BitmapHeader ReadBitmapHeader(std::span<const uint8_t> header) {
  BitmapHeader read = {};
  std::memcpy(&read, header.data(), sizeof(read));
  return read;
}

bool HoldsPixels(const BitmapHeader& header, size_t bytes) {
  // The most negative height stays negative, and a negative width makes the product negative: both pass any array.
  // FillBitmap looks again at what is really read.
  const auto height = static_cast<uint32_t>(header.height);
  const uint32_t rows = header.height < 0 ? 0u - height : height;
  const uint32_t product = uint32_t{header.bitCount} / 8 * static_cast<uint32_t>(header.width) * rows;
  return static_cast<int32_t>(product) <= static_cast<int32_t>(bytes);
}

FillBitmap::FillBitmap(std::span<const uint8_t> header, std::span<const uint8_t> pixels) {
  BitmapHeader fields = ReadBitmapHeader(header);
  // The colours stand behind as many bytes as the header calls its own, and there are as many as it says or its depth
  // asks for: 44 or 48 bytes hold two at most. Those that did not come are black.
  if (fields.size < sizeof(BitmapHeader) || fields.size > kLongestHeader) return;
  fields.coloursUsed = std::min<uint32_t>(fields.coloursUsed, kMostColours);
  if (fields.width <= 0) return;
  const std::optional<uint64_t> row = RowBytes(fields);
  if (!row) return;
  const uint64_t plain = *row * Rows(fields);
  if (fields.compression == kPlain || fields.compression == kMasks) {
    fields.imageSize = static_cast<uint32_t>(std::min<uint64_t>(plain, UINT32_MAX));  // a word nobody needs to trust
  } else if (fields.imageSize == 0) {
    return;  // nothing would end the reading
  }
  const uint64_t wanted = std::max<uint64_t>(plain, fields.imageSize);
  if (pixels.size() < wanted) {
    if (wanted - pixels.size() > kMostFilledUp) return;
    filledUp_ = Filled<uint8_t>(pixels, static_cast<size_t>(wanted));
    pixels = filledUp_;
  }
  std::memcpy(header_.data(), header.data(), std::min(header.size(), header_.size()));
  std::memcpy(header_.data(), &fields, sizeof(fields));
  pixels_ = pixels.data();
}
