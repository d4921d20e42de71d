// Dotted versions: taken apart, compared, and judged against this build, 28.0.0.126.
#include "install/VersionNumbers.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

TEST(VersionNumbers, FirstPairThatDiffersDecides) {
  struct {
    const wchar_t* a;
    const wchar_t* b;
    int32_t result;
  } const rows[] = {
      {L"11.3.0.0", L"11.3", 0},     {L"11.3.0.1", L"11.3.0.0", 1},
      {L"11.10", L"11.9", 1},        {L"1.2.3.4", L"1.2.4.0", -1},
      {L"1.2.3.4.5", L"1.2.3.4", 0}, {L"28beta.1x.y2. 3", L"28.1", 0},
      {L"4294967296.1", L"0.1", 0},  {L"", L"0", 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(CompareVersionStrings(row.a, row.b), row.result) << ToUtf8(row.a) << " " << ToUtf8(row.b);
    EXPECT_EQ(CompareVersionStrings(row.b, row.a), -row.result) << ToUtf8(row.b) << " " << ToUtf8(row.a);
  }
}

TEST(VersionNumbers, InstalledVersionsAreOlderTheSameOrNewer) {
  const std::pair<const wchar_t*, InstalledState> rows[] = {
      {L"28.0.1.0", InstalledState::Newer},
      {L"27.9.9.999", InstalledState::Older},
      {L"29", InstalledState::Newer},
  };
  for (const auto& [text, state] : rows) EXPECT_EQ(StateOfVersion(text), state) << ToUtf8(text);
}

}  // namespace
