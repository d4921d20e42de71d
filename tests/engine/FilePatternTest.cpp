#include "engine/FilePattern.h"

#include <gtest/gtest.h>

#include "tests/support/Texts.h"

TEST(FilePattern, PrefixAndSuffix) {
  struct Row {
    const wchar_t *pattern, *name;
    bool matches;
  };
  // Without a colon the whole pattern is the prefix; only the first and the last colon count; the two may overlap.
  const Row rows[] = {{L"Lumen:.ocx", L"Lumen28.ocx", true},
                      {L"Lumen:.ocx", L"lumen28.ocx", false},
                      {L"Lumen:.ocx", L"Lumen28.dll", false},
                      {L"Lumen:.ocx", L"xLumen28.ocx", false},
                      {L"Lumen", L"Lumen28.anything", true},
                      {L"a:b:c", L"axc", true},
                      {L"a:b:c", L"axb", false},
                      {L":.exe", L"any.exe", true},
                      {L"a:", L"abc", true},
                      {L"ab:bc", L"abc", true},
                      {L"ab:bc", L"ac", false}};
  for (const Row& row : rows) {
    EXPECT_EQ(MatchesPattern(MString(row.name), MString(row.pattern)), row.matches)
        << Text(row.pattern) << " " << Text(row.name);
  }
}

TEST(FilePattern, OfSeveralFilesTheLastIsFoundOrAllInOrder) {
  MStringList entries;
  for (const wchar_t* name : {L"..", L"Lumen1.ocx", L"other.dll", L"Lumen2.ocx", L"x.txt"}) entries.Add(MString(name));
  const MString directory(L"C:\\p\\");
  EXPECT_EQ(Text(FindMatchingFile(entries, directory, MString(L"Lumen:.ocx"))), "C:\\p\\Lumen2.ocx");
  EXPECT_EQ(Text(FindMatchingFile(entries, MString(L"C:\\p"), MString(L"other:"))), "C:\\p\\other.dll");
  EXPECT_EQ(Text(FindMatchingFile(entries, directory, MString(L"none:"))), "");
  MStringList matches;
  CollectMatches(entries, MString(L"C:\\p"), MString(L"Lumen"), matches);
  CollectMatches(entries, MString(L"C:\\p"), MString(L"none"), matches);
  EXPECT_EQ(Keys(&matches), (Lines{"C:\\p\\Lumen1.ocx", "C:\\p\\Lumen2.ocx"}));
}
