// The arithmetic of file ages.
#pragma once

#include <cstdint>

// Whether a file written at `written` is older than `minimumAge` and younger than `maximumAge`, both in seconds, at the
// time `now`; file times count 100 ns. At a limit exactly it is not. A file from the future has wrapped round to an
// immense age, so that no limit reaches it.
[[nodiscard]] constexpr bool IsAgeWithin(uint64_t now, uint64_t written, uint32_t minimumAge, uint32_t maximumAge) {
  constexpr uint64_t kUnitsPerSecond = 10'000'000;
  const uint64_t age = now - written;
  return age > minimumAge * kUnitsPerSecond && age < maximumAge * kUnitsPerSecond;
}
