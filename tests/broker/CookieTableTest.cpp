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

// A file chosen and not yet opened has no raw handle; an unknown number neither.
TEST(CookieTable, OnlyAnOpenHandleIsGivenOut) {
  CookieTable table;
  uint32_t chosen = 0, refused = 7;
  ASSERT_TRUE(table.AddFileCookie(0, chosen, false, L"C:\\c", std::make_unique<DeferredOpen>()));
  for (const intptr_t none : {intptr_t{0}, kNoHandle}) {
    EXPECT_FALSE(table.AddFileCookie(none, refused, true, L"C:\\d", nullptr));
    EXPECT_EQ(refused, 0u);
  }
  intptr_t handle = 0;
  EXPECT_FALSE(table.ResolveRawHandle(chosen, handle) || table.ResolveRawHandle(99, handle));
  EXPECT_EQ(handle, kNoHandle);
}

}  // namespace
