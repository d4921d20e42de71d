#include "broker/BrokerPathPolicy.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "engine/Vendor.h"

namespace {

constexpr WideView kLocalAppDataToken = L"<LOCAL_APPDATA>";
constexpr size_t kPathBound = 260;
constexpr int kMostRounds = 100;

// Endings that the player's own data has. ".DLL" is among them by design; what is written under such a name is looked
// at.
constexpr WideView kAllowedExtensions[] = {
    L".TXT", L".SOR", L".SOL", L".SSR", L".SSL",       L".SXX", L".XML",  L".AHD", L".DAT",
    L".TWZ", L".HEU", L".TMP", L".S",   L".DIRECTORY", L".PNG", L".SSS",  L".GS",  L".MGD",
    L".LKG", L".LIC", L".VCH", L".DLL", L".META",      L".ICO", L".JSON",
};
static_assert(std::size(kAllowedExtensions) == 25);

// Below the user's data folders, where directories may be made.
constexpr WideView kAllowedDirectorySuffixes[] = {L"\\HALCYONICS", L"\\CORVA"};

// One pass over a table, since every check of every client comes through here.
constexpr auto kForbidden = [] {
  std::array<bool, 128> table{};
  for (const wchar_t unit : WideView(L"*?\"|<>/")) table[unit] = true;
  return table;
}();

bool HoldsForbidden(WideView path) {
  return std::any_of(path.begin(), path.end(),
                     [](wchar_t unit) { return unit < kForbidden.size() && kForbidden[unit]; });
}

bool IsDriveLetter(wchar_t unit) {
  return (unit >= L'A' && unit <= L'Z') || (unit >= L'a' && unit <= L'z');
}

// Takes the prefix off that turns the platform's own parsing off.
void DropVerbatimPrefix(WideString& path, WideView upper) {
  if (upper.starts_with(L"\\\\?\\UNC\\")) {
    path.replace(0, 8, L"\\\\");
  } else if (upper.starts_with(L"\\\\?\\")) {
    path.erase(0, 4);
  }
}

// No colon, or the one of a drive. A colon anywhere behind it names an alternate stream.
bool HasOnlyDriveColon(WideView path) {
  const auto colons = std::count(path.begin(), path.end(), L':');
  if (colons != 1) return colons == 0;
  const WideView drive = path.starts_with(L"\\\\?\\") ? path.substr(4) : path;
  return drive.size() >= 2 && IsDriveLetter(drive[0]) && drive[1] == L':';
}

// No component may begin or end with a dot, also not with one that a later decoding would bring out.
bool ObeysDotRules(WideView path) {
  constexpr WideView kEncoded = L"%2E";
  for (size_t slash = path.find(L'\\'); slash != WideView::npos; slash = path.find(L'\\', slash + 1)) {
    const WideView before = path.substr(0, slash);
    const WideView behind = path.substr(slash + 1);
    if (before.ends_with(L'.') || behind.starts_with(L'.')) return false;
    if (before.ends_with(kEncoded) || behind.starts_with(kEncoded)) return false;
  }
  return true;
}

// A path behind this prefix is opened as it is spelled, though its full name is folded like any other.
bool IsVerbatim(WideView path) {
  return path.starts_with(L"\\\\?\\");
}

// The dot rule for names as they were given, since the full name has lost most dots at their ends. "." and ".." alone
// are no names but directions.
bool GivenNameEndsWithDot(WideView path) {
  path = path.substr(0, path.find_last_not_of(L' ') + 1);
  const auto isEdge = [path](size_t at) { return at >= path.size() || path[at] == L'\\' || path[at] == L'/'; };
  for (size_t dot = path.find(L'.'); dot != WideView::npos; dot = path.find(L'.', dot + 1)) {
    if (!isEdge(dot + 1)) continue;
    const bool one = isEdge(dot - 1);  // also in front of the path, where the index wraps around
    const bool two = !one && path[dot - 1] == L'.' && isEdge(dot - 2);
    if (!one && !two) return true;
  }
  return false;
}

bool ClimbsUp(WideView path) {
  return path.find(L"\\..") != WideView::npos || path.find(L"/..") != WideView::npos;
}

WideString WithoutLastComponent(WideView path) {
  const size_t slash = path.find_last_of(L"\\/");
  if (slash == WideView::npos) return WideString(path);
  // Without its slash a drive would be the directory that happens to be current on it.
  const bool ofDrive = slash == 2 && path[1] == L':';
  return WideString(path.substr(0, ofDrive ? slash + 1 : slash));
}

}  // namespace

std::optional<WideString> BrokerPathPolicy::ExpandBrokerPath(const wchar_t* path) {
  if (path == nullptr) return std::nullopt;
  const WideView given(path);
  if (!given.starts_with(kLocalAppDataToken)) return WideString(given);
  if (!FillLocalAppData()) return std::nullopt;
  WideString expanded = *localAppData + WideString(given.substr(kLocalAppDataToken.size()));
  if (expanded.size() >= kPathBound) return std::nullopt;
  return expanded;
}

