#include "client/Account.h"

#include <algorithm>

#include "client/HresultNames.h"

namespace {

std::string_view Trim(std::string_view text) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
}

// One line that is neither empty nor a comment. False when it cannot be understood.
bool ParseLine(std::string_view line, AccountStep& step) {
  if (line.starts_with("==")) {
    step.heading = Trim(line.substr(2));
    return !step.heading.empty();
  }
  const size_t parting = line.find(" :: ");
  const size_t blank = line.find_first_of(" \t");
  if (parting == std::string_view::npos || blank >= parting) return false;
  const std::optional<int32_t> expected = ParseResult(line.substr(0, blank));
  const auto words = SplitWords(line.substr(parting + 4));
  if (!expected || !words || words->empty()) return false;
  step.expected = *expected;
  step.description = Trim(line.substr(blank, parting - blank));
  step.words = *words;
  return true;
}

}  // namespace

std::optional<std::vector<std::string>> SplitWords(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  bool quoted = false;
  bool begun = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
      begun = true;
    } else if ((c == ' ' || c == '\t') && !quoted) {
      if (begun) words.push_back(word);
      word.clear();
      begun = false;
    } else {
      word.push_back(c);
      begun = true;
    }
  }
  if (begun) words.push_back(word);
  if (quoted) return std::nullopt;
  return words;
}

ParsedAccount ParseAccount(std::string_view text) {
  ParsedAccount account;
  for (int number = 1; !text.empty(); ++number) {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = Trim(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.front() == '#') continue;
    AccountStep step;
    step.line = number;
    if (!ParseLine(line, step)) {
      account.error = "line " + std::to_string(number) + ": RESULT DESCRIPTION :: COMMAND expected";
      return account;
    }
    account.steps.push_back(std::move(step));
  }
  return account;
}
