#include "engine/SystemConfigFile.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(SystemConfigFile, Format) {
  using State = SystemConfigFile::State;
  const struct {
    const char* why;
    std::string content;
    State state;
    const char* value;  // of "k"
  } rows[] = {
      {"a line", "k = v\n", State::Plain, "v"},
      {"CR LF, and no end of the last line", "a=1\r\nk=v2", State::Plain, "v2"},
      {"CR alone", "a=1\rk=v\r", State::Plain, "v"},
      {"fewer than four bytes are no file", "k=v", State::Absent, ""},
      {"a UTF-8 mark", "\xEF\xBB\xBFk=v\n", State::Utf8Mark, "v"},
      {"a UTF-16 mark", "\xFF\xFEk=v\n", State::Utf16Mark, ""},
      {"the other one", "\xFE\xFFk=v\n", State::Utf16Mark, ""},
      {"only the first = parts", "k=a=b\n", State::Plain, "a=b"},
      {"an empty value is no line, keys differ by case", "k=1\nK=2\nk=\n", State::Plain, "1"},
      {"blanks within stay", "k = a b \n", State::Plain, "a b"},
      {"high bytes at the ends are blanks", "k=\xC3\xA9v\xC3\xA9\n", State::Plain, "v"},
      {"high bytes within are not", "k=z\xC3\xA9z\n", State::Plain, "z\xC3\xA9z"},
      {"a comment with = is a line like any other", "#k=1\nk=2\n", State::Plain, "2"},
      {"a long line", "k=" + std::string(5000, 'x') + "\nk=y\n", State::Plain, "y"},
  };
  for (const auto& row : rows) {
    const SystemConfigFile file(row.content);
    EXPECT_EQ(file.GetState(), row.state) << row.why;
    EXPECT_EQ(file.Lookup("k"), row.value) << row.why;
  }
}

TEST(SystemConfigFile, TruthOfAValue) {
  for (const char* const yes : {"true", "TRUE", "t", "Yes", "y", "1", "2", "-1", " 7", "10x"})
    EXPECT_TRUE(IsTrueSetting(yes)) << yes;
  for (const char* const no : {"", "0", "false", "no", "on", "truex", "x1", "00", "-0", "+"})
    EXPECT_FALSE(IsTrueSetting(no)) << no;
}

}  // namespace
