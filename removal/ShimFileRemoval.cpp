// The shim's operations that delete the player's files by name and by pattern. What cannot be deleted is reported and
// left to the next restart; each operation's own answer is always true.
#include <windows.h>

#include <optional>

#include "engine/FilePattern.h"
#include "engine/HostCallbacks.h"
#include "engine/InstallEngine.h"
#include "engine/LumenBrokerShim.h"
#include "engine/ProductKind.h"
#include "engine/SystemPaths.h"
#include "install/ControlRegistration.h"
#include "install/FileProtection.h"
#include "install/FileReplacement.h"
#include "install/PluginDirectories.h"
#include "install/Registration.h"
#include "removal/TreeDeletion.h"

namespace {

constexpr uint32_t kAllKinds = product_kind::ActiveX | product_kind::Plugin | product_kind::Pepper;

MString LastPart(const MString& path) {
  MString name = path.TailFrom("\\");
  if (name.IsEmpty()) return path;
  (void)name.Take(1);
  return name;
}

// The listings hold the parent directory, which a short pattern matches too.
bool IsParent(const MString& path) {
  return LastPart(path).View() == L"..";
}

// Removes the file that matches each pattern of one kind; `remove` is told the pattern and the path.
template <class Remove>
void RemoveMatches(LumenBrokerShim* shim, const MStringList& patterns, const MString& directory, Remove remove) {
  for (const auto* pattern = patterns.Head(); pattern != nullptr; pattern = pattern->next) {
    const MString found = FindMatchingFile(shim->engine->systemEntries, directory, pattern->key);
    if (found.IsEmpty() || IsParent(found)) continue;
    remove(pattern->key, found);
    if (found.EndsWith(MString(L".exe"))) DeleteImageExecutionKey(shim->host, LastPart(found));
  }
}

void RemoveProductDirectories(const InstallEngine& engine) {
  const std::optional<WideString> directory = ProductDirectory();
  if (!directory) return;
  MStringList matches;
  for (const auto* pattern = engine.productManagerPatterns.Head(); pattern != nullptr; pattern = pattern->next) {
    CollectMatches(engine.productManagerEntries, MString(WideView(*directory)), pattern->key, matches);
  }
  for (const auto* match = matches.Head(); match != nullptr; match = match->next) {
    if (!IsParent(match->key)) DeleteTree(match->key.Data());
  }
}

}  // namespace

bool LumenBrokerShim::RemoveNamedFiles(uint32_t kinds, MString directory) noexcept {
  if (engine != nullptr && (kinds & product_kind::ActiveX) != 0) {
    for (const auto* name = engine->filenamesAX.Head(); name != nullptr; name = name->next) {
      MString path = directory;
      path.AppendPath(L'\\', name->key);
      if (FileExists(path)) RemoveOneFile(name->key, path);
    }
  }
  if (engine != nullptr && (kinds & product_kind::Plugin) != 0) {
    RefreshPluginDirectories(this, directory);
    for (const auto* place = engine->pluginDirectories.Head(); place != nullptr; place = place->next) {
      for (const auto* name = engine->filenamesPlugin.Head(); name != nullptr; name = name->next) {
        MString path = place->key;
        path.AppendPath(L'\\', name->key);
        ReplaceFile(this, path, product_kind::Plugin);
      }
    }
  }
  host->FileRemovalFinished(0);
  return true;
}

bool LumenBrokerShim::RemoveOneFile(MString name, MString path) noexcept {
  const MString extension = name.TailFrom(".");
  const bool isServerName = name.StartsWith(MString(L"LumenUtil")) || name.StartsWith(MString(L"GetLumen"));
  uint32_t kind = file_kind::Other;
  if (extension.Equals(MString(L".ocx"))) {
    ProtectFile(path, false);
    UnregisterControl(path);
    kind = product_kind::ActiveX;
  } else if (isServerName && extension.Equals(MString(L".exe"))) {
    ProtectFile(path, false);
    kind = file_kind::ServerFile;
  }
  ReplaceFile(this, path, kind);
  return true;
}

bool LumenBrokerShim::RemovePatternFiles(uint32_t kinds, MString directory) noexcept {
  if (engine == nullptr) return true;
  if ((kinds & product_kind::ActiveX) != 0) {
    RemoveMatches(this, engine->axPatterns, directory,
                  [this](const MString& pattern, const MString& path) { RemoveOneFile(pattern, path); });
  }
  if ((kinds & product_kind::Plugin) != 0) {
    RemoveMatches(this, engine->pluginPatterns, directory, [this](const MString& /*pattern*/, const MString& path) {
      ReplaceFile(this, path, product_kind::Plugin);
    });
  }
  if ((kinds & product_kind::Pepper) != 0) {
    RemoveMatches(this, engine->pepperPatterns, directory, [this](const MString& /*pattern*/, const MString& path) {
      ReplaceFile(this, path, product_kind::Pepper);
    });
  }
  if ((kinds & kAllKinds) == kAllKinds) RemoveProductDirectories(*engine);
  return true;
}
