#include "delivery/UpdateText.h"

#include <gtest/gtest.h>

namespace {

TEST(UpdateText, MetaBlock) {
  const struct {
    const char* text;
    const char* block;
  } rows[] = {
      {"<x><meta a=\"1\">hello <b>you</b></meta></x>", "hello <b>you</b>"},
      {"<metadata>x</metadata>", "x"},
      {"<meta>never ends", "(none)"},
      {"<meta never closed", "(none)"},
      {"<<meta>x</meta>", "x"},
  };
  for (const auto& row : rows) EXPECT_EQ(ExtractMetaBlock(row.text).value_or("(none)"), row.block) << row.text;
}

TEST(UpdateText, Version) {
  const struct {
    const char* text;
    const char* version;
  } rows[] = {
      {"<a/><update version=\"28.0.0.127\" x=\"y\">", "28.0.0.127"},
      {"<upgrade version=\"3\"><update version=\"4\">", "4"},
      {"<update>version=\"5\"</update>", "(none)"},
      {"<update version=6>", "(none)"},
      {"<update version=\"7>", "(none)"},
      {"<update version x=\"8\">", "8"},
      {"<update x><update version=\"9\"", "9"},
      {"", "(none)"},
  };
  for (const auto& row : rows) EXPECT_EQ(ExtractUpdateVersion(row.text).value_or("(none)"), row.version) << row.text;
}

TEST(UpdateText, PlainQuotesBecomeSingleAndEntitiesComeOutDouble) {
  EXPECT_EQ(DecodeMetaBlock("a=\"b\" &quot;c&quot; &apos;d&apos; e&nbsp;f"), "a='b' \"c\" 'd' e f");
  EXPECT_EQ(DecodeMetaBlock("&amp;quot;"), "&amp;quot;");
}

// Each of these took time by the square of its length.
TEST(UpdateText, ATextOfAMegabyteIsGoneThroughOnce) {
  for (const std::string unit : {"<", "<update ", "version ", "&nbsp;"}) {
    std::string text = "<update ";
    while (text.size() < 4'000'000) text += unit;
    EXPECT_FALSE(ExtractUpdateVersion(text));
    EXPECT_FALSE(ExtractUpdateVersion(text + ">"));
    EXPECT_LE(DecodeMetaBlock(text).size(), text.size());
  }
}

}  // namespace
