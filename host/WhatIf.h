// -what-if: what a command would change, told and not done. The registry values come from the same tables that
// registration writes from.
#pragma once

#include <vector>

#include "host/PayloadCopy.h"
#include "host/Session.h"

HostExit TellInstallation(const Session& session, const std::vector<FileToCopy>& files);
HostExit TellRemoval(const Session& session);
