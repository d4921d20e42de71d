#include "engine/WideText.h"

namespace {

constexpr uint32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& out, uint32_t point) {
  const auto put = [&out](uint32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (point < 0x80) {
    put(point);
  } else if (point < 0x800) {
    put(0xC0 | point >> 6);
    put(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    put(0xE0 | point >> 12);
    put(0x80 | (point >> 6 & 0x3F));
    put(0x80 | (point & 0x3F));
  } else {
    put(0xF0 | point >> 18);
    put(0x80 | (point >> 12 & 0x3F));
    put(0x80 | (point >> 6 & 0x3F));
    put(0x80 | (point & 0x3F));
  }
}

void AppendUtf16(WideString& out, uint32_t point) {
  if (point < 0x10000) {
    out.push_back(static_cast<wchar_t>(point));
    return;
  }
  out.push_back(static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10)));
  out.push_back(static_cast<wchar_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
}

// Decodes one sequence at text[0]; returns its length, or 0 when it is malformed, overlong or a surrogate.
size_t DecodeUtf8(std::string_view text, uint32_t& point) {
  const auto byte = [text](size_t i) { return static_cast<uint32_t>(static_cast<unsigned char>(text[i])); };
  const uint32_t lead = byte(0);
  if (lead < 0x80) {
    point = lead;
    return 1;
  }
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  point = lead & (0xFFu >> (length + 1));
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    point = point << 6 | (byte(i) & 0x3F);
  }
  constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = point >= 0xD800 && point < 0xE000;
  return point < kLeast[length] || point > 0x10FFFF || surrogate ? 0 : length;
}

}  // namespace

std::string ToUtf8(WideView text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    uint32_t point = text[i];
    if (point >= 0xD800 && point < 0xE000) {
      const uint32_t low = i + 1 < text.size() ? text[i + 1] : 0u;
      if (point < 0xDC00 && low >= 0xDC00 && low < 0xE000) {
        point = 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00);
        ++i;
      } else {
        point = kReplacement;
      }
    }
    AppendUtf8(out, point);
  }
  return out;
}

WideString FromUtf8(std::string_view text) {
  WideString out;
  out.reserve(text.size());
  while (!text.empty()) {
    uint32_t point = kReplacement;
    const size_t length = DecodeUtf8(text, point);
    AppendUtf16(out, length == 0 ? kReplacement : point);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}