std::optional<WideString> BrokerPathPolicy::SanitizePath(WideView path, bool upper) {
  // Until a round changes nothing: a path that a second canonicalisation would read differently settles first.
  std::optional<WideString> full = operations.FullPath(path);
  bool asOpened = full && (!IsVerbatim(path) || *full == path);
  for (int round = 1; full && round < kMostRounds; ++round) {
    std::optional<WideString> again = operations.FullPath(*full);
    if (!again) return std::nullopt;
    const bool settled = *again == *full;
    asOpened = asOpened && settled;
    full = std::move(again);
    if (settled) break;
  }
  if (!full) return std::nullopt;
  // Opening the path canonicalises it once, or not at all: a name that settles later is not the one that is opened.
  if (upper && (!asOpened || GivenNameEndsWithDot(path))) return std::nullopt;
  std::optional<WideString> upperCased = operations.UpperCase(*full);
  if (!upperCased) return std::nullopt;

  WideString result = upper ? std::move(*upperCased) : std::move(*full);
  DropVerbatimPrefix(result, upper ? result : *upperCased);
  if (HoldsForbidden(result)) return std::nullopt;
  if (!HasOnlyDriveColon(result)) return std::nullopt;
  if (upper && !ObeysDotRules(result)) return std::nullopt;
  return result;
}

bool BrokerPathPolicy::IsPathUnderRoot(WideView path, WideView root) {
  if (!path.starts_with(root)) return false;
  const WideView rest = path.substr(root.size());
  return rest.empty() || rest.front() == L'/' || rest.front() == L'\\';
}

bool BrokerPathPolicy::HasAllowedExtension(WideView path) {
  return std::any_of(std::begin(kAllowedExtensions), std::end(kAllowedExtensions),
                     [path](WideView extension) { return path.ends_with(extension); });
}

bool BrokerPathPolicy::IsWritableDataPath(const wchar_t* path, bool requireExtension, bool* sharedFlagOut) {
  if (sharedFlagOut != nullptr) *sharedFlagOut = false;
  if (path == nullptr || !FillWritableRoots()) return false;
  std::optional<WideString> judged = SanitizePath(path, true);
  if (!judged) return false;
  // A target is judged as the platform spells it; only paths below upper-cased roots can pass what follows.
  std::optional<WideString> target;
  if (!ResolveAllLinks(*judged, target)) return false;
  if (target) judged = std::move(target);
  if (std::optional<WideString> longer = TryGetLongPath(*judged)) judged = std::move(longer);

  const RootMatch root = MatchRoot(*judged);
  // The settings directory is off limits even inside the player's data.
  bool allowed = root != RootMatch::None && !IsPathUnderRoot(*judged, *vendorSettingsRoot);
  if (allowed && root == RootMatch::Data && requireExtension) allowed = HasAllowedExtension(*judged);
  if (sharedFlagOut != nullptr) *sharedFlagOut = IsSharedObjectsPath(*judged);
  return allowed;
}

BrokerPathPolicy::RootMatch BrokerPathPolicy::MatchRoot(WideView path) const {
  if (IsPathUnderRoot(path, *playerDataRoot) || IsPathUnderRoot(path, *vendorRoot)) return RootMatch::Data;
  return IsPathUnderRoot(path, *tempRoot) ? RootMatch::Temp : RootMatch::None;
}

bool BrokerPathPolicy::IsSharedObjectsPath(WideView path) {
  if (!sharedObjectsRoot && !supportSysRoot && playerDataRoot) {
    sharedObjectsRoot = *playerDataRoot + L"\\#SHAREDOBJECTS";
    supportSysRoot = *playerDataRoot + L"\\" LUMEN_VENDOR_DOMAIN_UPPER L"\\SUPPORT\\LUMENPLAYER\\SYS";
  }
  if (sharedObjectsRoot && IsPathUnderRoot(path, *sharedObjectsRoot)) return true;
  if (!supportSysRoot || !path.starts_with(WideView(*supportSysRoot))) return false;
  const WideString rest = WithoutLastComponent(path.substr(supportSysRoot->size()));
  return rest.size() > 2 && rest.starts_with(L"\\#");
}

bool BrokerPathPolicy::IsCreatableDirectory(const wchar_t* path) {
  if (path == nullptr) return false;
  if (!FillRoamingAppData() || !FillRoot(roamingRoot, roamingAppData)) return false;
  if (enableLocalAppData && (!FillLocalAppData() || !FillRoot(localRoot, localAppData))) return false;
  const std::optional<WideString> judged = SanitizePath(path, true);
  if (!judged) return false;
  const auto below = [&judged](const WideString& root) {
    return std::any_of(std::begin(kAllowedDirectorySuffixes), std::end(kAllowedDirectorySuffixes),
                       [&](WideView suffix) { return IsPathUnderRoot(*judged, root + WideString(suffix)); });
  };
  return below(*roamingRoot) || (enableLocalAppData && below(*localRoot));
}

