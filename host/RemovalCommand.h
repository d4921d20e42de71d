// -uninstall, and -maintain, which asks whether to. Each says on the console how it ended.
#pragma once

#include "host/Session.h"

[[nodiscard]] HostExit RemovePlayers(const Session& session);
// The same without asking whether the machine may be changed: unregisters, deletes, and looks at what is left.
[[nodiscard]] HostExit PerformRemoval(const Session& session);
// The command of Add/Remove Programs: asks whether to reinstall or to remove, until the answer is one of those offered.
// In silence, or when nobody answers, it removes.
[[nodiscard]] HostExit MaintainPlayer(const Session& session);
