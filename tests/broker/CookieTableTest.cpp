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

TEST(CookieTable, EachSortOfRecordKeepsWhatItNeeds) {
  CookieTable table;
  uint32_t file = 0, search = 0, chosen = 0, refused = 7;
  ASSERT_TRUE(table.AddFileCookie(100, file, true, L"C:\\a", nullptr));
  ASSERT_TRUE(table.AddFileCookie(200, search, false, L"C:\\b", nullptr));
  ASSERT_TRUE(table.AddFileCookie(0, chosen, false, L"C:\\c", std::make_unique<DeferredOpen>()));
  EXPECT_FALSE(table.AddFileCookie(0, refused, true, L"C:\\d", nullptr));
  EXPECT_EQ(refused, 0u);
  EXPECT_FALSE(table.AddFileCookie(kNoHandle, refused, true, L"C:\\d", nullptr));

  EXPECT_EQ(table.FindCookie(file)->filePath, L"C:\\a");
  EXPECT_EQ(table.FindCookie(file)->sniffActive, 1);
  EXPECT_FALSE(table.FindCookie(search)->filePath.has_value());
  EXPECT_EQ(table.FindCookie(search)->sniffActive, 0);
  EXPECT_EQ(table.FindCookie(chosen)->filePath, L"C:\\c");
  EXPECT_EQ(table.FindCookie(chosen)->handle, kNoHandle);

  // A file chosen and not yet opened has no raw handle; an unknown number neither.
  intptr_t handle = 0;
  EXPECT_TRUE(table.ResolveRawHandle(search, handle));
  EXPECT_EQ(handle, 200);
  EXPECT_FALSE(table.ResolveRawHandle(chosen, handle));
  EXPECT_EQ(handle, kNoHandle);
  EXPECT_FALSE(table.ResolveRawHandle(99, handle));
}

}  // namespace
