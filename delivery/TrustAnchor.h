// The certificate that signed messages must lead up to: the built-in one, or a file that the host names in its place.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

constexpr size_t kBuiltInAnchorSize = 999;
// The DER of resources/trust-anchor.der, put in at build time.
extern const uint8_t kBuiltInAnchor[kBuiltInAnchorSize];

// A fresh copy of the built-in anchor. False when there is no memory for it.
[[nodiscard]] bool LoadBuiltInAnchor(std::vector<uint8_t>& buffer);
// The whole file. False when it cannot be read whole; `buffer` is then empty.
[[nodiscard]] bool LoadFileToBuffer(const wchar_t* path, std::vector<uint8_t>& buffer);
// The file when `overridePath` is neither null nor empty, else the built-in anchor.
[[nodiscard]] bool LoadAnchor(const wchar_t* overridePath, std::vector<uint8_t>& buffer);
