// Where an add-on product lies, and how its two pieces get there. Only what a signature vouches for is ever written as
// the product's executable. Blocks on the disk; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "delivery/PackageContent.h"
#include "engine/WideText.h"

// The user's own products, or those of the whole machine.
enum class ProductFolder : uint32_t { PerUser = 0, ProgramFiles = 1 };

// The product's executable; its digest and other files stand beside it. `name` is taken as valid. Nothing when the
// folder cannot be found.
[[nodiscard]] std::optional<WideString> ProductExecutablePath(const wchar_t* name, ProductFolder folder);
// The digest beside it.
[[nodiscard]] std::optional<WideString> ProductDigestPath(const wchar_t* name, ProductFolder folder);

// Checks a signed package against the anchor (the file `overridePath`, or the built-in one) and writes the executable
// in it to the user's product folder, making the folders. Unless Stored, no file is left there.
[[nodiscard]] StoreResult InstallSignedPackage(const wchar_t* name, std::span<const uint8_t> data,
                                               const wchar_t* overridePath);
// Writes a digest as it came, beside the executable that must be there already; its signature is checked each time it
// is used. Stored, NotWritten, or NotTrusted for a bad name, which is the other code than a package gets.
[[nodiscard]] StoreResult StoreProductDigest(const wchar_t* name, std::span<const uint8_t> data);