bool BrokerPathPolicy::IsSearchablePath(const wchar_t* path) {
  if (path == nullptr) return false;
  WideString searched(path);
  const std::optional<uint32_t> attributes = operations.AttributesEx(searched);
  if (attributes && (*attributes & kAttributeDirectory) == 0) {
    searched = WithoutLastComponent(searched);
  } else if (const size_t wildcard = searched.find_first_of(L"*?"); wildcard != WideString::npos) {
    // Behind the pattern a ".." would fold it away, and take the search out of the directory that is judged here.
    if (ClimbsUp(WideView(searched).substr(wildcard))) return false;
    // The pattern goes first, since no path with a wildcard in it is canonical.
    searched = WithoutLastComponent(WideView(searched).substr(0, wildcard));
  }
  const std::optional<WideString> judged = SanitizePath(searched, true);
  if (!judged) return false;
  const bool roaming = FillRoamingAppData() && FillRoot(roamingRoot, roamingAppData);
  const bool temp = FillTempDir() && FillRoot(tempRoot, tempDir);
  return (roaming && IsPathUnderRoot(*judged, *roamingRoot)) || IsSystemPlayerPath(*judged) ||
         (temp && IsPathUnderRoot(*judged, *tempRoot));
}

bool BrokerPathPolicy::IsSystemPlayerPath(WideView path) {
  constexpr WideView kBelow = L"\\HALCYONS\\LUMEN";
  if (!FillFolderRoot(systemPlayerRoot, ShellFolder::System, kBelow)) return false;
  if (!FillFolderRoot(systemWow64PlayerRoot, ShellFolder::SystemX86, kBelow)) return false;
  return IsPathUnderRoot(path, *systemPlayerRoot) || IsPathUnderRoot(path, *systemWow64PlayerRoot);
}

std::optional<WideString> BrokerPathPolicy::TryGetLongPath(WideView path) {
  const size_t drive = path.size() >= 2 && path[1] == L':' ? 2 : 0;
  const size_t slash = path.find_last_of(L"\\/");
  const size_t name = slash == WideView::npos ? drive : slash + 1;
  std::optional<WideString> longer = operations.LongPath(path.substr(0, name));
  if (!longer || longer->size() == name) return std::nullopt;
  *longer += path.substr(name);
  return longer;
}

bool BrokerPathPolicy::FillWritableRoots() {
  return FillVendorDir() && FillRoot(vendorRoot, vendorDir) && FillPlayerDataDir() &&
         FillRoot(playerDataRoot, playerDataDir) && FillVendorSettingsDir() &&
         FillRoot(vendorSettingsRoot, vendorSettingsDir) && FillTempDir() && FillRoot(tempRoot, tempDir);
}

BrokerPathPolicy::Cached BrokerPathPolicy::FolderWithoutSlash(ShellFolder folder) {
  Cached path = operations.Folder(folder);
  if (path && (path->ends_with(L'\\') || path->ends_with(L'/'))) path->pop_back();
  return path;
}

bool BrokerPathPolicy::FillLocalAppData() {
  if (!localAppData) localAppData = FolderWithoutSlash(ShellFolder::LocalAppData);
  return localAppData.has_value();
}

bool BrokerPathPolicy::FillRoamingAppData() {
  if (!roamingAppData) roamingAppData = FolderWithoutSlash(ShellFolder::RoamingAppData);
  return roamingAppData.has_value();
}

bool BrokerPathPolicy::FillPlayerDataDir() {
  if (playerDataDir) return true;
  if (!(enableLocalAppData ? FillLocalAppData() : FillRoamingAppData())) return false;
  playerDataDir = *(enableLocalAppData ? localAppData : roamingAppData) + L"\\Halcyonics\\Lumen Player";
  return true;
}

bool BrokerPathPolicy::FillVendorDir() {
  if (vendorDir) return true;
  if (!FillRoamingAppData()) return false;
  vendorDir = *roamingAppData + L"\\Corva\\Lumen Player";
  return true;
}

bool BrokerPathPolicy::FillVendorSettingsDir() {
  if (vendorSettingsDir) return true;
  if (!FillPlayerDataDir()) return false;
  vendorSettingsDir = *playerDataDir + L"\\" LUMEN_VENDOR_DOMAIN;
  return true;
}

// The server's own temp directory is not the sandbox's: the low-integrity one below it is.
bool BrokerPathPolicy::FillTempDir() {
  if (tempDir) return true;
  Cached path = operations.TempPath();
  if (!path) return false;
  if (serverMode && !path->ends_with(L"\\Low\\")) *path += L"Low\\";
  if (Cached longer = TryGetLongPath(*path)) path = std::move(longer);
  if (path->ends_with(L'\\') || path->ends_with(L'/')) path->pop_back();
  tempDir = std::move(path);
  return true;
}

bool BrokerPathPolicy::FillRoot(Cached& root, const Cached& directory) {
  if (!root && directory) root = SanitizePath(*directory, true);
  return root.has_value();
}

bool BrokerPathPolicy::FillFolderRoot(Cached& root, ShellFolder folder, WideView below) {
  if (root) return true;
  const Cached path = FolderWithoutSlash(folder);
  if (path) root = SanitizePath(*path, true);
  if (root) *root += below;
  return root.has_value();
}
