// -install and -update: the order of an installation's large steps. Each says on the console how it ended.
#pragma once

#include "host/Session.h"

[[nodiscard]] HostExit InstallPlayers(const Session& session);
// Installs the one kind of the line over an older one; there being none, or one that is not older, ends it.
[[nodiscard]] HostExit UpdatePlayer(const Session& session);

// -conflicts: names the programs in the way of the kinds.
[[nodiscard]] HostExit ShowConflicts(const Session& session);
