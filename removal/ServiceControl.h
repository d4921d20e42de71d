// Stops one of the product's services before its file is replaced or removed. Host's thread; a stop may take half a
// minute.
#pragma once

#include "removal/ServiceRunner.h"

// Whether the service manager knows the runner's service. A manager that cannot be opened is reported as 1101 and gives
// false.
[[nodiscard]] bool ServiceExists(const ServiceRunner& runner);

// Asks the service to stop and waits for it, at most about 30 seconds from the start. True when the service is absent,
// stopped, or the wait ended: a service that will not stop is reported as 1745 and left to the file operations that
// follow. False when it could not be opened (1101, 1102) or refused to stop (1741).
[[nodiscard]] bool StopService(const ServiceRunner& runner);
