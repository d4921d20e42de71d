// The one check that everything signed rests on, against messages that openssl made under authorities of the build's
// own. What the built-in one signed is in ProductStoreTest.
#include "delivery/SignedMessage.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <psapi.h>
#include <wincrypt.h>

#include <string>

#include "tests/delivery/AddOnMaterial.h"

namespace {

using Bytes = std::vector<uint8_t>;

enum class Verdict { Refused, Good, GoodIfPlatformCan };
constexpr Verdict kRefused = Verdict::Refused;
constexpr std::pair<const char*, Verdict> kMessages[] = {
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
    {"expired-signer", kRefused},        // below a good issuer
    {"expired-link", kRefused},          // below the anchor
    {"future-signer", kRefused},
    {"future-link", kRefused},
    {"curve-link", Verdict::Good},                 // an issuer with an elliptic curve key
    {"curve-signer", Verdict::GoodIfPlatformCan},  // a signer with one
    {"two-good", Verdict::GoodIfPlatformCan},      // two signers, of whom the first counts
    {"two-stranger-first", kRefused},
};

Bytes Message(const std::string& name) {
  return addon::MessageBytes(name + ".p7m");
}

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
  const Bytes signedContent = addon::MessageBytes("content");
  for (const auto& [name, verdict] : kMessages) {
    const Bytes message = Message(name);
    const bool good = verdict == Verdict::Good || (verdict == Verdict::GoodIfPlatformCan && PlatformOpens(message));
    Bytes content;
    EXPECT_EQ(VerifySignedMessage(message, anchor, content), good) << name;
    EXPECT_EQ(content, good ? signedContent : Bytes()) << name;
  }
  Bytes content;
  EXPECT_TRUE(VerifySignedMessage(Message("stranger"), addon::MessageBytes("stranger.der"), content));
  EXPECT_FALSE(VerifySignedMessage(Message("chain1"), addon::MessageBytes("stranger.der"), content));
  EXPECT_FALSE(VerifySignedMessage(Message("chain1"), {}, content));
  EXPECT_FALSE(VerifySignedMessage({}, anchor, content));
}

TEST(SignedMessage, NothingButWhatWasSignedComesOutOfDamagedOnes) {
  const Bytes anchor = addon::MessageBytes("anchor.der");
  const Bytes signedContent = addon::MessageBytes("content");
  for (const char* const name : {"chain0", "chain8", "self-issued-top", "two-good", "curve-link"}) {
    const Bytes good = Message(name);
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

TEST(SignedMessage, NothingIsLeftBehindByAnyOutcome) {
  const Bytes anchor = addon::MessageBytes("anchor.der");
  std::vector<Bytes> messages;
  for (const auto& [name, verdict] : kMessages) messages.push_back(Message(name));
  size_t bytes[2] = {};
  for (size_t& phase : bytes) {
    Bytes content;
    for (int round = 0; round < 20; ++round) {
      for (const Bytes& message : messages) (void)VerifySignedMessage(message, anchor, content);
    }
    PROCESS_MEMORY_COUNTERS_EX counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof(counters));
    phase = counters.PrivateUsage;
  }
  // Twenty rounds of one certificate lost in each message would be a quarter of a megabyte.
  EXPECT_LT(bytes[1], bytes[0] + 200000);
}

}  // namespace
