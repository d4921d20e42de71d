#include "delivery/UpdateText.h"

#include <gtest/gtest.h>

namespace {

TEST(UpdateText, BlocksAndVersions) {
  const struct {
    const char *text, *block, *version;
  } rows[] = {
      {"<x><meta a=\"1\">hello <b>you</b></meta></x>", "hello <b>you</b>", "(none)"},
      {"<<metadata>x</metadata>", "x", "(none)"},
      {"<meta>never ends", "(none)", "(none)"},
      {"<meta never closed", "(none)", "(none)"},
      {"<upgrade version=\"3\"><update vx version=\"4.0\" x=\"y\">", "(none)", "4.0"},
      {"<update>version=\"5\"</update><update version=\"6\"", "(none)", "6"},
      {"<update version=\"7>", "(none)", "(none)"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ExtractMetaBlock(row.text).value_or("(none)"), row.block) << row.text;
    EXPECT_EQ(ExtractUpdateVersion(row.text).value_or("(none)"), row.version) << row.text;
  }
  EXPECT_EQ(DecodeMetaBlock("a=\"b\" &quot;c&quot; &apos;d&apos; e&nbsp;f &amp;quot;"),
            "a='b' \"c\" 'd' e f &amp;quot;");
}

}  // namespace
