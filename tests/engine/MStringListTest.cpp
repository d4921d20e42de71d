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

TEST(MStringList, ContainsComparesWholeTextsOrTakesEntriesAsPrefixes) {
  MStringList list;
  EXPECT_FALSE(list.Contains(MString(L""), true));
  list.Add(MString(L"Lumen"), MString(L"not looked at"));
  list.Add(MString(L"other"));
  const std::tuple<const wchar_t*, bool, bool> rows[] = {
      {L"Lumen", true, true}, {L"Lumen28.ocx", false, true}, {L"Lum", false, false}, {L"lumen", false, false}};
  for (const auto& [text, whole, prefix] : rows) {
    EXPECT_EQ(list.Contains(MString(text)), whole) << Text(text);
    EXPECT_EQ(list.Contains(MString(text), true), prefix) << Text(text);
  }
}
