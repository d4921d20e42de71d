// The words of the add-on commands that need no broker: what their arguments must be, and how progress looks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// What is wrong with a product's name or with an address, or nothing. Which hosts may be asked is the broker's to say.
[[nodiscard]] std::string CheckProductName(std::string_view name);
[[nodiscard]] std::string CheckDownloadUrl(std::string_view url);
// Where the digest of a package lies when nobody says: beside it, as "digest.s".
[[nodiscard]] std::string DigestUrlBeside(std::string_view packageUrl);
// "package  [##########----------]  50%  1.0 MiB of 2.0 MiB". A piece of no bytes is complete.
[[nodiscard]] std::string ProgressLine(std::string_view label, uint32_t done, uint32_t total);
// What a result code of storing means.
[[nodiscard]] std::string_view DescribeStoreResult(uint32_t code);
// "3.1.4.159" of the two words that the broker gives.
[[nodiscard]] std::string VersionText(uint32_t mostSignificant, uint32_t leastSignificant);
