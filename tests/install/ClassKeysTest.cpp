#include "install/ClassKeys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
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

size_t CountOf(const std::vector<std::string>& keys, const char* beginning) {
  return static_cast<size_t>(std::count_if(keys.begin(), keys.end(),
                                           [beginning](const std::string& key) { return key.starts_with(beginning); }));
}

}  // namespace

TEST(ClassKeys, FamiliesHoldOneAnotherInOrder) {
  const auto machine = Walk(ClassKeyFamily::MachineClasses);
  const auto control = Walk(ClassKeyFamily::Control);
  const auto second = Walk(ClassKeyFamily::SecondControl);
  const auto root = Walk(ClassKeyFamily::ClassRoot);
  const auto names = Walk(ClassKeyFamily::ProgramIds);
  ASSERT_EQ(machine.size(), 13u);
  for (size_t i = 0; i < 10; ++i) {
    EXPECT_TRUE(machine[i].starts_with(i % 2 == 0 ? "MACHINE\\Software\\Classes\\CLSID\\{"
                                                  : "MACHINE\\Software\\Classes\\Interface\\{"));
  }
  EXPECT_TRUE(std::equal(control.begin(), control.end(), machine.begin() + 10));
  EXPECT_EQ(CountOf(second, "MACHINE\\Software\\Classes\\CLSID\\{"), 2u);
  EXPECT_EQ(CountOf(second, "MACHINE\\Software\\Classes\\TypeLib\\{"), 1u);
  ASSERT_EQ(names.size(), 13u);
  ASSERT_EQ(root.size(), 14u + 13 + 4 + 11 + 1 + 2);
  EXPECT_TRUE(std::equal(names.begin(), names.end(), root.begin() + 14));
  EXPECT_EQ(root[4], "CLASSES_ROOT\\TypeLib\\{57A0E746-3863-4D20-A811-950C84F1DB9B}");
  EXPECT_EQ(root[27], "CLASSES_ROOT\\HalcyonicsLumenPaper.HalcyonicsLumenPaper");
  EXPECT_EQ(root.back(),
            "MACHINE\\Software\\Microsoft\\Internet Explorer\\NavigatorPluginsList\\Tidewater "
            "Lumen\\application/x-tidewater-lumen");
  for (const auto& keys : {root, names}) {
    EXPECT_EQ(std::count(keys.begin(), keys.end(), "CLASSES_ROOT\\TidewaterLumen.TidewaterLumen.2"), 0);
  }
}

TEST(ClassKeys, IdentifiersAreWrittenInUpperCase) {
  for (const auto family : {ClassKeyFamily::MachineClasses, ClassKeyFamily::SecondControl, ClassKeyFamily::ClassRoot}) {
    for (const std::string& key : Walk(family)) {
      const size_t brace = key.find('{');
      if (brace == std::string::npos) continue;
      EXPECT_EQ(key.size() - brace, 38u) << key;
      EXPECT_EQ(key.find_first_not_of("0123456789ABCDEF{}-", brace), std::string::npos) << key;
    }
  }
}

TEST(ClassKeys, NumericNamesSortBehindOthersAndByValue) {
  // Each name sorts behind the one before it.
  const char* const ordered[] = {
      "-1", "10a", "ABC", "abc", "abc1", "", "1", "9", "10", "99999999999999999999", "100000000000000000000"};
  for (size_t i = 0; i < std::size(ordered); ++i) {
    for (size_t j = 0; j < std::size(ordered); ++j) {
      const int compared = CompareKeyNames(ordered[i], ordered[j]);
      EXPECT_EQ(compared < 0, i < j) << ordered[i] << " " << ordered[j];
      EXPECT_EQ(compared == 0, i == j) << ordered[i] << " " << ordered[j];
    }
  }
  EXPECT_EQ(CompareKeyNames("007", "7"), 0);
  EXPECT_EQ(CompareKeyNames("", "000"), 0);
}
