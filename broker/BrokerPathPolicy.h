// The security heart of the broker: decides whether a path that a client names may be written, deleted, listed or
// created.
//
// The server runs with more rights than its client, and a client may be hostile. The tests are string logic over a few
// roots plus a walk of the file system for links. Reading a file and asking for its attributes are not restricted here:
// the broker guards what a client may change, not what it may see. No test gives a reason; a refusal is a plain false.
// Apartment thread only.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string_view>

#include "broker/PathOperations.h"
#include "engine/WideText.h"

class BrokerPathPolicy {
 public:
  // `platform` outlives the policy. With `inServer` the temp root is the low-integrity sub-directory.
  BrokerPathPolicy(PathOperations& platform, bool inServer);

  // Puts the user's local application data directory in place of a leading "<LOCAL_APPDATA>" (case-sensitive), which is
  // how a sandboxed client names what it cannot know. Null stays null. Runs ahead of every test.
  [[nodiscard]] std::optional<WideString> ExpandBrokerPath(const wchar_t* path);
  // The canonical form of a path, upper-cased when `upper`; nothing when it has no canonical form or a forbidden part.
  [[nodiscard]] std::optional<WideString> SanitizePath(const wchar_t* path, bool upper);
  // May `path` be written? `sharedFlagOut`, which may be null, tells whether it lies among the shared objects.
  [[nodiscard]] bool IsWritableDataPath(const wchar_t* path, bool requireExtension, bool* sharedFlagOut);
  [[nodiscard]] bool IsCreatableDirectory(const wchar_t* path);
  [[nodiscard]] bool IsSearchablePath(const wchar_t* path);

  [[nodiscard]] bool IsSharedObjectsPath(WideView path);
  [[nodiscard]] bool IsSystemPlayerPath(WideView path);
  [[nodiscard]] static bool HasAllowedExtension(WideView path);
  [[nodiscard]] static bool IsPathUnderRoot(WideView path, WideView root);

  // Follows links until there is none. False: a level could not be looked at. Nothing in `targetOut`: go on with the
  // path as it is, which is also the answer to a cycle and to a chain of more than sixteen.
  [[nodiscard]] bool ResolveAllLinks(WideView path, std::optional<WideString>& targetOut);
  [[nodiscard]] bool ResolveOneLink(WideView path, std::optional<WideString>& targetOut);
  // The path with its directories' short names made long; nothing when that changes nothing.
  [[nodiscard]] std::optional<WideString> TryGetLongPath(WideView path);

  void SetEnableLocalAppData(bool enable) { enableLocalAppData = enable; }
};
