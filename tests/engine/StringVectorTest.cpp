#include "engine/StringVector.h"

#include <gtest/gtest.h>

#include <string>

TEST(StringVector, OwnsItsTextsGrowsAndSortsByByteValue) {
  SASM::StringVector vector(0);  // grows from no capacity at all
  for (std::string text : {"b", "\xE9", "B", "", "ab", "a"}) EXPECT_TRUE(vector.Append(text.c_str()));
  vector.Sort();
  std::string sorted;
  for (uint32_t i = 0; i < vector.Count(); ++i) sorted += vector.TextAt(i) + std::string("|");
  EXPECT_EQ(sorted, "|B|a|ab|b|\xE9|");
}
