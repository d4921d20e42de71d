// What it costs to judge a product before it is used: its files beside one hash over the same bytes in memory by the
// same provider, and its signature beside the platform's own check of the signed message alone.
#include <windows.h>

#include <bcrypt.h>
#include <psapi.h>
#include <wincrypt.h>

#include <cstdio>
#include <vector>

#include "bench/BenchSupport.h"
#include "delivery/ContentHash.h"
#include "delivery/ProductDigest.h"
#include "delivery/SignedMessage.h"
#include "tests/delivery/AddOnMaterial.h"

namespace {

constexpr size_t kFileSize = 64 << 20;
constexpr size_t kFiles = 4;
constexpr int kRounds = 5;

size_t PeakMemory() {
  PROCESS_MEMORY_COUNTERS counters = {};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  return counters.PeakWorkingSetSize;
}

// Written block by block, so that the peak of this process stays what judging the files makes it.
bool MakeProduct() {
  std::vector<char> block(1 << 20);
  for (size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>(i);
  for (const wchar_t* const name : {L"Large.exe", L"1.dat", L"2.dat", L"3.dat"}) {
    const FileHandle file(
        CreateFileW(addon::ProductFile(L"Large", name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    for (size_t done = 0; done < kFileSize; done += block.size()) {
      if (!WriteFile(file.Get(), block.data(), static_cast<DWORD>(block.size()), &written, nullptr)) return false;
    }
  }
  const std::vector<uint8_t> digest = addon::MessageBytes("digest-large.p7m");
  return StoreProductDigest(L"Large", digest) == StoreResult::Stored;
}

// One call over all the bytes.
bool HashAtOnce(std::vector<uint8_t>& bytes) {
  handles::Owner<HashProviderTraits> provider;
  handles::Owner<HashTraits> hash;
  UCHAR value[32] = {};
  return BCryptOpenAlgorithmProvider(provider.Receive(), BCRYPT_SHA256_ALGORITHM, nullptr, 0) == 0 &&
         BCryptCreateHash(provider.Get(), hash.Receive(), nullptr, 0, nullptr, 0, 0) == 0 &&
         BCryptHashData(hash.Get(), bytes.data(), static_cast<ULONG>(bytes.size()), 0) == 0 &&
         BCryptFinishHash(hash.Get(), value, sizeof(value), 0) == 0;
}

bool MeasureDigest() {
  const testing_files::CleanDirectory folder(addon::ProductFile(L"Large", L""));
  if (!MakeProduct()) return false;
  const WideString anchor = addon::Folder(L"messages\\anchor.der");
  bool good = true;
  const size_t before = PeakMemory();
  double ours = 0;
  double floor = 0;
  const auto verify = [&] { good = VerifyProductDigest(L"Large", anchor.c_str(), ProductFolder::PerUser) && good; };
  verify();
  const size_t grown = PeakMemory() - before;
  std::vector<uint8_t> bytes(kFileSize * kFiles);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i);
  const size_t whole = PeakMemory() - before;
  // Taken in turns, so that whatever else the machine does meets both.
  for (int round = 0; round < kRounds; ++round) {
    const double one = Nanoseconds(1, 1, verify);
    const double other = Nanoseconds(1, 1, [&] { good = HashAtOnce(bytes) && good; });
    ours = round == 0 ? one : std::min(ours, one);
    floor = round == 0 ? other : std::min(floor, other);
  }
  const double mebibytes = static_cast<double>(bytes.size()) / (1 << 20);
  std::printf(
      "product digest, 256 MiB: %7.1f MiB/s   one hash in memory: %7.1f MiB/s   speed ratio %4.2f   "
      "memory %zu KiB beside %zu KiB\n",
      mebibytes * 1e9 / ours, mebibytes * 1e9 / floor, floor / ours, grown / 1024, whole / 1024);
  return good;
}

// The two calls that open a message, as any caller of the platform makes them.
bool OpenAlone(const std::vector<uint8_t>& message) {
  CRYPT_VERIFY_MESSAGE_PARA parameters = {};
  parameters.cbSize = sizeof(parameters);
  parameters.dwMsgAndCertEncodingType = X509_ASN_ENCODING | PKCS_7_ASN_ENCODING;
  const auto length = static_cast<DWORD>(message.size());
  DWORD size = 0;
  if (!CryptVerifyMessageSignature(&parameters, 0, message.data(), length, nullptr, &size, nullptr)) return false;
  std::vector<uint8_t> content(size);
  return CryptVerifyMessageSignature(&parameters, 0, message.data(), length, content.data(), &size, nullptr);
}

bool MeasureMessages() {
  const std::vector<uint8_t> anchor = addon::MessageBytes("anchor.der");
  bool good = true;
  for (const char* const name : {"chain0", "chain1", "chain8"}) {
    const std::vector<uint8_t> message = addon::MessageBytes(std::string(name) + ".p7m");
    double ours = 1e18;
    double floor = 1e18;
    for (int round = 0; round < kRounds; ++round) {
      ours = std::min(ours, Nanoseconds(1, 40, [&] {
                        std::vector<uint8_t> content;
                        good = VerifySignedMessage(message, anchor, content) && good;
                      }));
      floor = std::min(floor, Nanoseconds(1, 40, [&] { good = OpenAlone(message) && good; }));
    }
    std::printf("signed message, %c issuers: %8.1f us   the platform's check alone: %8.1f us   ratio %5.2f\n", name[5],
                ours / 1e3, floor / 1e3, ours / floor);
  }
  return good;
}

}  // namespace

int main() {
  if (MeasureMessages() && MeasureDigest()) return 0;
  std::fprintf(stderr, "product_digest_bench: something was refused\n");
  return 1;
}
