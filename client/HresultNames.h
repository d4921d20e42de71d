// Names of the result codes that the broker answers with, for people.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// "0x80070005 E_ACCESSDENIED (access denied)"; a code without a name is shown alone, a platform error with its number.
[[nodiscard]] std::string DescribeResult(int32_t result);
// The name alone, or an empty text.
[[nodiscard]] std::string_view NameOfResult(int32_t result);
// A code written as a name ("E_FAIL"), in hexadecimal with 0x, or in decimal.
[[nodiscard]] std::optional<int32_t> ParseResult(std::string_view text);
// "0x80070005"
[[nodiscard]] std::string HexOfResult(int32_t result);
