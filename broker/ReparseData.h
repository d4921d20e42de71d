// Reads the platform's reparse data. The bytes come from a file system that a hostile client may have written to, so
// every offset and length in them is checked against the bytes that are there.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "engine/WideText.h"

// Do the data say that they are a symbolic link's or a mount point's?
[[nodiscard]] bool IsLinkTag(std::span<const uint8_t> data);
// The substitute name of a symbolic link or a mount point; nothing for any other tag or for data that does not add up.
[[nodiscard]] std::optional<WideString> ParseReparseTarget(std::span<const uint8_t> data);
