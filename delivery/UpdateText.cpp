#include "delivery/UpdateText.h"

namespace {

constexpr auto npos = std::string_view::npos;

// Builds anew rather than in place: the text may be a megabyte of entities.
void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  std::string replaced;
  size_t done = 0;
  for (size_t at = text.find(from); at != npos; at = text.find(from, done)) {
    replaced.append(text, done, at - done).append(to);
    done = at + from.size();
  }
  text = replaced.append(text, done);
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
  constexpr std::string_view kTag = "<update";
  constexpr std::string_view kAttribute = "version";
  // The text comes through a sandbox, so it is gone through once, whatever it holds: what begins within a tag, or
  // within the rest of one, finds nothing that this has not found.
  for (size_t open = text.find(kTag); open != npos; open = text.find(kTag, open)) {
    const size_t close = text.find('>', open);
    const std::string_view tag = text.substr(open, close - open);
    const size_t attribute = tag.find(kAttribute);
    const auto version = attribute == npos ? std::nullopt : FirstQuoted(tag.substr(attribute));
    if (version || close == npos) return version;
    open = close;
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
