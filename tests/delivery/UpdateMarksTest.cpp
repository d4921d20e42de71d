// Update marks on the real registry of the prefix.
#include "delivery/UpdateMarks.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "engine/DllHelpers.h"
#include "engine/ProductKeys.h"
#include "engine/Registry.h"
#include "tests/support/Texts.h"

namespace {

constexpr char kMark[] = "LumenPlayerUpdate";
constexpr char kUpdateKey[] = "Software\\Halcyonics\\LumenPlayerUpdate";

class UpdateMarks : public testing::Test {
 protected:
  UpdateMarks() { Clear(); }
  ~UpdateMarks() override { Clear(); }

  static void Clear() {
    (void)DeleteKeyTree(HKEY_CURRENT_USER, L"Software\\Halcyonics");
    (void)DeleteKeyTree(HKEY_LOCAL_MACHINE, L"Software\\Halcyonics");
    (void)DeleteValue(HKEY_CURRENT_USER, kRunOnceKey, kMark);
  }
  static std::string Value(const char* key, const char* name) {
    return ReadText(HKEY_CURRENT_USER, key, name).value_or("(none)");
  }
};

TEST_F(UpdateMarks, AnUpdateIsStoredAndRunAtTheNextLogonUnlessItWasRejected) {
  EXPECT_FALSE(MarkAutoUpdaterForRun(nullptr, nullptr));
  EXPECT_FALSE(MarkUpdateRejected()) << "nothing is stored";
  ASSERT_TRUE(MarkAutoUpdaterForRun("<update>", nullptr));
  EXPECT_NE(Value(kRunOnceKey, kMark).find("delivery_tests.exe -update activex"), std::string::npos);
  EXPECT_FALSE(MarkUpdateRejected()) << "no version";
  MStringList list;
  EXPECT_FALSE(ReadUpdateDescription(&list)) << "no block";

  const std::string first = "<update version=\"29.0\"><meta>say \"hi\" &quot;you&quot;</meta>";
  EXPECT_TRUE(MarkAutoUpdaterForRun(first.c_str(), std::string(300, 'p').c_str()));
  EXPECT_EQ(Value(kRunOnceKey, kMark), std::string(243, 'p') + " -update activex");
  EXPECT_TRUE(ReadUpdateDescription(&list));
  EXPECT_EQ(Keys(&list), Lines{"say 'hi' \"you\""});
  EXPECT_TRUE(MarkUpdateRejected());
  EXPECT_EQ(Value(kUpdateKey, "Rejected"), "29.0");
  (void)DeleteValue(HKEY_CURRENT_USER, kRunOnceKey, kMark);
  EXPECT_TRUE(MarkAutoUpdaterForRun("<update version=\"29.0\"><meta>again</meta>", "C:\\u.exe"));
  EXPECT_EQ(Value(kUpdateKey, "description"), first);
  EXPECT_EQ(Value(kRunOnceKey, kMark), "(none)");
  EXPECT_TRUE(MarkAutoUpdaterForRun("<update version=\"30.0\">", "C:\\u.exe"));
  EXPECT_EQ(Value(kUpdateKey, "description"), "<update version=\"30.0\">");
}

}  // namespace
