// SHA-256 of content that arrives in pieces, by the platform's own provider.
#pragma once

#include <windows.h>

#include <bcrypt.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "engine/Handles.h"

struct HashProviderTraits {
  using Value = BCRYPT_ALG_HANDLE;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value provider) { return provider != nullptr; }
  static void Close(Value provider) { BCryptCloseAlgorithmProvider(provider, 0); }
};
struct HashTraits {
  using Value = BCRYPT_HASH_HANDLE;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value hash) { return hash != nullptr; }
  static void Close(Value hash) { BCryptDestroyHash(hash); }
};

// One hash, from its first piece to its text. A failure of the platform makes the text come out empty.
class ContentHash {
 public:
  ContentHash();
  void Add(std::span<const uint8_t> piece);
  // Ends the hash: its 32 bytes as Base64 with padding. Nothing when a step failed.
  [[nodiscard]] std::optional<std::string> FinishAsBase64();

 private:
  // In this order: a hash is destroyed before its provider is closed.
  handles::Owner<HashProviderTraits> provider;
  handles::Owner<HashTraits> hash;
  bool failed = false;
};
