// The one check that everything signed rests on, against messages that openssl made under the module's own authority.
#include "delivery/SignedMessage.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "delivery/TrustAnchor.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes ReadFileBytes(const std::string& name) {
  std::ifstream in(std::string(LUMEN_SOURCE_DIR) + "/tests/delivery/anchor/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

Bytes BuiltIn() {
  Bytes anchor;
  EXPECT_TRUE(LoadBuiltInAnchor(anchor));
  EXPECT_EQ(anchor.size(), 999u);
  return anchor;
}

TEST(SignedMessage, GivesOutWhatWasSigned) {
  for (const std::string name : {"shortcut", "package", "digest"}) {
    const Bytes message = ReadFileBytes(name + ".p7m");
    ASSERT_FALSE(message.empty());
    Bytes content;
    EXPECT_TRUE(VerifySignedMessage(message, BuiltIn(), content)) << name;
    EXPECT_EQ(content, ReadFileBytes(name + ".content")) << name;
  }
}

TEST(SignedMessage, EveryChangedOrMissingByteIsRefused) {
  const Bytes good = ReadFileBytes("shortcut.p7m");
  const Bytes signedContent = ReadFileBytes("shortcut.content");
  for (size_t at = 0; at < good.size(); at += 16) {
    Bytes changed = good;
    changed[at] ^= 0x01;
    Bytes content;
    // A bit in an unsigned place may leave the message good, but then what it says is what was signed.
    if (VerifySignedMessage(changed, BuiltIn(), content)) EXPECT_EQ(content, signedContent) << at;
    content.clear();
    EXPECT_FALSE(VerifySignedMessage({good.data(), at}, BuiltIn(), content)) << at;
    EXPECT_TRUE(content.empty());
  }
  const auto at = std::search(good.begin(), good.end(), signedContent.begin(), signedContent.end()) - good.begin();
  ASSERT_LT(static_cast<size_t>(at), good.size());
  for (size_t i = 0; i < signedContent.size(); ++i) {
    Bytes changed = good;
    changed[static_cast<size_t>(at) + i] ^= 0x20;
    Bytes content;
    EXPECT_FALSE(VerifySignedMessage(changed, BuiltIn(), content)) << i;
  }
}

TEST(SignedMessage, AnchorsThatAreNone) {
  const Bytes message = ReadFileBytes("shortcut.p7m");
  Bytes changed = BuiltIn();
  changed[500] ^= 1;
  Bytes content;
  EXPECT_FALSE(VerifySignedMessage(message, {}, content));
  EXPECT_FALSE(VerifySignedMessage(message, changed, content));
  EXPECT_FALSE(VerifySignedMessage(message, message, content));
  EXPECT_FALSE(VerifySignedMessage({}, BuiltIn(), content));
}

TEST(TrustAnchor, AFileTakesThePlaceOfTheBuiltInOne) {
  Bytes anchor;
  EXPECT_TRUE(LoadAnchor(nullptr, anchor));
  EXPECT_TRUE(LoadAnchor(L"", anchor));
  EXPECT_EQ(anchor, BuiltIn());
  EXPECT_FALSE(LoadAnchor(L"C:\\no such anchor", anchor));
  EXPECT_TRUE(LoadAnchor(L"C:\\windows\\win.ini", anchor));
  EXPECT_NE(anchor, BuiltIn());
}

}  // namespace
