#include "host/Languages.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace {

struct LanguageRow {
  std::string_view tag;
  uint32_t id;
};
// Swedish alone has a table for the language as such, not for a country.
constexpr LanguageRow kLanguages[] = {
    {"cs", 1029}, {"de", 1031}, {"en", 1033},    {"es", 3082},    {"fr", 1036},    {"it", 1040},
    {"ja", 1041}, {"ko", 1042}, {"nl", 1043},    {"pl", 1045},    {"pt-BR", 1046}, {"ru", 1049},
    {"sv", 29},   {"tr", 1055}, {"zh-CN", 2052}, {"zh-TW", 1028},
};

constexpr uint32_t kEnglish = 1033;
constexpr uint32_t kSwedish = 29, kSwedishInSweden = 1053;
constexpr uint32_t kChinese = 4, kSimplifiedChinese = 2052, kTraditionalChinese = 1028;
constexpr uint32_t kSingapore = 4100;

// An identifier's low ten bits are the language, the rest the country.
uint32_t WithoutCountry(uint32_t language) {
  return language & 0x3FF;
}

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

}  // namespace

std::optional<uint32_t> LanguageOfTag(std::string_view tag) {
  const auto row = std::find_if(std::begin(kLanguages), std::end(kLanguages), [&](const LanguageRow& candidate) {
    return std::equal(candidate.tag.begin(), candidate.tag.end(), tag.begin(), tag.end(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
  });
  if (row == std::end(kLanguages)) return std::nullopt;
  return row->id;
}

std::optional<uint32_t> LanguageOfWord(std::string_view word) {
  for (const LanguageRow& row : kLanguages) {
    if (word == std::to_string(row.id)) return row.id;
  }
  return LanguageOfTag(word);
}

uint32_t TableForUser(uint32_t language) {
  const uint32_t plain = WithoutCountry(language);
  if (plain == kChinese) {
    const bool simplified = language == kSimplifiedChinese || language == kSingapore || language == kChinese;
    return simplified ? kSimplifiedChinese : kTraditionalChinese;
  }
  for (const LanguageRow& row : kLanguages) {
    if (WithoutCountry(row.id) == plain) return row.id;
  }
  return kEnglish;
}

uint32_t LocaleOfTable(uint32_t table) {
  return table == kSwedish ? kSwedishInSweden : table;
}
