#include <gtest/gtest.h>

#include "client/Account.h"
#include "client/AddOnTexts.h"
#include "client/Arguments.h"
#include "client/Json.h"

namespace {

TEST(Arguments, OptionsValuesAndTheRest) {
  const std::vector<OptionSpec> options = {{"--text", true}, {"--keep"}, {"--n", true}};
  const Arguments good({"a", "--text", "x y", "--keep", "--n", "12", "--", "--b"}, options);
  EXPECT_EQ(good.Error(), "");
  EXPECT_EQ(good.Positional(), (std::vector<std::string>{"a", "--b"}));
  EXPECT_EQ(good.Value("--text"), "x y");
  EXPECT_TRUE(good.Has("--keep"));
  EXPECT_EQ(good.Number("--n", 0), 12u);
  EXPECT_NE(Arguments({"--what"}, options).Error(), "");
  EXPECT_NE(Arguments({"--text"}, options).Error(), "");
  EXPECT_FALSE(Arguments({"--n", "1x"}, options).Number("--n", 0).has_value());

  EXPECT_EQ(ParseHexBytes("4d 5A00"), (std::vector<uint8_t>{0x4D, 0x5A, 0}));
  for (const char* const wrong : {"4", "4g", "0x4d"}) EXPECT_FALSE(ParseHexBytes(wrong)) << wrong;
}

TEST(Account, LinesAndWhatIsWrongWithThem) {
  const ParsedAccount good = ParseAccount(
      "# note\r\n== Title\r\nS_OK  does it :: write \"C:\\a b\\c\" --text \"\"\r\n\r\n"
      "0x80070005 is refused :: rm x");
  ASSERT_EQ(good.error, "");
  ASSERT_EQ(good.steps.size(), 3u);
  EXPECT_EQ(good.steps[0].heading, "Title");
  EXPECT_EQ(good.steps[1].description, "does it");
  EXPECT_EQ(good.steps[1].words, (std::vector<std::string>{"write", "C:\\a b\\c", "--text", ""}));
  EXPECT_EQ(good.steps[2].expected, static_cast<int32_t>(0x80070005));
  EXPECT_EQ(good.steps[2].line, 5);
  for (const char* const wrong : {"S_OK no command ::", "S_OK none", "NOPE x :: y", "S_OK x :: \"open", "== "}) {
    EXPECT_NE(ParseAccount(wrong).error, "") << wrong;
  }
}

TEST(AddOnTexts, ProgressFromNothingToAll) {
  EXPECT_EQ(ProgressLine("package", 0, 0), "package  [########################] 100%  0 bytes of 0 bytes");
  EXPECT_EQ(ProgressLine("package", 0xFFFFFFFE, 0xFFFFFFFF),
            "package  [#######################-]  99%  4096.0 MiB of 4096.0 MiB");
}

TEST(Json, ObjectsAreOneLineWhateverTheirTextHolds) {
  EXPECT_EQ(JsonObject().Text("a", "\"\\\n\x01").Number("n", 5).Flag("f", true).Close(),
            "{\"a\":\"\\\"\\\\\\u000a\\u0001\",\"n\":5,\"f\":true}");
}

}  // namespace
