// Timing of single calls between processes, which are long and scatter: medians, not best rounds.
#pragma once

#include <windows.h>

#include <algorithm>
#include <vector>

inline double Microseconds() {
  LARGE_INTEGER now = {};
  LARGE_INTEGER perSecond = {};
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&perSecond);
  return static_cast<double>(now.QuadPart) * 1e6 / static_cast<double>(perSecond.QuadPart);
}

// Microseconds of one call.
template <class Call>
double Timed(Call call) {
  const double start = Microseconds();
  call();
  return Microseconds() - start;
}

inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}
