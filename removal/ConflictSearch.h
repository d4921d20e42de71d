// Which running programs stand in the way of an installation or removal, and a few smaller judgements about browsers.
// Logic only: it is handed the answers of the host, the installed paths and a list of processes.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "engine/MString.h"
#include "engine/MStringList.h"
#include "engine/SettingsTree.h"
#include "removal/ProcessList.h"

// What is known of one product kind before the search.
struct ConflictKind {
  uint32_t kind;          // one product_kind
  MString newFile;        // file name of the control that this run would install
  bool isInstalled;       // both of its paths could be read
  MString installedPath;  // path of the installed control; empty unless it is installed
};

struct ConflictQuestion {
  uint32_t kinds;                       // product_kind flags: the kinds that this run touches
  std::array<ConflictKind, 3> product;  // plug-in, ActiveX, PPAPI: the order in which a process is tried
  MString helperName;                   // file name of the control's helper process
  MString payloadPath;                  // the file that this run installs from
  const SettingsTree* settings;
  bool isRestartRequired;
  bool isOptional;  // the check may be skipped for what this run does not replace
  uint32_t installSource;
};

// Pairs of process key (lower-case file name without extension) and name to show, each key once. Null when the
// processes cannot be listed, which is not the same as an empty list. With the ActiveX kind it also ends the control's
// helper process, unless a browser that uses it is in the list.
[[nodiscard]] std::unique_ptr<MStringList> SearchConflicts(const ConflictQuestion& question, ProcessList& processes);

// The shown names, joined by ",".
[[nodiscard]] MString JoinShownNames(const MStringList& conflicts);

// The path of a running browser, of several the last one listed; empty when none runs. When the processes cannot be
// listed, a browser's name without a path: the shell knows where it is.
[[nodiscard]] MString FindRunningBrowser(ProcessList& processes);

// Parts of the search, with the names that its users know them by.

// Lower case (ASCII only) without what follows the last ".".
[[nodiscard]] MString ProcessKey(const MString& fileName);
// Ends the helper process `helperId` (0: none was seen) with image `helperPath`. It is spared when a browser that runs
// it is a conflict itself, and when it is the file that this run installs from.
void TerminateActiveXHelper(const MStringList& conflicts, const MString& helperPath, uint32_t helperId,
                            const MString& payloadPath, ProcessList& processes);
