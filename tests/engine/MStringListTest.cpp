#include "engine/MStringList.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/Texts.h"

TEST(MStringList, KeepsOrderAndLinksBothWays) {
  MStringList list;
  for (int i = 0; i < 300000; ++i) list.Add(MString(L"x"));  // far deeper than a stack, were clearing recursive
  list.Clear();
  EXPECT_EQ(list.Head(), nullptr);
  EXPECT_TRUE(list.Add(MString(L"a")));
  EXPECT_TRUE(list.Add(MString(L"b"), MString(L"B")));
  EXPECT_TRUE(list.Add(MString()));
  EXPECT_EQ(Keys(&list), (Lines{"a", "b", ""}));
  // Other modules read head, tail and count in that order.
  const MStringList::MStringNode* ends[2] = {};
  std::memcpy(ends, reinterpret_cast<const char*>(&list), sizeof(ends));
  int32_t count = 0;
  std::memcpy(&count, reinterpret_cast<const char*>(&list) + sizeof(ends), sizeof(count));
  EXPECT_EQ(count, 3);
  EXPECT_EQ(ends[0], list.Head());
  EXPECT_EQ(Text(ends[0]->value) + Text(ends[0]->next->value), "aB") << "a plain text stands as key and value";
  EXPECT_EQ(ends[1]->previous->previous, ends[0]);
}
