// Text of 16-bit code units for code that must also run where the C library's wide functions assume 32 bits.
// Everything portable uses these in place of the standard wide strings; MString is the type that crosses interfaces.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <ios>
#include <string>
#include <string_view>

static_assert(sizeof(wchar_t) == 2, "portable code is compiled with -fshort-wchar");

// Character traits that call no library function on wchar_t.
struct WideTraits {
  using char_type = wchar_t;
  using int_type = uint32_t;
  using off_type = std::streamoff;
  using pos_type = std::streampos;
  using state_type = std::mbstate_t;
  using comparison_category = std::strong_ordering;

  static constexpr void assign(char_type& to, const char_type& from) noexcept { to = from; }
  static constexpr bool eq(char_type a, char_type b) noexcept { return a == b; }
  static constexpr bool lt(char_type a, char_type b) noexcept { return a < b; }
  static constexpr int compare(const char_type* a, const char_type* b, size_t count) noexcept {
    for (size_t i = 0; i < count; ++i) {
      if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    }
    return 0;
  }
  static constexpr size_t length(const char_type* text) noexcept {
    size_t count = 0;
    while (text[count] != 0) ++count;
    return count;
  }
  static constexpr const char_type* find(const char_type* text, size_t count, const char_type& wanted) noexcept {
    for (size_t i = 0; i < count; ++i) {
      if (text[i] == wanted) return text + i;
    }
    return nullptr;
  }
  static constexpr char_type* move(char_type* to, const char_type* from, size_t count) noexcept {
    if (to < from) return copy(to, from, count);
    for (size_t i = count; i > 0; --i) to[i - 1] = from[i - 1];
    return to;
  }
  static constexpr char_type* copy(char_type* to, const char_type* from, size_t count) noexcept {
    for (size_t i = 0; i < count; ++i) to[i] = from[i];
    return to;
  }
  static constexpr char_type* assign(char_type* to, size_t count, char_type with) noexcept {
    for (size_t i = 0; i < count; ++i) to[i] = with;
    return to;
  }
  static constexpr char_type to_char_type(int_type value) noexcept { return static_cast<char_type>(value); }
  static constexpr int_type to_int_type(char_type value) noexcept { return value; }
  static constexpr bool eq_int_type(int_type a, int_type b) noexcept { return a == b; }
  static constexpr int_type eof() noexcept { return UINT32_MAX; }
  static constexpr int_type not_eof(int_type value) noexcept { return value == eof() ? 0 : value; }
};

// An owned text, always terminated. WideView is a borrowed one and need not be.
using WideString = std::basic_string<wchar_t, WideTraits>;
using WideView = std::basic_string_view<wchar_t, WideTraits>;

constexpr wchar_t ToUpperAscii(wchar_t c) {
  return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c;
}
constexpr wchar_t ToLowerAscii(wchar_t c) {
  return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c;
}

// Each byte becomes the code unit of the same value; right for ASCII, which is all that literals and keys hold.
inline WideString WidenAscii(std::string_view text) {
  WideString wide;
  wide.reserve(text.size());
  for (char c : text) wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(c)));
  return wide;
}

// UTF-8 of UTF-16, with U+FFFD for a lone surrogate; for messages, JSON and test output.
std::string ToUtf8(WideView text);
// UTF-16 of UTF-8, with U+FFFD for each byte that begins no valid sequence.
WideString FromUtf8(std::string_view text);

#ifdef _WIN32
// Between UTF-16 and the system's code page, for the narrow texts of older interfaces. What the page lacks becomes "?".
std::string NarrowToCodePage(WideView text);
WideString WidenFromCodePage(std::string_view text);
#endif
