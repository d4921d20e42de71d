// The words of one command line: options with a value, options without, and the rest in order. All text is UTF-8.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a command understands.
struct OptionSpec {
  std::string_view name;  // with its dashes
  bool takesValue = false;
};

class Arguments {
 public:
  // Reads `words` against `options`. On a word that fits nothing, Error() tells which. "--" ends the options.
  Arguments(const std::vector<std::string>& words, const std::vector<OptionSpec>& options);

  [[nodiscard]] const std::string& Error() const { return error_; }
  [[nodiscard]] const std::vector<std::string>& Positional() const { return positional_; }
  [[nodiscard]] bool Has(std::string_view option) const { return values_.find(option) != values_.end(); }
  // The option's value, or nothing.
  [[nodiscard]] std::optional<std::string> Value(std::string_view option) const;
  // The option's value as a number, `fallback` when it is not given, nothing when it is no number.
  [[nodiscard]] std::optional<uint32_t> Number(std::string_view option, uint32_t fallback) const;
  // Whether each of these is a number or not given.
  [[nodiscard]] bool AreNumbers(std::initializer_list<std::string_view> options) const;

 private:
  std::map<std::string, std::string, std::less<>> values_;
  std::vector<std::string> positional_;
  std::string error_;
};

// Bytes written as pairs of hexadecimal digits, blanks between them allowed; nothing when it is not that.
[[nodiscard]] std::optional<std::vector<uint8_t>> ParseHexBytes(std::string_view text);
