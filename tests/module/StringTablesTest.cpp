// The texts of the built module, read from its resources language by language as they lie there, and through the shim.
#include <algorithm>
#include <map>
#include <set>

#include "engine/ProductKind.h"
#include "host/ReferenceHost.h"
#include "tests/module/LoadedModule.h"
#include "tests/support/Texts.h"

namespace {

using Table = std::map<uint32_t, WideString>;

// RT_STRING is 6; without UNICODE the headers give it the narrow type.
constexpr uint32_t kLastId = 112;  // the end of the block that holds the last text

struct LanguageRow {
  WORD language;
  const char* width;
  const char* addressSegment;
};
constexpr LanguageRow kLanguages[] = {
    {29, "730", "/se"},   {1028, "730", "/tw"}, {1029, "750", "/cz"}, {1031, "730", "/de"},
    {1033, "730", ""},    {1036, "730", "/fr"}, {1040, "730", "/it"}, {1041, "730", "/jp"},
    {1042, "730", "/kr"}, {1043, "730", "/nl"}, {1045, "730", "/pl"}, {1046, "730", "/br"},
    {1049, "730", "/ru"}, {1055, "730", "/tr"}, {2052, "730", "/cn"}, {3082, "730", "/es"},
};

// Every id of one language with its whole entry, terminator included. Empty entries count as absent.
Table TableOf(WORD language) {
  Table table;
  for (uint32_t block = 1; block <= kLastId / 16; ++block) {
    const HRSRC found = FindResourceExW(LoadedModule(), MAKEINTRESOURCEW(6), MAKEINTRESOURCEW(block), language);
    if (found == nullptr) continue;
    const auto* units = static_cast<const wchar_t*>(LockResource(LoadResource(LoadedModule(), found)));
    for (uint32_t i = 0; i < 16; ++i) {
      const size_t length = *units++;
      if (length > 0) table[(block - 1) * 16 + i] = WideString(units, length);
      units += length;
    }
  }
  return table;
}

std::vector<WideString> TagsOf(const WideString& text) {
  std::vector<WideString> tags;
  for (size_t end = 0, at = text.find(L'<'); at != WideString::npos; at = text.find(L'<', end)) {
    end = text.find(L'>', at);
    if (end == WideString::npos) return {text};
    tags.push_back(text.substr(at, ++end - at));
  }
  return tags;
}

auto LeadingBlanks(const WideString& text) {
  return text.find_first_not_of(L' ');
}

std::set<uint32_t> DocumentedIds() {
  std::set<uint32_t> ids;
  for (uint32_t id = 1; id <= 94; ++id) ids.insert(id);
  for (const uint32_t absent : {9, 15, 27, 29, 37, 86}) ids.erase(absent);
  for (uint32_t id = 40; id <= 50; ++id) ids.erase(id);
  for (uint32_t id = 66; id <= 70; ++id) ids.erase(id);
  return ids;
}

class LocaleScope {
 public:
  explicit LocaleScope(LCID locale) : before(GetThreadLocale()) { SetThreadLocale(locale); }
  ~LocaleScope() { SetThreadLocale(before); }
  LocaleScope(const LocaleScope&) = delete;
  LocaleScope& operator=(const LocaleScope&) = delete;

 private:
  LCID before;
};

}  // namespace

TEST(StringTables, EveryLanguageHasTheSameIdsTagsPlaceholdersAndBlanks) {
  const Table english = TableOf(1033);
  for (const LanguageRow& row : kLanguages) {
    const Table table = TableOf(row.language);
    std::set<uint32_t> ids;
    for (const auto& [id, text] : table) {
      SCOPED_TRACE(std::to_string(row.language) + ": " + std::to_string(id) + " " + ToUtf8(text));
      ids.insert(id);
      ASSERT_TRUE(english.contains(id));
      EXPECT_EQ(text.find(L'\0'), text.size() - 1) << "one terminator, counted in the length";
      EXPECT_EQ(text.find(L'\xFFFD'), WideString::npos);
      if (row.language != 1033 && id != 71) EXPECT_NE(text, english.at(id)) << "translated";
      const WideString& original = english.at(id);
      EXPECT_EQ(std::count(text.begin(), text.end(), L'^'), std::count(original.begin(), original.end(), L'^'));
      EXPECT_EQ(TagsOf(text), TagsOf(original));
      EXPECT_EQ(LeadingBlanks(text), LeadingBlanks(original));
      for (const wchar_t* const name : {L"Corva", L"Lumen", L"Player", L"®", L"Real Player 11", L"Corva Labs"}) {
        const bool named = original.find(name) != WideString::npos;
        // "Player Download Center" is no product, so a language may have a word of its own for it.
        if (named && id != 60) EXPECT_NE(text.find(name), WideString::npos) << ToUtf8(name);
      }
    }
    EXPECT_EQ(ids, DocumentedIds()) << row.language;
    EXPECT_EQ(ToUtf8(table.at(71).c_str()), row.width);
    EXPECT_EQ(ToUtf8(table.at(88).c_str()),
              std::string("https://update.corva.example") + row.addressSegment + "/lumenplayer/update/");
  }
}

TEST(StringTables, TheUnclosedTagOf65AndTheDoubleBlanksOf52AreDeliberate) {
  const Table english = TableOf(1033);
  EXPECT_EQ(TagsOf(english.at(65)), std::vector<WideString>{L"<br/<br/>"});
  EXPECT_STREQ(ToUtf8(english.at(52).c_str()).c_str(), "Fatal error '^'.  No further information is available.");
}

TEST_F(ModuleFixture, TheThreadsLocaleChoosesTheLanguageAndAnUnknownOneGivesEnglish) {
  host.resourceModule = LoadedModule();
  const struct {
    LCID locale;
    uint32_t width;
    const char* close;
  } rows[] = {{1041, 730, "閉じる"}, {1029, 750, "ZAVŘÍT"}, {2052, 730, "关闭"},
              {1028, 730, "關閉"},   {3082, 730, "CERRAR"}, {1035, 730, "CLOSE"}};
  for (const auto& row : rows) {
    const LocaleScope scope(row.locale);
    MString text;
    shim->LoadString(&text, 35, 1);
    EXPECT_EQ(Text(text), row.close) << row.locale;
    EXPECT_EQ(text.Length(), static_cast<int32_t>(FromUtf8(row.close).size())) << "the terminator is not shown";
    shim->LoadString(&text, 71, 1);
    EXPECT_EQ(text.ParseDigits(), row.width) << row.locale;
  }
  EXPECT_EQ(host.events, Lines{});
}

// The window's way to a text: the host, which asks the shim, which asks the host for what the tables lack.
TEST(ReferenceHostTexts, ComeFromTheModuleFirst) {
  ReferenceHost host{product_kind::ActiveX};
  host.resourceModule = LoadedModule();
  ASSERT_NE(StartModule(&host), nullptr);
  const LocaleScope scope(1033);
  const std::pair<uint32_t, const char*> rows[] = {{35, "CLOSE"}, {15, "^%"}, {9, "MISSING LOCALIZATION"}};
  for (const auto& [id, shown] : rows) {
    MString text;
    host.LoadStringFallback(&text, id, 1);
    EXPECT_EQ(Text(text), shown) << id;
  }
  host.shim->Destroy(1);
}
