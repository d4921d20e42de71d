#include "delivery/ProductDigest.h"

#include <windows.h>

#include "delivery/ContentHash.h"
#include "delivery/DigestManifest.h"
#include "delivery/SignedMessage.h"
#include "delivery/TrustAnchor.h"
#include "engine/Handles.h"

namespace {

constexpr DWORD kBlockSize = 65536;

void AddFile(const WideString& path, std::span<uint8_t> block, ContentHash& hash) {
  const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!file) return;
  DWORD read = 0;
  while (ReadFile(file.Get(), block.data(), kBlockSize, &read, nullptr) && read > 0) hash.Add(block.first(read));
}

}  // namespace

bool LoadProductDigest(const wchar_t* name, std::vector<char>& text, const wchar_t* overridePath,
                       ProductFolder folder) {
  const std::optional<WideString> path = ProductDigestPath(name, folder);
  std::vector<uint8_t> message;
  std::vector<uint8_t> anchor;
  std::vector<uint8_t> content;
  if (!path || !LoadFileToBuffer(path->c_str(), message) || !LoadAnchor(overridePath, anchor) ||
      !VerifySignedMessage(message, anchor, content)) {
    return false;
  }
  text.assign(content.begin(), content.end());
  text.push_back(0);
  return true;
}

bool VerifyProductDigest(const wchar_t* name, const wchar_t* overridePath, ProductFolder folder) {
  std::vector<char> text;
  if (!LoadProductDigest(name, text, overridePath, folder)) return false;
  const std::optional<WideString> executable = ProductExecutablePath(name, folder);
  if (!executable) return false;
  const WideString directory = executable->substr(0, executable->find_last_of(L'\\') + 1);
  const DigestManifest manifest = ParseDigestManifest(text.data());

  const WideString executableName = WideString(name) + L".exe";
  bool executableSeen = false;
  ContentHash hash;
  std::vector<uint8_t> block(kBlockSize);
  for (const char* at = manifest.First(); at != nullptr; at = DigestManifest::Next(at)) {
    const WideString reference = WidenFromCodePage(at);
    if (NamesExecutable(reference, executableName)) executableSeen = true;
    AddFile(directory + reference, block, hash);
  }
  const std::optional<std::string> value = hash.FinishAsBase64();
  return executableSeen && value && !value->empty() && *value == manifest.digestValue;
}
