// Where products may come from and what they may be called.
#include "delivery/ProductUrl.h"

#include <gtest/gtest.h>

#include "delivery/ProductName.h"

namespace {

const std::string k32(32, 'a');
const std::string k33(33, 'a');

TEST(ProductUrl, OneLabelBelowTheVendorsDomain) {
  const struct {
    std::string url;
    std::string host;
    std::string path;
    bool secure;
  } rows[] = {
      {"http://get.corva.example/", "get.corva.example", "/", false},
      {"https://get.corva.example/", "get.corva.example", "/", true},
      {"http://get.corva.example/a/b.package?c=d#e", "get.corva.example", "/a/b.package?c=d#e", false},
      {"http://0-9.corva.example/", "0-9.corva.example", "/", false},
      {"http://" + k32 + ".corva.example/", k32 + ".corva.example", "/", false},
      {"https://get.corva.example/http://evil.example/", "get.corva.example", "/http://evil.example/", true},
  };
  for (const auto& row : rows) {
    std::string host = "x", path = "x";
    bool secure = !row.secure;
    EXPECT_TRUE(ParseProductUrl(row.url.c_str(), host, path, secure)) << row.url;
    EXPECT_EQ(host, row.host);
    EXPECT_EQ(path, row.path);
    EXPECT_EQ(secure, row.secure);
  }
}

TEST(ProductUrl, EverythingElseIsRefused) {
  const std::string urls[] = {
      "",
      "http://",                                 // seven bytes
      "http://g",                                // eight, with no dot
      "https://",                                // eight, with nothing behind
      "HTTP://get.corva.example/",               // upper-case scheme
      " http://get.corva.example/",              // a blank in front
      "http://get.Corva.example/",               // upper-case domain
      "http://a.b.corva.example/",               // two labels
      "http://.corva.example/",                  // none
      "http://" + k33 + ".corva.example/",       // a label of 33
      "http://get.corva.example:80/",            // a port
      "http://get.corva.example",                // no path
      "http://get.corva.example.evil.example/",  // below another one
      "http://user@get.corva.example/",          // a user
      "http://evil.example#.corva.example/",     // a fragment
      "http://evil.example/.corva.example/",     // the domain in the path
      "http://g\xE4t.corva.example/",            // beyond ASCII
  };
  for (const std::string& url : urls) {
    std::string host = "x", path = "x";
    bool secure = false;
    EXPECT_FALSE(ParseProductUrl(url.c_str(), host, path, secure)) << url;
    EXPECT_EQ(host + path, "") << url;
  }
  std::string host, path;
  bool secure = false;
  EXPECT_FALSE(ParseProductUrl(nullptr, host, path, secure));
}

TEST(ProductName, AShortPlainWord) {
  for (const std::string& name : {std::string("a"), std::string("AddOn7"), std::string(31, 'z'), std::string("con")}) {
    EXPECT_TRUE(IsPlainProductName(name)) << name;
  }
  for (const std::string& name :
       {std::string(), std::string(32, 'z'), std::string("a-b"), std::string("a.b"), std::string("a\\b"),
        std::string("a b"), std::string("\xE4"), std::string("a\0b", 3)}) {
    EXPECT_FALSE(IsPlainProductName(name)) << name;
  }
}

}  // namespace
