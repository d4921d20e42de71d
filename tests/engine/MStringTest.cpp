// The shared text type: construction, the seam of paths, cuts and scans, and who sees whose changes.
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
  const wchar_t source[] = L"ab\0cd";
  for (const int32_t length : {-1, 0, 2, 5}) EXPECT_EQ(Text(MString(source, length)), "ab") << length;
  EXPECT_EQ(Text(MString(source, 1)), "a");
  EXPECT_EQ(MString().Data(), nullptr);
  EXPECT_EQ(MString(static_cast<const wchar_t*>(nullptr)).Data(), nullptr);
  ASSERT_NE(MString(L"").Data(), nullptr);
  EXPECT_EQ(MString(L"").Data()[0], 0);
  EXPECT_EQ(MString(L"abc", 2).Data()[2], 0);  // terminated, whatever follows in the source
}

TEST(MString, QuirkNarrowTextIsDecodedFromLeadBytesAlone) {
  struct Row {
    const char* bytes;
    int32_t length;
    std::vector<uint32_t> units;
  };
  // A stray trail byte takes the next byte with it; a sequence may be cut short by its length or by the terminator.
  constexpr uint32_t kTwo = (0xC3 & 31) * 64 | (0xC3 & 63),
                     kThree = ((0xE2 & 15) * 64 | (0xE2 & 63)) * 64 | (0xE2 & 63);
  const Row rows[] = {{"abc", 2, {'a', 'b'}},
                      {"abc", 0, {}},
                      {"", -1, {}},
                      {"\xC3\xA9x", -1, {kTwo, 'x'}},
                      {"\xE2\x82\xACx", -1, {kThree, 'x'}},
                      {"\xF0\x9F\x98\x80x", -1, {65535, 'x'}},
                      {"\x80x", -1, {(0x80 & 31) * 64 | (0x80 & 63)}},
                      {"\xE2\x82\xACx", 2, {kThree}},
                      {"\xE2", -1, {kThree}}};
  for (const Row& row : rows) {
    const MString text = MString::FromNarrow(row.bytes, row.length);
    const std::vector<uint32_t> units(text.View().begin(), text.View().end());
    EXPECT_EQ(units, row.units) << row.bytes << " " << row.length;
  }
  EXPECT_EQ(MString::FromNarrow(nullptr).Data(), nullptr);
  // Exactly as large as stated and not terminated, so that the sanitizer sees a step too far.
  const std::unique_ptr<char[]> bytes(new char[2]{'a', '\xF0'});
  EXPECT_EQ(MString::FromNarrow(bytes.get(), 2).Length(), 2);
}

TEST(MString, NumbersAreWrittenAndRead) {
  const std::pair<MString, const char*> rows[] = {{MString::FromNumber(INT32_MIN), "-2147483648"},
                                                  {MString::FromNumber(UINT32_MAX), "4294967295"},
                                                  {MString::FromNumber(0x800C0DEFu, 16), "800C0DEF"},
                                                  {MString::FromNumber(-255, 16), "-FF"},
                                                  {MString::FromNumber(-7, 10, 3), "-007"},
                                                  {MString::FromNumber(1234, 10, 3), "1234"},
                                                  {MString::FromNumber(0, 16, 0), "0"}};
  for (const auto& [number, text] : rows) EXPECT_EQ(Text(number), text);
  EXPECT_EQ(MString::FromNumber(-1, 10, 1000).Length(), 65);
  const std::pair<const wchar_t*, uint32_t> digits[] = {
      {L"28.0", 28}, {L"", 0}, {L"-1", 0}, {L"007", 7}, {L"4294967295", 4294967295u}, {L"4294967297z", 1}};
  for (const auto& [text, number] : digits) EXPECT_EQ(MString(text).ParseDigits(), number) << Text(text);
  EXPECT_EQ(MString().ParseDigits() + CutText(L"1.28", 2).ParseDigits(), 28u);
}

