// The files that the host named as fresh parts of a kind.
#pragma once

#include <cstdint>

class LumenBrokerShim;
class MStringList;

// Owned by the engine. Null for anything but one product_kind, and without an engine.
[[nodiscard]] MStringList* ExtraFilesOf(LumenBrokerShim* shim, uint32_t kind);
