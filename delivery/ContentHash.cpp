#include "delivery/ContentHash.h"

#include <wincrypt.h>

#include <array>

ContentHash::ContentHash() {
  failed = !BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(provider.Receive(), BCRYPT_SHA256_ALGORITHM, nullptr, 0)) ||
           !BCRYPT_SUCCESS(BCryptCreateHash(provider.Get(), hash.Receive(), nullptr, 0, nullptr, 0, 0));
}

void ContentHash::Add(std::span<const uint8_t> piece) {
  if (failed) return;
  auto* const bytes = const_cast<PUCHAR>(piece.data());  // the platform reads only
  failed = !BCRYPT_SUCCESS(BCryptHashData(hash.Get(), bytes, static_cast<ULONG>(piece.size()), 0));
}

std::optional<std::string> ContentHash::FinishAsBase64() {
  std::array<uint8_t, 32> value = {};
  if (failed || !BCRYPT_SUCCESS(BCryptFinishHash(hash.Get(), value.data(), value.size(), 0))) return std::nullopt;
  char text[64] = {};
  DWORD length = sizeof(text);
  constexpr DWORD kForm = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
  if (!CryptBinaryToStringA(value.data(), value.size(), kForm, text, &length)) return std::nullopt;
  return std::string(text);
}
