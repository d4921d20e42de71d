#include "delivery/UpdateText.h"

namespace {

constexpr auto npos = std::string_view::npos;

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  for (size_t at = text.find(from); at != npos; at = text.find(from, at + to.size())) text.replace(at, from.size(), to);
}

// The text between the first two quote marks.
std::optional<std::string_view> FirstQuoted(std::string_view text) {
  const size_t open = text.find('"');
  if (open == npos) return std::nullopt;
  const size_t close = text.find('"', open + 1);
  if (close == npos) return std::nullopt;
  return text.substr(open + 1, close - open - 1);
}

}  // namespace

std::optional<std::string_view> ExtractMetaBlock(std::string_view text) {
  for (size_t tag = text.find('<'); tag != npos; tag = text.find('<', tag + 1)) {
    if (!text.substr(tag).starts_with("<meta")) continue;
    const size_t begin = text.find('>', tag);
    if (begin == npos) return std::nullopt;
    const size_t end = text.find("</meta", begin + 1);
    if (end == npos) return std::nullopt;
    return text.substr(begin + 1, end - begin - 1);
  }
  return std::nullopt;
}

std::optional<std::string_view> ExtractUpdateVersion(std::string_view text) {
  for (size_t open = text.find('<'); open != npos; open = text.find('<', open + 1)) {
    const std::string_view tag = text.substr(open + 1, text.find('>', open) - open - 1);
    if (!tag.starts_with("update")) continue;
    for (size_t v = tag.find('v'); v != npos; v = tag.find('v', v + 1)) {
      if (!tag.substr(v).starts_with("version")) continue;
      if (const auto version = FirstQuoted(tag.substr(v))) return version;
    }
  }
  return std::nullopt;
}

std::string DecodeMetaBlock(std::string_view block) {
  std::string text(block);
  ReplaceAll(text, "\"", "'");
  ReplaceAll(text, "&quot;", "\"");
  ReplaceAll(text, "&apos;", "'");
  ReplaceAll(text, "&nbsp;", " ");
  return text;
}
