// -install and -update: the order of an installation's large steps. Each says on the console how it ended.
#pragma once

#include "host/PayloadCopy.h"
#include "host/Session.h"

[[nodiscard]] HostExit InstallPlayers(const Session& session);
// Installs the one kind of the line over an older one; there being none, or one that is not older, ends it.
[[nodiscard]] HostExit UpdatePlayer(const Session& session);

// -conflicts: names the programs in the way of the kinds.
[[nodiscard]] HostExit ShowConflicts(const Session& session);

// Where each file of the kinds comes from and goes to, services last; a file that the payload may lack and lacks is
// left out.
[[nodiscard]] std::vector<FileToCopy> FilesToCopy(const Session& session);
