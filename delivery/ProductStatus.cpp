#include "delivery/ProductStatus.h"

#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

#include "delivery/ProductDigest.h"
#include "delivery/ProductName.h"
#include "engine/DllHelpers.h"

namespace {

constexpr char kMutexPrefix[] = "HalcyonicsMutexGamma";

std::optional<std::vector<uint8_t>> ReadVersionBlock(const WideString& path) {
  const VersionDllHelper version;
  if (!version.IsAvailable()) return std::nullopt;
  const DWORD size = version.GetFileVersionInfoSizeW(path.c_str(), nullptr);
  if (size == 0) return std::nullopt;
  std::vector<uint8_t> block(size);
  if (!version.GetFileVersionInfoW(path.c_str(), 0, size, block.data())) return std::nullopt;
  return block;
}

char ToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

}  // namespace

std::optional<ProductVersion> ReadProductVersion(const wchar_t* name, const wchar_t* overridePath) {
  if (!IsValidProductName(name)) return std::nullopt;
  const std::optional<WideString> path = ProductExecutablePath(name, ProductFolder::PerUser);
  if (!path || !VerifyProductDigest(name, overridePath, ProductFolder::PerUser)) return std::nullopt;
  const std::optional<std::vector<uint8_t>> block = ReadVersionBlock(*path);
  void* found = nullptr;
  UINT size = 0;
  if (!block || !VerQueryValueA(block->data(), "\\", &found, &size) || size < sizeof(VS_FIXEDFILEINFO)) {
    return std::nullopt;
  }
  static_assert(sizeof(VS_FIXEDFILEINFO) == 52);
  const auto* const fixed = static_cast<const VS_FIXEDFILEINFO*>(found);
  return ProductVersion{fixed->dwFileVersionMS, fixed->dwFileVersionLS};
}

bool IsProductRunning(const wchar_t* name) {
  if (!IsValidProductName(name)) return false;
  std::string lower = NarrowToCodePage(name);
  std::transform(lower.begin(), lower.end(), lower.begin(), ToLower);
  const KernelHandle mutex(CreateMutexA(nullptr, TRUE, (kMutexPrefix + lower).c_str()));
  return GetLastError() == ERROR_ALREADY_EXISTS;
}
