// Keeps an installed file from being changed by accident. Host's thread.
#pragma once

#include "engine/MString.h"

// With `on`: sets the read-only attribute, then adds the write guard of AccessRepair.h; false at the first that
// fails. Without: takes the guard back, then clears the attribute; both run, and false when either failed.
bool ProtectFile(const MString& path, bool on);
