// The shared text type: construction, the seam of paths, scans, and who sees whose changes.
#include "engine/MString.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/Texts.h"

namespace {

// A text whose view begins `cut` units into its block.
MString CutText(const wchar_t* text, int32_t cut) {
  MString whole(text);
  whole.Take(cut);
  return whole;
}

}  // namespace

TEST(MString, ConstructionMeasuresAndStopsAtZero) {
  for (const int32_t length : {-1, 0, 2, 5}) EXPECT_EQ(Text(MString(L"ab\0cd", length)), "ab") << length;
  EXPECT_EQ(MString().Data(), nullptr);
  EXPECT_EQ(MString(static_cast<const wchar_t*>(nullptr)).Data(), nullptr);
  ASSERT_NE(MString(L"").Data(), nullptr);
  EXPECT_EQ(MString(L"").Data()[0], 0);
  EXPECT_EQ(MString(L"abc", 2).Data()[2], 0);  // terminated, whatever follows in the source
}

TEST(MString, QuirkNarrowTextIsDecodedFromLeadBytesAlone) {
  // A stray trail byte takes the next byte with it; a sequence may be cut short by its length or by the terminator.
  constexpr uint32_t kTwo = (0xC3 & 31) * 64 | (0xC3 & 63),
                     kThree = ((0xE2 & 15) * 64 | (0xE2 & 63)) * 64 | (0xE2 & 63);
  const std::tuple<const char*, int32_t, std::vector<uint32_t>> rows[] = {
      {"abc", 2, {'a', 'b'}},
      {"abc", 0, {}},
      {"\xC3\xA9x", -1, {kTwo, 'x'}},
      {"\xE2\x82\xACx", -1, {kThree, 'x'}},
      {"\xF0\x9F\x98\x80x", -1, {65535, 'x'}},
      {"\x80x", -1, {(0x80 & 31) * 64 | (0x80 & 63)}},
      {"\xE2\x82\xACx", 2, {kThree}},
      {"\xE2", -1, {kThree}}};
  for (const auto& [bytes, length, wanted] : rows) {
    const MString text = MString::FromNarrow(bytes, length);
    EXPECT_EQ(std::vector<uint32_t>(text.View().begin(), text.View().end()), wanted) << bytes << " " << length;
  }
  EXPECT_EQ(MString::FromNarrow(nullptr).Data(), nullptr);
  // Exactly as large as stated and not terminated, so that the sanitizer sees a step too far.
  const std::unique_ptr<char[]> bytes(new char[2]{'a', '\xF0'});
  EXPECT_EQ(MString::FromNarrow(bytes.get(), 2).Length(), 2);
  EXPECT_STREQ(MString(L"a\u0141\u00e9").Narrow().get(), "aA\xE9");  // units are cut to bytes
  EXPECT_STREQ(MString().Narrow().get(), "");
}

TEST(MString, AppendLeavesOtherHoldersAlone) {
  MString text(L"ab");
  const MString holder = text;
  text.Append(CutText(L"xcd", 1));
  text.Append(text);
  text.Append(MString());
  EXPECT_EQ(Text(text), "abcdabcd");
  EXPECT_EQ(Text(holder), "ab");
  EXPECT_TRUE(holder.StartsWith(MString(L"ab")) && holder.EndsWith(MString()) && !holder.EndsWith(MString(L"xab")));
  MString null;
  null.Append(MString());
  EXPECT_NE(null.Data(), nullptr);
}

TEST(MString, QuirkAppendPathJudgesTheSeamByTheBlocks) {
  // The block judges, not the view: a separator cut out of view still keeps one from being put in, and one that the
  // view begins with does not count.
  const std::tuple<MString, MString, const char*> rows[] = {{L"a\\", L"\\b", "a\\b"},
                                                            {L"a", L"b", "a\\b"},
                                                            {L"a\\", L"b", "a\\b"},
                                                            {L"", L"\\b", "\\b"},
                                                            {L"\\", L"\\", "\\"},
                                                            {L"a/", L"/b", "a/\\/b"},
                                                            {MString(), L"b", "b"},
                                                            {L"a", MString(), "a"},
                                                            {CutText(L"xa\\", 1), L"b", "a\\b"},
                                                            {L"a", CutText(L"\\b", 1), "ab"},
                                                            {L"a\\", CutText(L"\\b", 1), "ab"},
                                                            {L"a", CutText(L"x\\b", 1), "a\\\\b"}};
  for (const auto& [left, right, wanted] : rows) {
    MString joined = left;
    joined.AppendPath(L'\\', right);
    EXPECT_EQ(Text(joined), wanted) << Text(left) << " + " << Text(right);
  }
}

TEST(MString, Scans) {
  constexpr auto kMember = ScanSense::StopAtMember, kOutsider = ScanSense::StopAtOutsider;
  using Row = std::tuple<const wchar_t*, const char*, ScanSense, const char*, const char*>;
  // 0x141 is not the member 0x41: a wide unit is outside every set.
  const Row forwards[] = {{L"\u0141=b", "\x41=", kMember, "\u0141", "=b"},
                          {L"\u00e9b", "\xE9", kMember, "", "\u00e9b"},
                          {L"  key ", " \t", kOutsider, "  ", "key "},
                          {L"aa\u0161a", "a", kOutsider, "aa", "\u0161a"}};
  const Row backwards[] = {{L"c:\\a\\b.exe", "\\", kMember, "\\b.exe", "c:\\a"},
                           {L"plain", ".", kMember, "", "plain"},
                           {L"ab12", "0123456789", kOutsider, "b12", "a"},
                           {L"1\u01612", "12", kOutsider, "\u01612", "1"}};
  const auto check = [](const Row& row, auto look, auto cut) {
    const auto& [whole, set, sense, found, rest] = row;
    MString text = CutText((WideString(L"X") + whole).c_str(), 1);
    const MString holder = text;
    EXPECT_EQ(Text((text.*look)(set, sense)), found) << Text(whole);
    EXPECT_EQ(Text((text.*cut)(set, sense)), found) << Text(whole);
    EXPECT_EQ(Text(text), rest);
    EXPECT_EQ(Text(holder), Text(whole));
  };
  for (const Row& row : forwards) check(row, &MString::SpanUntil, &MString::TakeUntil);
  for (const Row& row : backwards) check(row, &MString::TailFrom, &MString::CutTail);
  EXPECT_EQ(MString().TakeUntil("=").Length(), 0);
}

TEST(MString, BlockHasTheLayoutThatModulesShare) {
  const MString text(L"abc");
  const MString holder = text;
  // Count, length and the freeing function stand in front of the characters.
  int32_t header[2] = {};
  std::memcpy(header, reinterpret_cast<const char*>(text.Data()) - sizeof(MString::Block), sizeof(header));
  EXPECT_EQ(header[0], 2);
  EXPECT_EQ(header[1], 3);
  const MString::Block* block = nullptr;
  std::memcpy(&block, reinterpret_cast<const char*>(&text), sizeof(void*));
  EXPECT_EQ(block->Characters(), text.Data());
  EXPECT_NE(block->release, nullptr);
}
