#include "removal/FileAge.h"

#include <gtest/gtest.h>

TEST(FileAge, OnlyStrictlyBetweenTheLimits) {
  constexpr uint64_t kSecond = 10'000'000;
  constexpr uint64_t kNow = 133'000'000'000'000'000;
  const auto isWithin = [](uint64_t written) { return IsAgeWithin(kNow, written, 60, 3600); };
  EXPECT_FALSE(isWithin(kNow - 60 * kSecond));
  EXPECT_TRUE(isWithin(kNow - 60 * kSecond - 1));
  EXPECT_TRUE(isWithin(kNow - 3600 * kSecond + 1));
  EXPECT_FALSE(isWithin(kNow - 3600 * kSecond));
  EXPECT_FALSE(IsAgeWithin(kNow, kNow, 0, 1)) << "this instant";
  EXPECT_FALSE(IsAgeWithin(kNow, kNow + 1, 0, UINT32_MAX)) << "the future";
}
