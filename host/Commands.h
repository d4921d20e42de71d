// What the commands of the command line do, once the module has started. Each says on the console how it ended.
#pragma once

#include "host/Session.h"

// The exit code: a HostExit, or the broker's own for HostCommand::Broker.
[[nodiscard]] int RunHostCommand(const Session& session);
