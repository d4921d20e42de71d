// The texts of the built module, read from its resources language by language as they lie there.
#include <algorithm>

#include "tests/module/LoadedModule.h"

namespace {

struct LanguageRow {
  WORD language;
  const char* addressSegment;
};
constexpr LanguageRow kLanguages[] = {{1033, ""},    {29, "/se"},   {1028, "/tw"}, {1029, "/cz"},
                                      {1031, "/de"}, {1036, "/fr"}, {1040, "/it"}, {1041, "/jp"},
                                      {1042, "/kr"}, {1043, "/nl"}, {1045, "/pl"}, {1046, "/br"},
                                      {1049, "/ru"}, {1055, "/tr"}, {2052, "/cn"}, {3082, "/es"}};

// The whole entry, terminator included; empty when there is none. String tables are of type 6.
WideString TextOf(WORD language, uint32_t id) {
  const HRSRC found = FindResourceExW(LoadedModule(), MAKEINTRESOURCEW(6), MAKEINTRESOURCEW(id / 16 + 1), language);
  if (found == nullptr) return {};
  const auto* units = static_cast<const wchar_t*>(LockResource(LoadResource(LoadedModule(), found)));
  for (uint32_t before = id % 16; before > 0; --before) units += 1 + *units;
  return WideString(units + 1, *units);
}

bool IsAbsent(uint32_t id) {
  constexpr uint32_t kAlone[] = {9, 15, 27, 29, 37, 86};
  return std::count(std::begin(kAlone), std::end(kAlone), id) != 0 || (id >= 40 && id <= 50) ||
         (id >= 66 && id <= 70) || id > 94;
}

// What must be the same in every language: the leading blanks, the tags and the marks for values.
WideString FrameOf(const WideString& text) {
  WideString frame = text.substr(0, text.find_first_not_of(L' '));
  bool inTag = false;
  for (const wchar_t unit : text) {
    inTag = inTag || unit == L'<';
    if (inTag || unit == L'^') frame.push_back(unit);
    if (unit == L'>') inTag = false;
  }
  return frame;
}

}  // namespace

TEST(StringTables, EveryLanguageHasTheSameIdsTagsPlaceholdersAndNames) {
  for (const LanguageRow& row : kLanguages) {
    for (uint32_t id = 1; id < 112; ++id) {
      const WideString text = TextOf(row.language, id), original = TextOf(1033, id);
      SCOPED_TRACE(std::to_string(row.language) + ": " + std::to_string(id) + " " + ToUtf8(text));
      ASSERT_EQ(text.empty(), IsAbsent(id));
      if (text.empty()) continue;
      EXPECT_EQ(text.find_first_of(WideView(L"\0\xFFFD", 2)), text.size() - 1) << "one terminator, counted";
      if (id != 71) EXPECT_EQ(text == original, row.language == 1033) << "translated";
      EXPECT_EQ(FrameOf(text), FrameOf(original));
      for (const wchar_t* const name : {L"Corva", L"Lumen", L"Player", L"®", L"Real Player 11", L"Corva Labs"}) {
        const bool named = original.find(name) != WideString::npos;
        // "Player Download Center" is no product, so a language may have a word of its own for it.
        if (named && id != 60) EXPECT_NE(text.find(name), WideString::npos) << ToUtf8(name);
      }
    }
    EXPECT_STREQ(TextOf(row.language, 71).c_str(), row.language == 1029 ? L"750" : L"730");
    EXPECT_EQ(ToUtf8(TextOf(row.language, 88).c_str()),
              std::string("https://update.corva.example") + row.addressSegment + "/lumenplayer/update/");
  }
  EXPECT_EQ(FrameOf(TextOf(1033, 65)), L"<br/<br/>") << "two tags that are read as one line break, as they always were";
}
