#include "broker/FilterArray.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/WideText.h"

namespace {

// The fields of a text, joined by "|"; "(refused)" for a bad one. `cut` takes bytes off the end.
std::string Decode(WideView text, uint32_t pairs, size_t cut = 0) {
  std::vector<wchar_t> characters(text.begin(), text.end());
  characters.push_back(0);
  const std::span<uint8_t> bytes(reinterpret_cast<uint8_t*>(characters.data()),
                                 characters.size() * sizeof(wchar_t) - cut);
  if (DecodeFilters(bytes, pairs) != result::Ok) return "(refused)";
  std::string fields;
  const wchar_t* at = characters.data();
  for (uint32_t i = 0; i < 2 * pairs; ++i) fields += (i == 0 ? "" : "|") + ToUtf8(TakeField(at));
  return fields;
}

TEST(FilterArray, DecodesTwoFieldsAPair) {
  const struct {
    const char* why;
    WideView text;
    uint32_t pairs;
    const char* wanted;
  } rows[] = {
      {"two pairs", L"Text (*.txt)\\0*.txt;*.log\\0All\\0*.*\\0", 2, "Text (*.txt)|*.txt;*.log|All|*.*"},
      {"a backslash", L"a\\\\b\\0*.*\\0", 1, "a\\b|*.*"},
      {"a backslash before a digit", L"a\\\\0\\0*.*\\0", 1, "a\\0|*.*"},
      {"empty fields", L"\\0\\0", 1, "|"},
      {"beyond ASCII", L"\x0416\\0*.\x65E5\\0", 1, "\xD0\x96|*.\xE6\x97\xA5"},
      {"one pair too few", L"All\\0*.*\\0", 2, "(refused)"},
      {"one pair too many", L"All\\0*.*\\0All\\0*.*\\0", 1, "(refused)"},
      {"the last field open", L"All\\0*.*", 1, "(refused)"},
      {"a field behind the last separator", L"All\\0*.*\\0x", 1, "(refused)"},
      {"another escape", L"All\\n\\0*.*\\0", 1, "(refused)"},
      {"a backslash at the end", L"All\\0*.*\\0\\", 1, "(refused)"},
      {"a zero in the middle", WideView(L"All\\0*.*\0\\0", 10), 1, "(refused)"},
      {"nothing", L"", 1, "(refused)"},
      {"pairs beyond what can be counted in 32 bits", L"All\\0*.*\\0", 0x0FFFFFFF, "(refused)"},
  };
  for (const auto& row : rows) EXPECT_EQ(Decode(row.text, row.pairs), row.wanted) << row.why;
}

TEST(FilterArray, EndsWithItsTerminator) {
  EXPECT_EQ(Decode(L"All\\0*.*\\0", 1, 1), "(refused)") << "half a character";
  EXPECT_EQ(Decode(L"All\\0*.*\\0", 1, 2), "(refused)") << "no terminator";
  EXPECT_EQ(DecodeFilters({}, 1), result::InvalidArgument);
}

}  // namespace
