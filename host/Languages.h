// The languages of the module's string tables, by the words a command line may use.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// The platform's identifier for a tag such as "de" or "pt-BR", in either case; nothing for a language without a table.
[[nodiscard]] std::optional<uint32_t> LanguageOfTag(std::string_view tag);
