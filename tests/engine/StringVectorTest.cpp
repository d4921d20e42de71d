#include "engine/StringVector.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Counts what is owned, and refuses copies on demand.
class CountingVector final : public SMImplementation::PointerVector {
 public:
  CountingVector(int* owned, bool* refuse) : owned_(owned), refuse_(refuse) {}
  ~CountingVector() override { Clear(); }
  void DeleteItem(void* item) override {
    delete static_cast<int*>(item);
    --*owned_;
  }
  void* CopyItem(const void* item) override {
    if (*refuse_) return nullptr;
    ++*owned_;
    return new int(*static_cast<const int*>(item) + 1);
  }

 private:
  int* owned_;
  bool* refuse_;
};

}  // namespace

TEST(PointerVector, HoldsCopiesGrowsAndDeletesEachOnce) {
  int owned = 0;
  bool refuse = false;
  {
    CountingVector vector(&owned, &refuse);
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(vector.Append(&i));
    EXPECT_EQ(vector.Count(), 100u);
    EXPECT_EQ(owned, 100);
    for (uint32_t i = 0; i < 100; ++i) EXPECT_EQ(*static_cast<int*>(vector.ItemAt(i)), static_cast<int>(i) + 1);
    refuse = true;
    const int more = 1;
    EXPECT_FALSE(vector.Append(&more));
    EXPECT_EQ(vector.Count(), 100u);
    refuse = false;
    EXPECT_TRUE(vector.Append(&more));
    EXPECT_EQ(vector.Count(), 101u);
  }
  EXPECT_EQ(owned, 0);
}

TEST(PointerVector, GrowsFromNoCapacityAtAll) {
  SASM::StringVector vector(0);
  EXPECT_TRUE(vector.Append("a"));
  EXPECT_STREQ(vector.TextAt(0), "a");
}

TEST(StringVector, OwnsItsTextsAndSortsByByteValue) {
  SASM::StringVector vector;
  {
    std::string passing = "b";
    EXPECT_TRUE(vector.Append(passing.c_str()));
    passing = "changed";
  }
  for (const char* text : {"\xE9", "B", "", "ab", "a"}) EXPECT_TRUE(vector.Append(text));
  vector.Sort();
  const char* const wanted[] = {"", "B", "a", "ab", "b", "\xE9"};
  ASSERT_EQ(vector.Count(), 6u);
  for (uint32_t i = 0; i < 6; ++i) EXPECT_STREQ(vector.TextAt(i), wanted[i]);
}
