#include "broker/CookieTable.h"

#include <gtest/gtest.h>

namespace {

TEST(CookieTable, NumbersRunFromOneAndSkipZeroAtTheWrap) {
  uint32_t first = 0, second = 0;
  CookieTable last(0xFFFFFFFF);
  ASSERT_TRUE(last.AddFileCookie(100, first, false, nullptr, nullptr));
  ASSERT_TRUE(last.AddFileCookie(200, second, false, nullptr, nullptr));
  EXPECT_EQ(first, 0xFFFFFFFFu);
  EXPECT_EQ(second, 1u);
}

}  // namespace
