// The two line forms of a digest, and the store that holds what they name.
#include "delivery/DigestManifest.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<std::string> Names(const DigestManifest& manifest) {
  std::vector<std::string> names;
  for (const char* name = manifest.First(); name != nullptr; name = DigestManifest::Next(name)) names.push_back(name);
  return names;
}

std::string Reference(const std::string& name) {
  return "<Reference URI=\"" + name + "\" />\r\n";
}

TEST(DigestManifest, ReferenceLines) {
  const struct {
    std::string text;
    std::vector<std::string> names;
  } rows[] = {
      {Reference("a.exe") + Reference("b c.txt"), {"a.exe", "b c.txt"}},
      {"<Reference URI=\"a\" />\r", {"a"}},                    // the end of the text ends the line
      {"<Reference URI=\"a\" />\n", {}},                       // bare LF
      {"<Reference URI=\"a\" />", {}},                         // no CR at the end
      {"<Reference URI=\"\" />\r\n", {}},                      // no name
      {" " + Reference("a"), {}},                              // not in the first column
      {"<reference uri=\"a\" />\r\n", {}},                     // case
      {"<Reference URI=\"a\" />\r\r\n", {}},                   // a CR more
      {"<Reference URI=\"a\" b=\"c\" />\r\n", {"a\" b=\"c"}},  // taken as it stands
      {"\r\n\r\n" + Reference("a") + "junk", {"a"}},
  };
  for (const auto& row : rows) EXPECT_EQ(Names(ParseDigestManifest(row.text.c_str())), row.names) << row.text;
}

TEST(DigestManifest, ValueLines) {
  const struct {
    std::string text;
    std::string value;
  } rows[] = {
      {"<DigestValue>abc=</DigestValue>\r\n", "abc="},
      {"<DigestValue>abc</DigestValue>x\n", "abc"},  // the byte behind the closing text is not looked at
      {"<DigestValue>abc</DigestValue>\n", ""},
      {"<DigestValue></DigestValue>\r\n", ""},
      {"<DigestValue>one</DigestValue>\r\n<DigestValue>two</DigestValue>\r\n", "two"},
      {"<DigestValue>one</DigestValue>\r\n<DigestValue></DigestValue>\r\n", "one"},  // an empty one is none
      {"<DigestValue>" + std::string(1 << 20, 'A') + "</DigestValue>\r\n", std::string(1 << 20, 'A')},
  };
  for (const auto& row : rows) EXPECT_EQ(ParseDigestManifest(row.text.c_str()).digestValue, row.value);
}

TEST(DigestManifest, TheStoreGrowsByItsRule) {
  DigestManifest manifest;
  EXPECT_EQ(manifest.First(), nullptr);
  const struct {
    size_t length;
    uint64_t used;
    uint64_t capacity;
  } rows[] = {
      {1000, 1001, 1024},   // the first block
      {21, 1023, 1024},     // fills it to the last byte: 1,001 + 21 + 2
      {1, 1025, 2048},      // doubles
      {5000, 6026, 12054},  // twice what is needed when double is not enough
  };
  for (const auto& row : rows) {
    manifest.AddReference(std::string(row.length, 'n'));
    EXPECT_EQ(manifest.used, row.used);
    EXPECT_EQ(manifest.capacity, row.capacity);
    EXPECT_EQ(manifest.references[manifest.used], 0) << "ended by an empty name";
  }
  std::vector<std::string> names;
  for (const auto& row : rows) names.emplace_back(row.length, 'n');
  EXPECT_EQ(Names(manifest), names);
}

TEST(DigestManifest, TheBeginningOfItsNameIsTheExecutable) {
  EXPECT_TRUE(NamesExecutable(L"Demo.exe", L"Demo.exe"));
  EXPECT_TRUE(NamesExecutable(L"D", L"Demo.exe"));
  EXPECT_FALSE(NamesExecutable(L"demo.exe", L"Demo.exe"));
  EXPECT_FALSE(NamesExecutable(L"Demo.exe2", L"Demo.exe"));
}

}  // namespace
