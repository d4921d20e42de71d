// The one check that everything signed rests on, against messages that openssl made under the module's own authority.
#include "delivery/SignedMessage.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <psapi.h>
#include <wincrypt.h>

#include <string>

#include "delivery/TrustAnchor.h"
#include "tests/delivery/AddOnMaterial.h"
#include "tests/support/CountFixture.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes BuiltIn() {
  Bytes anchor;
  EXPECT_TRUE(LoadBuiltInAnchor(anchor));
  EXPECT_EQ(anchor.size(), 999u);
  return anchor;
}

TEST(SignedMessage, GivesOutWhatWasSigned) {
  for (const std::string name : {"shortcut", "package", "digest"}) {
    const Bytes message = addon::CommittedBytes(name + ".p7m");
    ASSERT_FALSE(message.empty());
    Bytes content;
    EXPECT_TRUE(VerifySignedMessage(message, BuiltIn(), content)) << name;
    EXPECT_EQ(content, addon::CommittedBytes(name + ".content")) << name;
  }
}

TEST(SignedMessage, AnchorsThatAreNone) {
  const Bytes message = addon::CommittedBytes("shortcut.p7m");
  Bytes changed = BuiltIn();
  changed[500] ^= 1;
  Bytes content;
  EXPECT_FALSE(VerifySignedMessage(message, {}, content));
  EXPECT_FALSE(VerifySignedMessage(message, changed, content));
  EXPECT_FALSE(VerifySignedMessage({}, BuiltIn(), content));
}

// Made by openssl under authorities of the build's own.
enum class Verdict { Refused, Good, GoodIfPlatformCan };
constexpr Verdict kRefused = Verdict::Refused;
struct MessageRow {
  const char* name;
  Verdict verdict;
};
constexpr MessageRow kMessages[] = {
    {"chain0", Verdict::Good},           // the anchor issued the signer
    {"chain1", Verdict::Good},           // one issuer between
    {"chain8", Verdict::Good},           // the most there may be
    {"chain9", kRefused},                // one more
    {"self-issued-top", Verdict::Good},  // the anchor itself is in the message
    {"twin-top", kRefused},              // another of the anchor's name is
    {"stranger", kRefused},              // another authority's
    {"self-signed", kRefused},           // a signer who is his own authority
    {"missing-link", kRefused},          // an issuer is not in the message
    {"no-signer", kRefused},             // nor is the signer
    {"detached", kRefused},              // nor is the content
    {"expired-signer", kRefused},
    {"expired-link", kRefused},
    {"future-signer", kRefused},
    {"future-link", kRefused},
    {"curve-link", Verdict::Good},                   // an issuer with an elliptic curve key
    {"curve-signer", Verdict::GoodIfPlatformCan},    // a signer with one
    {"two-good", Verdict::GoodIfPlatformCan},        // two signers
    {"two-good-first", Verdict::GoodIfPlatformCan},  // of whom only the first counts
    {"two-stranger-first", kRefused},
};

// Some platforms cannot judge every kind of signer. The walk of the certificates begins where they can.
bool PlatformOpens(const Bytes& message) {
  CRYPT_VERIFY_MESSAGE_PARA parameters = {};
  parameters.cbSize = sizeof(parameters);
  parameters.dwMsgAndCertEncodingType = X509_ASN_ENCODING | PKCS_7_ASN_ENCODING;
  DWORD size = 4096;
  Bytes opened(size);
  return CryptVerifyMessageSignature(&parameters, 0, message.data(), static_cast<DWORD>(message.size()), opened.data(),
                                     &size, nullptr);
}

TEST(SignedMessage, ChainsThatLeadToTheAnchorAndThoseThatDoNot) {
  const Bytes anchor = addon::MessageBytes("anchor.der");
  const Bytes stranger = addon::MessageBytes("stranger.der");
  const Bytes signedContent = addon::MessageBytes("content");
  for (const MessageRow& row : kMessages) {
    const Bytes message = addon::MessageBytes(std::string(row.name) + ".p7m");
    const bool good =
        row.verdict == Verdict::Good || (row.verdict == Verdict::GoodIfPlatformCan && PlatformOpens(message));
    Bytes content;
    EXPECT_EQ(VerifySignedMessage(message, anchor, content), good) << row.name;
    EXPECT_EQ(content, good ? signedContent : Bytes()) << row.name;
    const bool strangers = std::string(row.name) == "stranger" || std::string(row.name) == "two-stranger-first";
    if (!strangers) EXPECT_FALSE(VerifySignedMessage(message, stranger, content)) << row.name;
  }
  Bytes content;
  EXPECT_TRUE(VerifySignedMessage(addon::MessageBytes("stranger.p7m"), stranger, content));
  EXPECT_FALSE(VerifySignedMessage(addon::MessageBytes("chain1.p7m"), addon::MessageBytes("empty.der"), content));
}

TEST(SignedMessage, NothingButWhatWasSignedComesOutOfDamagedOnes) {
  const Bytes anchor = addon::MessageBytes("anchor.der");
  const Bytes signedContent = addon::MessageBytes("content");
  for (const char* const name : {"chain0.p7m", "chain8.p7m", "self-issued-top.p7m", "two-good.p7m", "curve-link.p7m"}) {
    const Bytes good = addon::MessageBytes(name);
    for (size_t at = 0; at < good.size(); at += 64) {
      Bytes content;
      EXPECT_FALSE(VerifySignedMessage({good.data(), at}, anchor, content)) << name << " cut at " << at;
      for (const uint8_t bit : {uint8_t{0x01}, uint8_t{0x80}}) {
        Bytes changed = good;
        changed[at] ^= bit;
        if (VerifySignedMessage(changed, anchor, content)) EXPECT_EQ(content, signedContent) << name << " at " << at;
      }
    }
  }
}

size_t PrivateBytes() {
  PROCESS_MEMORY_COUNTERS_EX counters = {};
  GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof(counters));
  return counters.PrivateUsage;
}

TEST(SignedMessage, NothingIsLeftBehindByAnyOutcome) {
  const Bytes anchor = addon::MessageBytes("anchor.der");
  std::vector<Bytes> messages;
  for (const MessageRow& row : kMessages) messages.push_back(addon::MessageBytes(std::string(row.name) + ".p7m"));
  DWORD handles[2] = {};
  size_t bytes[2] = {};
  for (int phase = 0; phase < 2; ++phase) {
    for (int round = 0; round < 20; ++round) {
      Bytes content;
      for (const Bytes& message : messages) (void)VerifySignedMessage(message, anchor, content);
    }
    handles[phase] = counts::KernelHandles();
    bytes[phase] = PrivateBytes();
  }
  EXPECT_EQ(handles[1], handles[0]);
  // Twenty rounds of one certificate lost in each message would be a quarter of a megabyte.
  EXPECT_LT(bytes[1], bytes[0] + 200000);
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
