#include "delivery/DigestManifest.h"

#include <algorithm>

namespace {

constexpr uint64_t kFirstCapacity = 1024;
constexpr std::string_view kReferenceBegin = "<Reference URI=\"";
constexpr std::string_view kReferenceEnd = "\" />\r";
constexpr std::string_view kValueBegin = "<DigestValue>";
constexpr std::string_view kValueEnd = "</DigestValue>";

// What stands between `begin` and the last `fromEnd` bytes of the line, if those begin with `end` and it is not empty.
std::string_view Between(std::string_view line, std::string_view begin, std::string_view end, size_t fromEnd) {
  if (line.size() <= begin.size() + fromEnd) return {};
  const size_t at = line.size() - fromEnd;
  return line.substr(at).starts_with(end) ? line.substr(begin.size(), at - begin.size()) : std::string_view();
}

void ReadLine(std::string_view line, DigestManifest& manifest) {
  if (line.starts_with(kReferenceBegin)) {
    const std::string_view name = Between(line, kReferenceBegin, kReferenceEnd, kReferenceEnd.size());
    if (!name.empty()) manifest.AddReference(name);
  } else if (line.starts_with(kValueBegin)) {
    // One byte stands behind the closing text, a CR as it should be; it is not looked at.
    const std::string_view value = Between(line, kValueBegin, kValueEnd, kValueEnd.size() + 1);
    if (!value.empty()) manifest.digestValue = value;
  }
}

}  // namespace

void DigestManifest::AddReference(std::string_view name) {
  const uint64_t needed = used + name.size() + 2;
  if (needed > capacity) {
    uint64_t grown = capacity == 0 ? kFirstCapacity : capacity * 2;
    if (grown < needed) grown = needed * 2;
    auto larger = std::make_unique<char[]>(grown);
    std::copy_n(references.get(), used, larger.get());
    references = std::move(larger);
    capacity = grown;
  }
  std::copy(name.begin(), name.end(), references.get() + used);
  used += name.size() + 1;
  references[used - 1] = 0;
  references[used] = 0;
}

const char* DigestManifest::First() const {
  return used == 0 ? nullptr : references.get();
}

const char* DigestManifest::Next(const char* name) {
  const char* const next = name + std::string_view(name).size() + 1;
  return *next == 0 ? nullptr : next;
}

DigestManifest ParseDigestManifest(const char* text) {
  DigestManifest manifest;
  for (std::string_view rest(text); !rest.empty();) {
    const size_t end = std::min(rest.find('\n'), rest.size());
    ReadLine(rest.substr(0, end), manifest);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return manifest;
}

bool NamesExecutable(WideView reference, WideView executableName) {
  return executableName.starts_with(reference);
}
