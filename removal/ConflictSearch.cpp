#include "removal/ConflictSearch.h"

#include <optional>

#include "engine/ProductKind.h"

namespace {

constexpr uint32_t kForcedSources[] = {8, 10};
constexpr const wchar_t* kBrowsers[] = {L"firefox.exe",  L"chrome.exe",  L"safari.exe",   L"opera.exe",
                                        L"netscape.exe", L"mozilla.exe", L"seamonkey.exe"};
// What runs the control's helper process.
constexpr const wchar_t* kHelperUsers[] = {L"iexplore", L"iepreview"};
constexpr wchar_t kIgnored[] = L"ConflictsToIgnore.";
constexpr wchar_t kFriendlyNames[] = L"FriendlyProcessNames.";

struct KindSetting {
  uint32_t kind;
  const wchar_t* prefix;
};
constexpr KindSetting kKindSettings[] = {{product_kind::Plugin, L"PluginConflicts."},
                                         {product_kind::ActiveX, L"ActiveXConflicts."},
                                         {product_kind::Pepper, L"PepperConflicts."}};

MString Dotted(const wchar_t* prefix, const MString& key) {
  MString whole(prefix);
  whole.Append(key);
  return whole;
}

MString FileName(const MString& path) {
  MString name = path.TailFrom("\\");
  if (name.IsEmpty()) return path;
  (void)name.Take(1);
  return name;
}

// Whether processes that use the kind are in nobody's way. Each of the answers that decide it, in one sentence:
//
// - `kinds`: a kind that this run does not touch cannot be held up by anybody.
// - The file names: a control installed under another name than the new one stays beside it until it is let go, so
//   whoever has it loaded may keep it.
// - `isRestartRequired`: with a restart due the old file is to be gone by then under whatever name, so its users count.
// - `installSource`: the forced sources replace what is there in any case, so its users count.
// - `isOptional`: only a check that is optional may rest on the above; a check that is not (a removal, say) asks of
// each
//   kind nothing but whether it is installed, for then its file has to go.
bool IsSkipped(const ConflictQuestion& question, const ConflictKind& kind) {
  if (!question.isOptional) return !kind.isInstalled;
  const bool isForced = question.installSource == kForcedSources[0] || question.installSource == kForcedSources[1];
  const bool isSameFile = FileName(kind.installedPath).ToLower().Equals(kind.newFile.ToLower());
  return !isSameFile && !question.isRestartRequired && !isForced;
}

// The kinds to look at, in order.
std::vector<const ConflictKind*> KindsToTest(const ConflictQuestion& question) {
  std::vector<const ConflictKind*> kinds;
  for (const ConflictKind& kind : question.product) {
    if ((question.kinds & kind.kind) != 0 && !IsSkipped(question, kind)) kinds.push_back(&kind);
  }
  return kinds;
}

// The first kind's setting that names the process; null when none does.
const SettingsNode* FindKnownConflict(const SettingsTree* settings, const std::vector<const ConflictKind*>& kinds,
                                      const MString& key) {
  for (const ConflictKind* kind : kinds) {
    for (const KindSetting& setting : kKindSettings) {
      if (setting.kind != kind->kind) continue;
      const SettingsNode* const node = FindSetting(settings, Dotted(setting.prefix, key));
      if (node != nullptr) return node;
    }
  }
  return nullptr;
}

// Paths are compared as they stand: both come from the platform, and a file that was loaded by another spelling is told
// from the installed one by design. A kind without a path is loaded by nobody.
bool HasLoaded(const std::vector<MString>& files, const std::vector<const ConflictKind*>& kinds) {
  for (const MString& file : files) {
    for (const ConflictKind* kind : kinds) {
      if (!file.IsEmpty() && file.Equals(kind->installedPath)) return true;
    }
  }
  return false;
}

MString NameToShow(const ConflictQuestion& question, const SettingsNode* known, const MString& key) {
  if (known != nullptr && known->values != nullptr) return known->values->name;
  const SettingsNode* const friendly = FindSetting(question.settings, Dotted(kFriendlyNames, key));
  return friendly != nullptr && friendly->values != nullptr ? friendly->values->name : key;
}

void AddConflict(const ConflictQuestion& question, const std::vector<const ConflictKind*>& kinds, uint32_t id,
                 const MString& key, ProcessList& processes, MStringList& conflicts) {
  const SettingsNode* const known = FindKnownConflict(question.settings, kinds, key);
  if (known == nullptr && (kinds.empty() || !HasLoaded(processes.LoadedFiles(id), kinds))) return;
  conflicts.Add(key, NameToShow(question, known, key));
}

}  // namespace

std::unique_ptr<MStringList> SearchConflicts(const ConflictQuestion& question, ProcessList& processes) {
  const auto ids = processes.List();
  if (!ids) return nullptr;
  auto conflicts = std::make_unique<MStringList>();
  const std::vector<const ConflictKind*> kinds = KindsToTest(question);
  const MString helperKey = ProcessKey(question.helperName);
  MString helperPath(L"");
  uint32_t helperId = 0;
  for (const uint32_t id : *ids) {
    const std::optional<ProcessIdentity> process = processes.Identify(id);
    if (!process || process->name.IsEmpty()) continue;
    const MString key = ProcessKey(process->name);
    if (conflicts->Contains(key)) continue;
    if (FindSettingByPrefix(question.settings, Dotted(kIgnored, key)) != nullptr) continue;
    AddConflict(question, kinds, id, key, processes, *conflicts);
    // A host that names no helper has none, even should a program of no name run.
    if (!helperKey.IsEmpty() && key.Equals(helperKey)) {
      helperId = id;
      helperPath = process->path;
    }
  }
  if ((question.kinds & product_kind::ActiveX) != 0) {
    TerminateActiveXHelper(*conflicts, helperPath, helperId, question.payloadPath, processes);
  }
  return conflicts;
}

MString JoinShownNames(const MStringList& conflicts) {
  MString joined(L"");
  for (const auto* node = conflicts.Head(); node != nullptr; node = node->next) {
    if (node != conflicts.Head()) joined.Append(MString(L","));
    joined.Append(node->value);
  }
  return joined;
}

MString FindRunningBrowser(ProcessList& processes) {
  const auto ids = processes.List();
  if (!ids) return MString(kBrowsers[0]);
  MString path(L"");
  for (const uint32_t id : *ids) {
    const std::optional<ProcessIdentity> process = processes.Identify(id);
    if (!process) continue;
    const MString name = process->name.ToLower();
    for (const wchar_t* browser : kBrowsers) {
      if (name.Equals(MString(browser))) path = process->path;
    }
  }
  return path;
}

MString ProcessKey(const MString& fileName) {
  MString key = fileName.ToLower();
  (void)key.CutTail(".");
  return key;
}

void TerminateActiveXHelper(const MStringList& conflicts, const MString& helperPath, uint32_t helperId,
                            const MString& payloadPath, ProcessList& processes) {
  if (helperId == 0) return;
  for (const wchar_t* user : kHelperUsers) {
    if (conflicts.Contains(MString(user))) return;
  }
  if (!helperPath.IsEmpty() && helperPath.ToLower().Equals(payloadPath.ToLower())) return;
  processes.End(helperId);
}
