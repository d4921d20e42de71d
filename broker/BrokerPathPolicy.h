// The security heart of the broker: decides whether a path that a client names may be written, deleted, listed or
// created.
//
// The server runs with more rights than its client, and a client may be hostile. The tests are string logic over a few
// roots plus a walk of the file system for links. Reading a file and asking for its attributes are not restricted here:
// the broker guards what a client may change, not what it may see. No test gives a reason; a refusal is a plain false.
// Apartment thread only.
#pragma once

#include <cstdint>
#include <optional>

#include "broker/PathOperations.h"
#include "engine/WideText.h"

class BrokerPathPolicy {
 public:
  // `platform` outlives the policy. With `inServer` the temp root is the low-integrity sub-directory.
  BrokerPathPolicy(PathOperations& platform, bool inServer) : serverMode(inServer), operations(platform) {}
  BrokerPathPolicy(const BrokerPathPolicy&) = delete;
  BrokerPathPolicy& operator=(const BrokerPathPolicy&) = delete;

  // Read once for each broker object, before the first test.
  void SetEnableLocalAppData(bool enable) { enableLocalAppData = enable; }

  // Puts the user's local application data directory in place of a leading "<LOCAL_APPDATA>" (case-sensitive), which is
  // how a sandboxed client names what it cannot know. Null stays null; so does a result of 260 units or more. Runs
  // ahead of every test.
  [[nodiscard]] std::optional<WideString> ExpandBrokerPath(const wchar_t* path);
  // The canonical form of a path; nothing when it has none or holds a forbidden part. With `upper`, as all tests here
  // want it, upper-cased and with the dot rules applied.
  [[nodiscard]] std::optional<WideString> SanitizePath(WideView path, bool upper);

  // May `path` be written? With `requireExtension` its ending must be one that the player's data has, except in the
  // temp root. `sharedFlagOut`, which may be null, tells whether it lies among the shared objects.
  [[nodiscard]] bool IsWritableDataPath(const wchar_t* path, bool requireExtension, bool* sharedFlagOut);
  // May `path` be made as a directory, or emptied as one?
  [[nodiscard]] bool IsCreatableDirectory(const wchar_t* path);
  // May `path`, which may end in a wildcard, be listed? Wider than writing.
  [[nodiscard]] bool IsSearchablePath(const wchar_t* path);

  // These take canonical, upper-cased paths.
  [[nodiscard]] bool IsSharedObjectsPath(WideView path);
  [[nodiscard]] bool IsSystemPlayerPath(WideView path);
  [[nodiscard]] static bool HasAllowedExtension(WideView path);
  // All of `root` matches and what follows is the end, "/" or "\".
  [[nodiscard]] static bool IsPathUnderRoot(WideView path, WideView root);
  // A server name and at most a share, with nothing behind: there is nothing to resolve in it.
  [[nodiscard]] static bool IsUncServerRoot(WideView path);

  // Follows links until there is none. False: a level could not be looked at. Nothing in `targetOut`: go on with the
  // path as it is, which is also the answer to a cycle and to a chain of more than sixteen.
  [[nodiscard]] bool ResolveAllLinks(WideView path, std::optional<WideString>& targetOut);
  [[nodiscard]] bool ResolveOneLink(WideView path, std::optional<WideString>& targetOut);
  // The path with its directories' short names made long; nothing when that changes nothing or fails.
  [[nodiscard]] std::optional<WideString> TryGetLongPath(WideView path);

 private:
  using Cached = std::optional<WideString>;

  // Each fills its cache on first use and answers whether there is a value; a failure is tried again next time.
  bool FillLocalAppData();
  bool FillRoamingAppData();
  bool FillTempDir();
  bool FillPlayerDataDir();
  bool FillVendorDir();
  bool FillVendorSettingsDir();
  bool FillRoot(Cached& root, const Cached& directory);
  bool FillFolderRoot(Cached& root, ShellFolder folder, WideView below);
  bool FillWritableRoots();
  enum class RootMatch { None, Data, Temp };
  [[nodiscard]] RootMatch MatchRoot(WideView path) const;
  [[nodiscard]] bool FollowChain(WideString current, WideString target, std::optional<WideString>& targetOut);
  [[nodiscard]] bool LongChainStaysInside(WideString current);
  [[nodiscard]] bool ReadLink(WideView place, WideView remainder, std::optional<WideString>& targetOut);
  [[nodiscard]] Cached FolderWithoutSlash(ShellFolder folder);

  bool serverMode;
  PathOperations& operations;
  bool enableLocalAppData = false;

  // As the platform gave them, and what is built from those. Never refreshed: a change of profile during a session is
  // not seen.
  Cached localAppData, roamingAppData, tempDir;
  Cached playerDataDir, vendorDir, vendorSettingsDir;
  // Canonical and upper-cased; every comparison is against these.
  Cached roamingRoot, localRoot, tempRoot, playerDataRoot, vendorRoot, vendorSettingsRoot;
  Cached systemPlayerRoot, systemWow64PlayerRoot;
  Cached sharedObjectsRoot, supportSysRoot;
};
