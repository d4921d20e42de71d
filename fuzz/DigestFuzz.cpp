// A signed but broken digest, and a package of the same bytes: nothing is read or written outside what is owned.
#include <cstring>
#include <string>

#include "delivery/DigestManifest.h"
#include "delivery/PackageContent.h"
#include "fuzz/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const DigestManifest manifest = ParseDigestManifest(text.c_str());
  uint64_t used = 0;
  for (const char* name = manifest.First(); name != nullptr; name = DigestManifest::Next(name)) {
    Require(text.find(name) != std::string::npos && std::strchr(name, '\n') == nullptr);
    used += std::strlen(name) + 1;
  }
  Require(used == manifest.used && (used == 0 || used < manifest.capacity));
  Require(text.find(manifest.digestValue) != std::string::npos);
  UnpackedFile file;
  if (UnpackPackage({data, size}, file) == StoreResult::Stored) Require(file.size < 10 * size);
  return 0;
}
