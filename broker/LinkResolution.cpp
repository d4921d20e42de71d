// The walk for links of BrokerPathPolicy.
#include <algorithm>
#include <vector>

#include "broker/BrokerPathPolicy.h"
#include "broker/ReparseData.h"

namespace {

constexpr WideView kGlobalRoot = L"\\\\?\\GLOBALROOT\\";
constexpr size_t kMostEarlierTargets = 16;
// The platform gives up after 63 reparse points.
constexpr int kMostLinksOpened = 64;

bool IsSlash(wchar_t unit) {
  return unit == L'\\' || unit == L'/';
}

size_t LastSlash(WideView path) {
  size_t at = path.size();
  while (at > 0 && !IsSlash(path[at - 1])) --at;
  return at == 0 ? WideView::npos : at - 1;
}

WideString WithoutObjectPrefix(WideString target) {
  if (target.starts_with(L"\\??\\")) target.erase(0, 4);
  return target;
}

}  // namespace

bool BrokerPathPolicy::IsUncServerRoot(WideView path) {
  if (path.size() < 3 || !IsSlash(path[0]) || !IsSlash(path[1]) || IsSlash(path[2])) return false;
  const size_t slash = path.find_first_of(L"\\/", 2);
  return slash == WideView::npos || slash + 1 == path.size();
}

bool BrokerPathPolicy::ResolveOneLink(WideView path, std::optional<WideString>& targetOut) {
  targetOut.reset();
  const std::optional<WideString> beginning = operations.UpperCase(path.substr(0, kGlobalRoot.size()));
  if (!beginning) return true;
  if (*beginning == kGlobalRoot) path.remove_prefix(kGlobalRoot.size() - 1);
  if (std::optional<WideString> target = operations.ObjectLinkTarget(path)) {
    targetOut = WithoutObjectPrefix(std::move(*target));
    return true;
  }

  // The file's own place first: nothing may be written through a link that stands there, and nothing need stand there.
  // Then each directory above it, of which every one must answer; only the topmost is asked for with its slash.
  const size_t drive = path.size() >= 2 && path[1] == L':' ? 2 : 0;
  for (size_t end = path.size();;) {
    const WideView place = path.substr(0, end);
    const std::optional<uint32_t> attributes = operations.Attributes(place);
    if (!attributes && end != path.size()) return IsUncServerRoot(place);
    if (attributes && (*attributes & kAttributeReparsePoint) != 0) return ReadLink(place, path.substr(end), targetOut);
    const size_t slash = LastSlash(place);
    if (slash == WideView::npos || slash < drive) return true;
    const size_t above = slash == drive ? drive + 1 : slash;
    if (above >= end) return true;
    end = above;
  }
}

// A link whose data cannot be read could lead anywhere, so it fails the walk; any other kind of reparse point is no
// link.
bool BrokerPathPolicy::ReadLink(WideView place, WideView remainder, std::optional<WideString>& targetOut) {
  const std::optional<std::vector<uint8_t>> data = operations.ReadReparsePoint(place);
  if (!data) return false;
  if (std::optional<WideString> target = ParseReparseTarget(*data)) {
    *target += remainder;
    targetOut = WithoutObjectPrefix(std::move(*target));
  }
  return true;
}

bool BrokerPathPolicy::ResolveAllLinks(WideView path, std::optional<WideString>& targetOut) {
  targetOut.reset();
  WideString current(path);
  std::vector<WideString> history;
  std::optional<WideString> found;
  for (;;) {
    std::optional<WideString> target;
    if (!ResolveOneLink(current, target)) return false;
    if (!target) {
      targetOut = std::move(found);
      return true;
    }
    // A cycle leads nowhere when it is opened, so the path it had goes on to be judged by the roots.
    if (*target == current || std::find(history.begin(), history.end(), *target) != history.end()) return true;
    // So does the path behind too long a chain, but the platform follows more links than this: the chain must stay
    // inside.
    if (history.size() == kMostEarlierTargets) return LongChainStaysInside(std::move(*target));
    history.push_back(std::move(current));
    current = *target;
    found = std::move(target);
  }
}

// Follows the rest of a chain as far as the platform would, to see that its end lies under a root that may be written.
bool BrokerPathPolicy::LongChainStaysInside(WideString current) {
  for (int link = 0; link < kMostLinksOpened; ++link) {
    std::optional<WideString> target;
    if (!ResolveOneLink(current, target)) return false;
    if (!target) {
      const std::optional<WideString> end = SanitizePath(current, true);
      return end && FillWritableRoots() && MatchRoot(*end) != RootMatch::None;
    }
    current = std::move(*target);
  }
  return true;  // opening it fails
}
