// Timing for the benchmarks: the best of several rounds, and a line that sets a figure beside its floor.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>

// Nanoseconds of one call, the best of `rounds` rounds of `calls` calls.
template <class Work>
double Nanoseconds(int rounds, int calls, Work work) {
  double best = std::numeric_limits<double>::max();
  for (int round = 0; round < rounds; ++round) {
    const auto begin = std::chrono::steady_clock::now();
    for (int call = 0; call < calls; ++call) work();
    const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - begin;
    best = std::min(best, passed.count() / calls);
  }
  return best;
}

// Keeps the compiler from dropping a result that nobody reads.
template <class Value>
void Keep(const Value& value) {
  asm volatile("" : : "g"(&value) : "memory");
}
