// Reads what little the module needs of the server's update text. It looks like XML and is never parsed as such: the
// server's texts are old and loose, and these scans are what its authors write for.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// What stands between the first "<meta ...>" and the "</meta" after it, inner tags kept as text.
[[nodiscard]] std::optional<std::string_view> ExtractMetaBlock(std::string_view text);
// The quoted version of the first "<update ... version=...>".
[[nodiscard]] std::optional<std::string_view> ExtractUpdateVersion(std::string_view text);
// The block as the update dialog shows it. Plain double quotes become single ones while those written as entities come
// out double, because the replacements run in that order.
[[nodiscard]] std::string DecodeMetaBlock(std::string_view block);
// Whether the user has turned this description's version down: the rejected text occurs anywhere in it.
[[nodiscard]] inline bool MentionsRejected(std::string_view description, std::string_view rejected) {
  return description.find(rejected) != std::string_view::npos;
}
