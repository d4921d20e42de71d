#include "removal/FileAge.h"

#include <gtest/gtest.h>

TEST(FileAge, OnlyStrictlyBetweenTheLimits) {
  constexpr uint64_t kSecond = 10'000'000;
  constexpr uint64_t kNow = 133'000'000'000'000'000;
  struct Row {
    const char* why;
    uint64_t written;
    uint32_t minimum, maximum;
    bool within;
  };
  const Row rows[] = {
      {"at the minimum", kNow - 60 * kSecond, 60, 3600, false},
      {"just above it", kNow - 60 * kSecond - 1, 60, 3600, true},
      {"just below the maximum", kNow - 3600 * kSecond + 1, 60, 3600, true},
      {"at the maximum", kNow - 3600 * kSecond, 60, 3600, false},
      {"an instant ago", kNow - 1, 0, 3600, true},
      {"from the future", kNow + 1, 0, UINT32_MAX, false},
      {"from the beginning of time, beyond the greatest limit", 0, 0, UINT32_MAX, false},
      {"limits the wrong way round", kNow - 100 * kSecond, 200, 50, false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(IsAgeWithin(kNow, row.written, row.minimum, row.maximum), row.within) << row.why;
  }
}
