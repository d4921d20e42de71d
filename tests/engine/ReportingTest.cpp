#include "engine/Reporting.h"

#include <gtest/gtest.h>

#include "tests/support/Texts.h"

TEST(Reporting, TextForms) {
  const MString path(L"C:\\a b");
  EXPECT_EQ(Text(PathAndError(path, 0x8007007Eu)), "C:\\a b 8007007E");
  EXPECT_EQ(Text(PathAndError(path, 32)), "C:\\a b 20");
  EXPECT_EQ(Text(PathAndError(path, 32, ErrorRadix::Decimal)), "C:\\a b 32");
  EXPECT_EQ(Text(PathAndError(MString(L""), 5)), " 5");
  EXPECT_EQ(Text(KeyValueError(MString(L"Soft\\Key"), MString(L"Name"), 5)), "Soft\\Key/Name 5");
  EXPECT_EQ(Text(KeyValueError(MString(L"Soft\\Key"), MString(L"Name"), 5, false)), "Soft\\Key/Name5");
  EXPECT_EQ(Text(KeyAndError(MString(L"Soft\\Key"), 1021)), "Soft\\Key/ 3FD");
  EXPECT_EQ(Text(ErrorAlone(4294967295u)), "4294967295");
  EXPECT_EQ(Text(path), "C:\\a b");  // the caller's text is left alone
}
