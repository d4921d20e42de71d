// What must hold whatever the input is; a fuzzer takes the abort for its finding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

inline void Require(bool condition) {
  if (!condition) std::abort();
}