TEST(MString, NarrowCutsUnitsAndLowerLeavesOtherAlphabetsAlone) {
  EXPECT_STREQ(MString(L"a\u0141\u00e9").Narrow().get(), "aA\xE9");
  EXPECT_STREQ(MString().Narrow().get(), "");
  const MString upper(L"AZ@[\u00c9\u0391a");
  EXPECT_EQ(Text(upper.ToLower()), Text(L"az@[\u00c9\u0391a"));
  EXPECT_EQ(Text(upper), Text(L"AZ@[\u00c9\u0391a"));
  EXPECT_EQ(Text(CutText(L"XYZ", 1).ToLower()), "yz");
}

TEST(MString, Comparisons) {
  EXPECT_TRUE(MString().Equals(MString(L"")));
  EXPECT_TRUE(CutText(L"xab", 1).Equals(MString(L"ab")));
  EXPECT_FALSE(MString(L"ab").Equals(MString(L"aB")));
  struct Row {
    const wchar_t *text, *part;
    bool starts, ends;
  };
  const Row rows[] = {
      {L"abab", L"ab", true, true},  {L"abc", L"ab", true, false}, {L"cab", L"ab", false, true},
      {L"ab", L"abc", false, false}, {L"ab", L"", true, true},     {L"AB", L"ab", false, false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(MString(row.text).StartsWith(MString(row.part)), row.starts) << Text(row.text) << " " << Text(row.part);
    EXPECT_EQ(MString(row.text).EndsWith(MString(row.part)), row.ends) << Text(row.text) << " " << Text(row.part);
  }
}

TEST(MString, AppendLeavesOtherHoldersAlone) {
  MString text(L"ab");
  const MString holder = text;
  text.Append(CutText(L"xcd", 1));
  EXPECT_EQ(Text(text), "abcd");
  EXPECT_EQ(Text(holder), "ab");
  const wchar_t* const before = text.Data();
  text.Append(MString());
  EXPECT_EQ(text.Data(), before);  // nothing was done
  text.Append(text);
  EXPECT_EQ(Text(text), "abcdabcd");
  MString null;
  null.Append(MString());
  ASSERT_NE(null.Data(), nullptr);
  EXPECT_EQ(null.Length(), 0);
}

TEST(MString, QuirkAppendPathJudgesTheSeamByTheBlocks) {
  struct Row {
    MString left, right;
    const char* joined;
  };
  // The block judges, not the view: a separator cut out of view still keeps one from being put in, and one that the
  // view begins with does not count.
  const Row rows[] = {{L"a\\", L"\\b", "a\\b"},
                      {L"a", L"b", "a\\b"},
                      {L"a\\", L"b", "a\\b"},
                      {L"a", L"\\b", "a\\b"},
                      {L"", L"\\b", "\\b"},
                      {L"a", L"", "a"},
                      {L"\\", L"\\", "\\"},
                      {L"a/", L"/b", "a/\\/b"},
                      {L"a\\\\", L"\\\\b", "a\\\\\\b"},
                      {MString(), L"b", "b"},
                      {CutText(L"xa\\", 1), L"b", "a\\b"},
                      {L"a", CutText(L"\\b", 1), "ab"},
                      {L"a\\", CutText(L"\\b", 1), "ab"},
                      {L"a", CutText(L"x\\b", 1), "a\\\\b"}};
  for (const Row& row : rows) {
    MString left = row.left;
    left.AppendPath(L'\\', row.right);
    EXPECT_EQ(Text(left), row.joined) << Text(row.left) << " + " << Text(row.right);
  }
  MString text(L"a");
  text.AppendPath(L'\\', MString());
  text.AppendPath(0, MString(L"b"));
  EXPECT_EQ(Text(text), "a");
}

TEST(MString, Replace) {
  struct Row {
    const wchar_t *source, *from, *to;
    const char* result;
  };
  const Row rows[] = {
      {L"a^b^", L"^", L"<^>", "a<^>b<^>"}, {L"aaa", L"aa", L"b", "ba"}, {L"abab", L"ab", L"", ""},
      {L"aab", L"ab", L"x", "ax"},         {L"abc", L"x", L"y", "abc"}, {L"", L"x", L"y", ""},
      {L"abc", L"", L"y", "abc"},          {L"a", L"abc", L"y", "a"},   {L"ababa", L"aba", L"ab", "abba"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Text(MString::Replace(MString(row.source), MString(row.from), MString(row.to))), row.result)
        << Text(row.source);
  }
  const MString source(L"abc");
  EXPECT_EQ(MString::Replace(source, MString(), MString(L"x")).Data(), source.Data());  // the source itself
}

TEST(MString, Scans) {
  constexpr auto kMember = ScanSense::StopAtMember, kOutsider = ScanSense::StopAtOutsider;
  struct Row {
    const wchar_t* text;
    const char* set;
    ScanSense sense;
    const char *found, *rest;
  };
  // 0x141 is not the member 0x41: a wide unit is outside every set.
  const Row forwards[] = {{L"key=value", "=;", kMember, "key", "=value"},
                          {L"key", "=;", kMember, "key", ""},
                          {L"=key", "=", kMember, "", "=key"},
                          {L"\u0141=b", "\x41=", kMember, "\u0141", "=b"},
                          {L"\u00e9b", "\xE9", kMember, "", "\u00e9b"},
                          {L"  key ", " \t", kOutsider, "  ", "key "},
                          {L"   ", " ", kOutsider, "   ", ""},
                          {L"aa\u0161a", "a", kOutsider, "aa", "\u0161a"}};
  const Row backwards[] = {{L"c:\\a\\b.exe", "\\", kMember, "\\b.exe", "c:\\a"},
                           {L".gz", ".", kMember, ".gz", ""},
                           {L"plain", ".", kMember, "", "plain"},
                           {L"", ".", kMember, "", ""},
                           {L"ab12", "0123456789", kOutsider, "b12", "a"},
                           {L"12", "0123456789", kOutsider, "", "12"},
                           {L"1\u01612", "12", kOutsider, "\u01612", "1"}};
  const auto check = [](const Row& row, auto look, auto cut) {
    MString text(row.text);
    const MString holder = text;
    EXPECT_EQ(Text((text.*look)(row.set, row.sense)), row.found) << Text(row.text);
    EXPECT_EQ(Text(text), Text(row.text));
    EXPECT_EQ(Text((text.*cut)(row.set, row.sense)), row.found) << Text(row.text);
    EXPECT_EQ(Text(text), row.rest);
    EXPECT_EQ(Text(holder), Text(row.text));
  };
  for (const Row& row : forwards) check(row, &MString::SpanUntil, &MString::TakeUntil);
  for (const Row& row : backwards) check(row, &MString::TailFrom, &MString::CutTail);
  EXPECT_EQ(MString().TakeUntil("=").Length(), 0);
  MString cut = CutText(L"x.a.b", 2);
  EXPECT_EQ(Text(cut.CutTail(".")), ".b");
  EXPECT_EQ(Text(cut), "a");
}

TEST(MString, TakeCutsNoMoreThanThereIs) {
  MString text(L"abc");
  EXPECT_EQ(Text(text.Take(1)), "a");
  EXPECT_EQ(Text(text.Take(0)), "");
  EXPECT_EQ(Text(text.Take(99)), "bc");
  EXPECT_EQ(text.Length(), 0);
  EXPECT_EQ(Text(MString(L"a").Take(-1)), "");
  EXPECT_EQ(MString().Take(1).Length(), 0);
}

TEST(MString, CopiesShareTheBlockAndKeepTheirOwnView) {
  MString source(L"abc");
  MString copy = source;
  EXPECT_EQ(copy.Data(), source.Data());
  source.Take(2);
  EXPECT_EQ(Text(source), "c");
  EXPECT_EQ(Text(copy), "abc");
  copy = source;
  const MString& same = copy;
  copy = same;  // the block survives its only other holder going first
  source = MString(L"other");
  EXPECT_EQ(Text(copy), "c");
  MString moved = std::move(copy);
  EXPECT_EQ(Text(moved), "c");
  moved = MString();
  EXPECT_EQ(moved.Data(), nullptr);
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
