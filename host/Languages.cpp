#include "host/Languages.h"

#include <algorithm>
#include <iterator>

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
