#include "engine/WideText.h"

#include <gtest/gtest.h>

TEST(WideText, Utf8RoundTripsAndMalformedBytesBecomeReplacements) {
  const std::tuple<const char*, std::string, WideString> rows[] = {
      {"two bytes", "a\xC3\xA9\xC2\x80\xDF\xBF", L"a\u00E9\x0080\x07FF"},
      {"three bytes", "\xE0\xA0\x80\xEF\xBF\xBF\xED\x9F\xBF\xEE\x80\x80", L"\x0800\xFFFF\xD7FF\xE000"},
      {"four bytes", "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", L"\xD83D\xDE00\xDBFF\xDFFF"},
      {"stray trail byte, and cut short by the end", "a\x80z\xE2\x82", L"a\xFFFDz\xFFFD\xFFFD"},
      {"cut short by a letter", "\xE2\x82z", L"\xFFFD\xFFFDz"},
      {"overlong, two bytes", "\xC0\xAF", L"\xFFFD\xFFFD"},
      {"overlong, three bytes", "\xE0\x80\xAF", L"\xFFFD\xFFFD\xFFFD"},
      {"surrogate", "\xED\xA0\x80", L"\xFFFD\xFFFD\xFFFD"},
      {"past the last point", "\xF4\x90\x80\x80", L"\xFFFD\xFFFD\xFFFD\xFFFD"},
      {"no such lead", "\xFF", L"\xFFFD"},
  };
  for (const auto& [reason, bytes, units] : rows) {
    EXPECT_EQ(FromUtf8(bytes), units) << reason;
    if (units.find(L'\xFFFD') == WideString::npos) EXPECT_EQ(ToUtf8(units), bytes) << reason;
  }
  EXPECT_EQ(ToUtf8(L"\xD83Dz\xDE00\xD83D\xD83D\xDE00"), "\xEF\xBF\xBDz\xEF\xBF\xBD\xEF\xBF\xBD\xF0\x9F\x98\x80");
}
