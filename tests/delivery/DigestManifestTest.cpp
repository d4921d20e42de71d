// The two line forms of a digest. The store that holds the names is kept to its bounds by the fuzz target and
// sanitizers.
#include "delivery/DigestManifest.h"

#include <gtest/gtest.h>

namespace {

// "name|name|=value".
std::string Parsed(const std::string& text) {
  const DigestManifest manifest = ParseDigestManifest(text.c_str());
  std::string out;
  for (const char* name = manifest.First(); name != nullptr; name = DigestManifest::Next(name))
    out += name + std::string("|");
  return out + "=" + manifest.digestValue;
}

TEST(DigestManifest, Lines) {
  const std::string a = "<Reference URI=\"a\" />\r\n";
  const std::string one = "<DigestValue>one</DigestValue>\r\n";
  const std::string huge(1 << 20, 'A');
  const std::pair<std::string, std::string> rows[] = {
      {"\r\njunk\r\n" + a + one + "<Reference URI=\"b c.txt\" />\r", "a|b c.txt|=one"},
      {"<Reference URI=\"a\" />\n<DigestValue>one</DigestValue>\n", "="},  // bare LF
      {"<Reference URI=\"a\" />", "="},                                    // no CR at the end
      {"<Reference URI=\"\" />\r\n", "="},                                 // no name
      {" " + a + " " + one, "="},                                          // not in the first column
      {"<reference uri=\"a\" />\r\n", "="},                                // case
      {"<Reference URI=\"a\" />\r\r\n", "="},                              // a CR more
      {"<Reference URI=\"a\" b=\"c\" />\r\n", "a\" b=\"c|="},              // taken as it stands
      {"<DigestValue>abc</DigestValue>x\n", "=abc"},  // the byte behind the closing text is not looked at
      {one + "<DigestValue>two</DigestValue>\r\n<DigestValue></DigestValue>\r\n", "=two"},  // an empty one is none
      {"<DigestValue>" + huge + "</DigestValue>\r\n", "=" + huge},
  };
  for (const auto& [text, parsed] : rows) EXPECT_EQ(Parsed(text), parsed) << text.substr(0, 100);
}

}  // namespace
