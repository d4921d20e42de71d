// Which of several files is found is shown by the removal of patterns.
#include "engine/FilePattern.h"

#include <gtest/gtest.h>

#include "tests/support/Texts.h"

TEST(FilePattern, PrefixAndSuffix) {
  // Without a colon the whole pattern is the prefix; only the first and the last colon count; the two may overlap.
  const std::tuple<const wchar_t*, const wchar_t*, bool> rows[] = {{L"Lumen:.ocx", L"lumen28.ocx", false},
                                                                   {L"Lumen:.ocx", L"Lumen28.dll", false},
                                                                   {L"Lumen", L"Lumen28.x", true},
                                                                   {L"a:b:c", L"axc", true},
                                                                   {L"a:b:c", L"axb", false},
                                                                   {L":.exe", L"any.exe", true},
                                                                   {L"a:", L"abc", true},
                                                                   {L"ab:bc", L"abc", true}};
  for (const auto& [pattern, name, matches] : rows) {
    EXPECT_EQ(MatchesPattern(MString(name), MString(pattern)), matches) << Text(pattern) << " " << Text(name);
  }
}
