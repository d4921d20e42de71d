// Where products may come from and what they may be called.
#include "delivery/ProductUrl.h"

#include <gtest/gtest.h>

#include "delivery/ProductName.h"

namespace {

const std::string k32(32, 'a');

TEST(ProductUrl, OneLabelBelowTheVendorsDomain) {
  const struct {
    std::string url, host = {}, path = {};
    bool secure = false;
  } rows[] = {
      {"http://get.corva.example/a/b.package?c=d#e", "get.corva.example", "/a/b.package?c=d#e"},
      {"https://0-9.corva.example/http://evil.example/", "0-9.corva.example", "/http://evil.example/", true},
      {"http://" + k32 + ".corva.example/", k32 + ".corva.example", "/"},
      {"http://" + k32 + "a.corva.example/"},      // a label of 33
      {"https://"},                                // eight, with nothing behind
      {"HTTP://get.corva.example/"},               // upper-case scheme
      {"http://Get.corva.example/"},               // upper-case label
      {"http://get.Corva.example/"},               // upper-case domain
      {"http://a.b.corva.example/"},               // two labels
      {"http://get.corva.example:80/"},            // a port
      {"http://get.corva.example"},                // no path
      {"http://get.corva.example.evil.example/"},  // below another one
      {"http://evil.example/.corva.example/"},     // the domain in the path
  };
  for (const auto& row : rows) {
    std::string host = "x", path = "x";
    bool secure = !row.secure;
    EXPECT_EQ(ParseProductUrl(row.url.c_str(), host, path, secure), !row.host.empty()) << row.url;
    EXPECT_EQ(host, row.host);
    EXPECT_EQ(path, row.path);
    if (!row.host.empty()) EXPECT_EQ(secure, row.secure) << row.url;
  }
}

TEST(ProductName, AShortPlainWord) {
  for (const std::string& name : {std::string("AddOn70"), std::string(31, 'z')}) EXPECT_TRUE(IsPlainProductName(name));
  for (const char* const name : {"", "a-b", "a.b", "a\\b", "a/b", "a b", "\xE4"}) {
    EXPECT_FALSE(IsPlainProductName(name)) << name;
  }
  EXPECT_FALSE(IsPlainProductName(k32));
}

}  // namespace
