#include "engine/MString.h"

#include <gtest/gtest.h>

TEST(MString, CopyKeepsItsTextAfterTheSourceIsCut) {
  MString source(L"abc");
  const MString copy = source;
  source.Take(2);
  EXPECT_EQ(ToUtf8(source.View()), "c");
  EXPECT_EQ(ToUtf8(copy.View()), "abc");
}
