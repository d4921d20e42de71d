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

// Win32 calls drop dots and blanks at a name's end, and everything behind a null, where the kernel that follows a link
// keeps them. Asked about such a place they would tell of another one, behind which a link could hide.
bool IsAskedAboutByItsOwnName(WideView place) {
  return place.empty() || (place.back() != L'.' && place.back() != L' ');
}

// Takes over a target without the prefix of the object manager; false when it cannot be asked about.
bool SetTarget(WideString&& target, std::optional<WideString>& targetOut) {
  if (target.find(L'\0') != WideString::npos) return false;
  if (target.starts_with(L"\\??\\")) target.erase(0, 4);
  targetOut = std::move(target);
  return true;
}

}  // namespace

bool BrokerPathPolicy::IsUncServerRoot(WideView path) {
  if (path.size() < 3 || !IsSlash(path[0]) || !IsSlash(path[1]) || IsSlash(path[2])) return false;
  const size_t slash = path.find_first_of(L"\\/", 2);
  return slash == WideView::npos || slash + 1 == path.size();
}

bool BrokerPathPolicy::ResolveOneLink(WideView path, std::optional<WideString>& targetOut) {
  targetOut.reset();
  const size_t compared = path.starts_with(L"\\\\?\\") ? kGlobalRoot.size() : 0;
  const std::optional<WideString> beginning = operations.UpperCase(path.substr(0, compared));
  if (!beginning) return true;
  if (*beginning == kGlobalRoot) path.remove_prefix(kGlobalRoot.size() - 1);
  if (std::optional<WideString> target = operations.ObjectLinkTarget(path)) {
    return SetTarget(std::move(*target), targetOut);
  }

  // The file's own place first: nothing may be written through a link that stands there, and nothing need stand there.
  // Then each directory above it, of which every one must answer; only the topmost is asked for with its slash.
  const size_t drive = path.size() >= 2 && path[1] == L':' ? 2 : 0;
  for (size_t end = path.size();;) {
    const WideView place = path.substr(0, end);
    if (!IsAskedAboutByItsOwnName(place)) return false;
    const std::optional<uint32_t> attributes = operations.Attributes(place);
    if (!attributes && end != path.size()) return IsUncServerRoot(place);
    if (attributes && (*attributes & kAttributeReparsePoint) != 0) {
      // A place asked for with its slash shares that with what follows it.
      return ReadLink(place, path.substr(end > 0 && IsSlash(place.back()) ? end - 1 : end), targetOut);
    }
    const size_t slash = LastSlash(place);
    if (slash == WideView::npos || slash < drive) return true;
    const size_t above = slash == drive ? drive + 1 : slash;
    if (above >= end) return true;
    end = above;
  }
}

// A link whose data cannot be read or does not add up could lead anywhere, so it fails the walk; any other kind of
// reparse point is no link.
bool BrokerPathPolicy::ReadLink(WideView place, WideView remainder, std::optional<WideString>& targetOut) {
  const std::optional<std::vector<uint8_t>> data = operations.ReadReparsePoint(place);
  if (!data) return false;
  if (!IsLinkTag(*data)) return true;
  std::optional<WideString> target = ParseReparseTarget(*data);
  if (!target) return false;
  *target += remainder;
  return SetTarget(std::move(*target), targetOut);
}

bool BrokerPathPolicy::ResolveAllLinks(WideView path, std::optional<WideString>& targetOut) {
  targetOut.reset();
  std::optional<WideString> first;
  if (!ResolveOneLink(path, first)) return false;
  if (!first) return true;  // nearly always, so nothing is copied up to here
  return FollowChain(WideString(path), std::move(*first), targetOut);
}

bool BrokerPathPolicy::FollowChain(WideString current, WideString target, std::optional<WideString>& targetOut) {
  std::vector<WideString> history;
  for (;;) {
    // A cycle leads nowhere when it is opened, so the path it had goes on to be judged by the roots.
    if (target == current || std::find(history.begin(), history.end(), target) != history.end()) return true;
    // So does the path behind too long a chain, but the platform follows more links than this: the chain must stay
    // inside.
    if (history.size() == kMostEarlierTargets) return LongChainStaysInside(std::move(target));
    history.push_back(std::move(current));
    current = std::move(target);
    std::optional<WideString> next;
    if (!ResolveOneLink(current, next)) return false;
    if (!next) {
      targetOut = std::move(current);
      return true;
    }
    target = std::move(*next);
  }
}

// Follows the rest of a chain as far as the platform would, to see that its end lies under a root that may be written.
bool BrokerPathPolicy::LongChainStaysInside(WideString current) {
  for (int link = 0; link < kMostLinksOpened; ++link) {
    std::optional<WideString> target;
    if (!ResolveOneLink(current, target)) return false;
    if (!target) {
      const std::optional<WideString> end = SanitizePath(current, true);
      return end && FillWritableRoots() && MatchRoot(*end) != RootMatch::None &&
             !IsPathUnderRoot(*end, *vendorSettingsRoot);
    }
    current = std::move(*target);
  }
  return true;  // opening it fails
}
