// Update marks on the real registry of the prefix.
#include "delivery/UpdateMarks.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "engine/DllHelpers.h"
#include "engine/MStringList.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"

namespace {

constexpr char kUpdateKey[] = "Software\\Halcyonics\\LumenPlayerUpdate";

class UpdateMarks : public testing::Test {
 protected:
  UpdateMarks() { Clear(); }
  ~UpdateMarks() override { Clear(); }

  static void Clear() {
    (void)DeleteKeyTree(HKEY_CURRENT_USER, L"Software\\Halcyonics");
    (void)DeleteKeyTree(HKEY_LOCAL_MACHINE, L"Software\\Halcyonics");
    (void)DeleteValue(HKEY_CURRENT_USER, kRunOnceKey, "LumenPlayerUpdate");
  }
  static std::string Value(const char* key, const char* name) {
    return ReadText(HKEY_CURRENT_USER, key, name).value_or("(none)");
  }
};

TEST_F(UpdateMarks, AnUpdateIsStoredAndRunAtTheNextLogon) {
  EXPECT_FALSE(MarkAutoUpdaterForRun(nullptr, nullptr));
  EXPECT_TRUE(
      MarkAutoUpdaterForRun("<update version=\"29.0\"><meta>say \"hi\" &quot;you&quot;</meta>", "C:\\a b\\u.exe"));
  EXPECT_EQ(Value(kRunOnceKey, "LumenPlayerUpdate"), "C:\\a b\\u.exe -update activex");
  MStringList list;
  EXPECT_TRUE(ReadUpdateDescription(&list));
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(ToUtf8(list.Head()->key.View()), "say 'hi' \"you\"");

  EXPECT_TRUE(MarkAutoUpdaterForRun("x", std::string(300, 'p').c_str()));
  EXPECT_EQ(Value(kRunOnceKey, "LumenPlayerUpdate"), std::string(243, 'p') + " -update activex");
  EXPECT_TRUE(MarkAutoUpdaterForRun("x", nullptr));
  EXPECT_NE(Value(kRunOnceKey, "LumenPlayerUpdate").find("delivery_tests.exe -update activex"), std::string::npos);
}

TEST_F(UpdateMarks, ARejectedVersionStaysQuiet) {
  EXPECT_FALSE(MarkUpdateRejected()) << "nothing is stored";
  ASSERT_TRUE(MarkAutoUpdaterForRun("<update version=\"29.0\">", "C:\\u.exe"));
  EXPECT_TRUE(MarkUpdateRejected());
  EXPECT_EQ(Value(kUpdateKey, "Rejected"), "29.0");
  (void)DeleteValue(HKEY_CURRENT_USER, kRunOnceKey, "LumenPlayerUpdate");
  EXPECT_TRUE(MarkAutoUpdaterForRun("<update version=\"29.0\"><meta>again</meta>", "C:\\u.exe"));
  EXPECT_EQ(Value(kUpdateKey, "description"), "<update version=\"29.0\">");
  EXPECT_EQ(Value(kRunOnceKey, "LumenPlayerUpdate"), "(none)");
  EXPECT_TRUE(MarkAutoUpdaterForRun("<update version=\"30.0\">", "C:\\u.exe"));
  EXPECT_EQ(Value(kUpdateKey, "description"), "<update version=\"30.0\">");
}

TEST_F(UpdateMarks, WithoutAVersionNothingIsRejected) {
  ASSERT_TRUE(MarkAutoUpdaterForRun("<update>", nullptr));
  EXPECT_FALSE(MarkUpdateRejected());
  EXPECT_EQ(Value(kUpdateKey, "Rejected"), "(none)");
  MStringList list;
  EXPECT_FALSE(ReadUpdateDescription(&list));
}

}  // namespace
