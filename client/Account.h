// An account: commands with the result that each must have, run in order over one broker object.
//
//     # a comment; a heading is shown as it stands
//     == Writing
//     S_OK            The player saves a shared object :: write "%APPDATA%\...\a.sol" --text hello
//     E_ACCESSDENIED  It may not write a program       :: write "%APPDATA%\...\a.exe" --text hello
//
// Words are parted by blanks; double quotes keep blanks together, and a backslash is an ordinary character.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct AccountStep {
  int line = 0;
  std::string heading;  // not empty: nothing is run
  int32_t expected = 0;
  std::string description;
  std::vector<std::string> words;  // the command and its arguments
};

struct ParsedAccount {
  std::vector<AccountStep> steps;
  std::string error;  // empty when all lines were understood
};

[[nodiscard]] ParsedAccount ParseAccount(std::string_view text);
// The words of a line; nothing when a quote is left open.
[[nodiscard]] std::optional<std::vector<std::string>> SplitWords(std::string_view line);
