#include "engine/StringVector.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Counts what is owned, and refuses copies on demand.
class CountingVector final : public SMImplementation::PointerVector {
 public:
  explicit CountingVector(int* to) : owned(to) {}
  ~CountingVector() override { Clear(); }
  void DeleteItem(void* item) override {
    delete static_cast<int*>(item);
    --*owned;
  }
  void* CopyItem(const void* item) override {
    if (refuse) return nullptr;
    ++*owned;
    return new int(*static_cast<const int*>(item) + 1);
  }

  int* owned;
  bool refuse = false;
};

}  // namespace

TEST(PointerVector, HoldsCopiesGrowsAndDeletesEachOnce) {
  int owned = 0;
  {
    CountingVector vector(&owned);
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(vector.Append(&i));
    EXPECT_EQ(owned, 100);
    for (uint32_t i = 0; i < 100; ++i) EXPECT_EQ(*static_cast<int*>(vector.ItemAt(i)), static_cast<int>(i) + 1);
    vector.refuse = true;
    EXPECT_FALSE(vector.Append(&owned));
    EXPECT_EQ(vector.Count(), 100u);
  }
  EXPECT_EQ(owned, 0);
}

TEST(StringVector, OwnsItsTextsAndSortsByByteValue) {
  SASM::StringVector vector(0);  // grows from no capacity at all
  std::string passing = "b";
  EXPECT_TRUE(vector.Append(passing.c_str()));
  passing = "changed";
  for (const char* text : {"\xE9", "B", "", "ab", "a"}) EXPECT_TRUE(vector.Append(text));
  vector.Sort();
  const char* const wanted[] = {"", "B", "a", "ab", "b", "\xE9"};
  ASSERT_EQ(vector.Count(), 6u);
  for (uint32_t i = 0; i < 6; ++i) EXPECT_STREQ(vector.TextAt(i), wanted[i]);
}
