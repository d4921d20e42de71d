#include "broker/FilterArray.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/WideText.h"

namespace {

// The fields of a text, joined by "|"; "(refused)" for a bad one. `cut` takes bytes off the end.
std::string Decode(WideView text, uint32_t pairs, size_t cut) {
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
    const char* wanted = "(refused)";
    size_t cut = 0;
  } rows[] = {
      {"two pairs", L"Text (*.txt)\\0*.txt;*.log\\0All\\0*.*\\0", 2, "Text (*.txt)|*.txt;*.log|All|*.*"},
      {"a backslash before a digit", L"a\\\\0\\0*.*\\0", 1, "a\\0|*.*"},
      {"empty fields", L"\\0\\0", 1, "|"},
      {"beyond ASCII", L"\x0416\\0*.\x65E5\\0", 1, "\xD0\x96|*.\xE6\x97\xA5"},
      {"one pair too few", L"All\\0*.*\\0", 2},
      {"one pair too many", L"All\\0*.*\\0All\\0*.*\\0", 1},
      {"a field behind the last separator", L"All\\0*.*\\0x", 1},
      {"another escape", L"All\\n\\0*.*\\0", 1},
      {"a backslash at the end", L"All\\0*.*\\0\\", 1},
      {"a zero in the middle", WideView(L"All\\0*.*\0\\0", 10), 1},
      {"nothing but the terminator", L"", 1},
      {"pairs beyond what can be counted in 32 bits", L"All\\0*.*\\0", 0x0FFFFFFF},
      {"half a character", L"All\\0*.*\\0", 1, "(refused)", 1},
      {"no terminator", L"All\\0*.*\\0", 1, "(refused)", 2},
      {"nothing at all", L"", 1, "(refused)", 2},
  };
  for (const auto& row : rows) EXPECT_EQ(Decode(row.text, row.pairs, row.cut), row.wanted) << row.why;
}

}  // namespace
