// What a client may know of an installed add-on product: its version, and whether it runs.
#pragma once

#include <cstdint>
#include <optional>

struct ProductVersion {
  uint32_t mostSignificant = 0;   // major and minor, 16 bits each
  uint32_t leastSignificant = 0;  // build and revision
};

// The version of the user's product, from its executable's resource. Nothing when the digest is refused: what was
// changed has no version.
[[nodiscard]] std::optional<ProductVersion> ReadProductVersion(const wchar_t* name, const wchar_t* overridePath);
// Whether a process holds the product's mutex, which a product does for as long as it runs. Names that differ in case
// only mean the same product. A probe that finds none holds the mutex itself for an instant; the digest is not looked
// at.
[[nodiscard]] bool IsProductRunning(const wchar_t* name);
