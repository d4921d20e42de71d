#include "install/ClassKeys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Walk(ClassKeyFamily family) {
  std::vector<std::string> keys;
  VisitClassKeys(
      family,
      [](const char* key, void* context) { static_cast<std::vector<std::string>*>(context)->emplace_back(key); },
      &keys);
  return keys;
}

}  // namespace

TEST(ClassKeys, FamiliesHoldOneAnotherInOrder) {
  const auto machine = Walk(ClassKeyFamily::MachineClasses);
  const auto control = Walk(ClassKeyFamily::Control);
  const auto root = Walk(ClassKeyFamily::ClassRoot);
  const auto names = Walk(ClassKeyFamily::ProgramIds);
  ASSERT_EQ(machine.size(), 13u);
  ASSERT_EQ(root.size(), 14u + 13 + 4 + 11 + 1 + 2);
  EXPECT_TRUE(std::equal(control.begin(), control.end(), machine.begin() + 10));
  EXPECT_TRUE(std::equal(names.begin(), names.end(), root.begin() + 14));
  EXPECT_EQ(std::count(root.begin(), root.end(), "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.2"), 0);
}

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
