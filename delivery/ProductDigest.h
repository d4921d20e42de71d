// Whether a product's files are those that its signer listed. Asked each time before a product is used, so a file that
// was changed since is found out.
#pragma once

#include <vector>

#include "delivery/ProductStore.h"

// Reads and verifies the product's digest. True with its text, terminated, in `text`. `name` is taken as valid.
[[nodiscard]] bool LoadProductDigest(const wchar_t* name, std::vector<char>& text, const wchar_t* overridePath,
                                     ProductFolder folder);
// True when the digest is signed, lists the executable, and its hash is that of the listed files' content. Names are
// not part of the hash, and a missing file counts as an empty one. Memory does not grow with the files.
[[nodiscard]] bool VerifyProductDigest(const wchar_t* name, const wchar_t* overridePath, ProductFolder folder);
