#include "client/Arguments.h"

#include <algorithm>
#include <charconv>

Arguments::Arguments(const std::vector<std::string>& words, const std::vector<OptionSpec>& options) {
  bool optionsEnded = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (optionsEnded || word.size() < 2 || word[0] != '-') {
      positional_.push_back(word);
      continue;
    }
    if (word == "--") {
      optionsEnded = true;
      continue;
    }
    const auto option =
        std::find_if(options.begin(), options.end(), [&](const OptionSpec& o) { return o.name == word; });
    if (option == options.end()) {
      error_ = "unknown option " + word;
      return;
    }
    if (!option->takesValue) {
      values_[word] = "";
    } else if (++i < words.size()) {
      values_[word] = words[i];
    } else {
      error_ = word + " wants a value";
      return;
    }
  }
}

std::optional<std::string> Arguments::Value(std::string_view option) const {
  const auto value = values_.find(option);
  if (value == values_.end()) return std::nullopt;
  return value->second;
}

std::optional<uint32_t> Arguments::Number(std::string_view option, uint32_t fallback) const {
  const std::optional<std::string> text = Value(option);
  if (!text) return fallback;
  uint32_t number = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
  if (error != std::errc() || end != text->data() + text->size()) return std::nullopt;
  return number;
}

bool Arguments::AreNumbers(std::initializer_list<std::string_view> options) const {
  return std::all_of(options.begin(), options.end(), [this](std::string_view o) { return Number(o, 0).has_value(); });
}

std::optional<std::vector<uint8_t>> ParseHexBytes(std::string_view text) {
  std::vector<uint8_t> bytes;
  std::string digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](char c) { return c != ' '; });
  if (digits.size() % 2 != 0) return std::nullopt;
  for (size_t i = 0; i < digits.size(); i += 2) {
    uint8_t byte = 0;
    const auto [end, error] = std::from_chars(digits.data() + i, digits.data() + i + 2, byte, 16);
    if (error != std::errc() || end != digits.data() + i + 2) return std::nullopt;
    bytes.push_back(byte);
  }
  return bytes;
}
