#include "install/ClassKeys.h"

#include <gtest/gtest.h>

#include <iterator>

TEST(ClassKeys, NumericNamesSortBehindOthersAndByValue) {
  // Each name sorts behind the one before it.
  const char* const ordered[] = {"10a", "ABC", "abc", "", "9", "10", "99999999999999999999", "100000000000000000000"};
  for (size_t i = 0; i < std::size(ordered); ++i) {
    for (size_t j = 0; j < std::size(ordered); ++j) {
      const int compared = CompareKeyNames(ordered[i], ordered[j]);
      EXPECT_EQ(compared < 0, i < j) << ordered[i] << " " << ordered[j];
      EXPECT_EQ(compared == 0, i == j) << ordered[i] << " " << ordered[j];
    }
  }
  EXPECT_EQ(CompareKeyNames("007", "7"), 0);
}
