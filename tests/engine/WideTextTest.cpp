#include "engine/WideText.h"

#include <gtest/gtest.h>

TEST(WideText, Utf8RoundTripsWellFormedText) {
  for (const char* text : {"", "ascii", "\xC3\xA9\xC2\x80\xDF\xBF", "\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF",
                           "\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", "\xED\x9F\xBF\xEE\x80\x80"}) {
    EXPECT_EQ(ToUtf8(FromUtf8(text)), text);
  }
  EXPECT_EQ(FromUtf8("\xF0\x9F\x98\x80"), WideView(L"\xD83D\xDE00"));
}

TEST(WideText, MalformedBytesBecomeReplacementsAndTheScanGoesOn) {
  struct Row {
    const char* reason;
    std::string bytes;
    WideString units;
  };
  const Row rows[] = {
      {"stray trail byte, and cut short by the end", "a\x80z\xE2\x82", L"a\xFFFDz\xFFFD\xFFFD"},
      {"cut short by a letter", "\xE2\x82z", L"\xFFFD\xFFFDz"},
      {"overlong, two bytes", "\xC0\xAF", L"\xFFFD\xFFFD"},
      {"overlong, three bytes", "\xE0\x80\xAF", L"\xFFFD\xFFFD\xFFFD"},
      {"surrogate", "\xED\xA0\x80", L"\xFFFD\xFFFD\xFFFD"},
      {"past the last point", "\xF4\x90\x80\x80", L"\xFFFD\xFFFD\xFFFD\xFFFD"},
      {"no such lead", "\xFF", L"\xFFFD"},
  };
  for (const Row& row : rows) EXPECT_EQ(FromUtf8(row.bytes), row.units) << row.reason;
}

TEST(WideText, LoneSurrogatesBecomeReplacements) {
  EXPECT_EQ(ToUtf8(L"\xD83Dz\xDE00"), "\xEF\xBF\xBDz\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(L"\xD83D"), "\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(L"\xD83D\xD83D\xDE00"), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(WideText, TraitsOrderByUnsignedUnit) {
  EXPECT_LT(WideView(L"a"), WideView(L"\xFFFF"));
  EXPECT_LT(WideView(L"a"), WideView(L"aa"));
  EXPECT_EQ(WideView(L"xaab").find(L"ab"), 2u);
  WideString text(L"0123456789");
  text.insert(2, text, 0, 5);  // moves overlapping units up
  EXPECT_EQ(text, WideView(L"010123423456789"));
  text.erase(0, 3);
  EXPECT_EQ(text, WideView(L"123423456789"));
}
