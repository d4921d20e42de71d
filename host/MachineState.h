// What is installed on this machine, as tables: read from the registry, the disk, the service manager and the
// scheduler, not from what an installation believes to have done.
#pragma once

#include <vector>

#include "host/Session.h"
#include "host/StatusTable.h"

// One row for each product kind.
[[nodiscard]] std::vector<TableRow> PlayerRows();
// The broker, the services, the hourly check, and what waits for a restart.
[[nodiscard]] std::vector<TableRow> MachineRows(const Session& session);
