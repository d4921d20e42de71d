#include "engine/SystemConfigFile.h"

#include <gtest/gtest.h>

#include <string>

TEST(SystemConfigFile, Format) {
  using State = SystemConfigFile::State;
  const struct {
    const char* why;
    std::string content;
    const char* value;  // of "k"
    State state = State::Plain;
  } rows[] = {
      {"CR LF, and no end of the last line", "a=1\r\nk= v2", "v2"},
      {"CR alone", "a=1\rk = v\r", "v"},
      {"fewer than four bytes are no file", "k=v", "", State::Absent},
      {"a UTF-8 mark", "\xEF\xBB\xBFk=v\n", "v", State::Utf8Mark},
      {"a UTF-16 mark", "\xFF\xFEk=v\n", "", State::Utf16Mark},
      {"the other one", "\xFE\xFFk=v\n", "", State::Utf16Mark},
      {"only the first = parts", "k=a=b\n", "a=b"},
      {"an empty value is no line, keys differ by case", "k=1\nK=2\nk=\n", "1"},
      {"high bytes are blanks at the ends, and not within", "k=\xC3\xA9v\xC3z\xA9\n", "v\xC3z"},
      {"a comment with = is a line like any other", "#k=1\nk=2\n", "2"},
      {"a long line", "k=" + std::string(5000, 'x') + "\nk=y\n", "y"},
  };
  for (const auto& row : rows) {
    const SystemConfigFile file(row.content);
    EXPECT_EQ(file.GetState(), row.state) << row.why;
    EXPECT_EQ(file.Lookup("k"), row.value) << row.why;
  }
  for (const char* const yes : {"TRUE", "t", "Yes", "y", "2", "-1", " 7", "10x"})
    EXPECT_TRUE(IsTrueSetting(yes)) << yes;
  for (const char* const no : {"", "00", "-0", "on", "truex", "x1", "+"}) EXPECT_FALSE(IsTrueSetting(no)) << no;
}
