// What a product's digest lists: its files, and the hash over them. The text looks like an XML signature and is read
// line by line; what is not one of two exact line forms means nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "engine/WideText.h"

class DigestManifest {
 public:
  // The files' names, each terminated, the whole ended by an empty one; null when there is none.
  std::unique_ptr<char[]> references;
  uint64_t capacity = 0;    // bytes allocated
  uint64_t used = 0;        // bytes of the names with their ends, without the last one
  std::string digestValue;  // as long as its line: the text is signed, but its author may err

  // Appends a name. Throws std::bad_alloc.
  void AddReference(std::string_view name);
  // The first name, or null; and the one behind `name`, or null.
  [[nodiscard]] const char* First() const;
  [[nodiscard]] static const char* Next(const char* name);
};

// Reads a terminated text. A line ends at its LF and needs a CR before it; bare LFs give an empty manifest. Of several
// values the last one counts. Throws std::bad_alloc.
[[nodiscard]] DigestManifest ParseDigestManifest(const char* text);

// Whether `reference` is taken for the product's executable: it is the beginning of `executableName` or all of it. That
// the beginning is enough is what the signers of products have been given.
[[nodiscard]] bool NamesExecutable(WideView reference, WideView executableName);
