#include "install/VersionNumbers.h"

namespace {

// This build: 28.0.0.126. They change together with InstallEngine::version and the name "28.0" in Inventory.cpp.
constexpr uint32_t kMajor = 28;
constexpr uint32_t kRevision = 126;

}  // namespace

VersionNumbers ParseVersion(const MString& text) {
  VersionNumbers numbers = {};
  MString rest = text;
  for (uint32_t& number : numbers) {
    number = rest.TakeUntil(".").ParseDigits();
    (void)rest.Take(1);
  }
  return numbers;
}

int32_t CompareVersionStrings(const MString& a, const MString& b) {
  const VersionNumbers left = ParseVersion(a);
  const VersionNumbers right = ParseVersion(b);
  if (left == right) return 0;
  return left > right ? 1 : -1;
}

InstalledState StateOfVersion(const MString& installed) {
  const auto [major, minor, build, revision] = ParseVersion(installed);
  if (major > kMajor) return InstalledState::Newer;
  if (major < kMajor) return InstalledState::Older;
  // This build's own pair is 0.0, so any other is from a later one.
  if (minor != 0 || build != 0) return InstalledState::Newer;
  if (revision > kRevision) return InstalledState::Newer;
  return revision == kRevision ? InstalledState::Same : InstalledState::Older;
}

bool IsSafeRevision(uint32_t lowestSafe) {
  return lowestSafe <= kRevision;
}
