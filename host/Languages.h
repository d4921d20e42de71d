// The languages of the module's string tables, by the words a command line may use.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// The platform's identifier for a tag such as "de" or "pt-BR", in either case; nothing for a language without a table.
[[nodiscard]] std::optional<uint32_t> LanguageOfTag(std::string_view tag);
// The same for a tag or a number in decimal: "de" and "1031" alike.
[[nodiscard]] std::optional<uint32_t> LanguageOfWord(std::string_view word);
// The table that serves a user whose language is `language`, a platform identifier with or without a country; English
// for a language that has none.
[[nodiscard]] uint32_t TableForUser(uint32_t language);
// The locale of the people who read a table. Only Swedish is another number, as its table has no country.
[[nodiscard]] uint32_t LocaleOfTable(uint32_t table);
