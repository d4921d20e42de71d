#include "engine/SystemConfigFile.h"

#include <algorithm>
#include <cstring>

namespace {

// Bytes are compared as signed values, so those of 128 and up count as blanks at either end of a key or value.
bool IsBlank(char c) {
  return static_cast<signed char>(c) <= 32;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

SystemConfigFile::State JudgeMark(std::span<const char> content) {
  using State = SystemConfigFile::State;
  const auto begins = [content](std::string_view mark) {
    return std::memcmp(content.data(), mark.data(), mark.size()) == 0;
  };
  if (content.size() < 4) return State::Absent;
  if (begins("\xEF\xBB\xBF")) return State::Utf8Mark;
  if (begins("\xFF\xFE") || begins("\xFE\xFF")) return State::Utf16Mark;
  return State::Plain;
}

}  // namespace

SystemConfigFile::SystemConfigFile(std::span<const char> content) : state(JudgeMark(content)) {
  if (state == State::Absent || state == State::Utf16Mark) return;
  std::string_view rest(content.data(), content.size());
  if (state == State::Utf8Mark) rest.remove_prefix(3);
  // CR LF gives an empty line between the two, which is ignored like any line without "=".
  while (!rest.empty()) {
    const size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
    TakeLine(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

void SystemConfigFile::TakeLine(std::string_view line) {
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos) return;
  const std::string_view key = Trim(line.substr(0, equals));
  const std::string_view value = Trim(line.substr(equals + 1));
  if (!key.empty() && !value.empty()) entries.insert_or_assign(std::string(key), std::string(value));
}

std::string_view SystemConfigFile::Lookup(std::string_view key) const {
  const auto entry = entries.find(key);
  return entry == entries.end() ? std::string_view() : entry->second;
}

bool IsTrueSetting(std::string_view value) {
  std::string lower(value);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  if (lower == "true" || lower == "t" || lower == "yes" || lower == "y") return true;
  // A decimal number is non-zero when any of its leading digits is.
  size_t at = lower.find_first_not_of(" \t\n\v\f\r");
  if (at == std::string::npos) return false;
  if (lower[at] == '-' || lower[at] == '+') ++at;
  for (; at < lower.size() && lower[at] >= '0' && lower[at] <= '9'; ++at) {
    if (lower[at] != '0') return true;
  }
  return false;
}
