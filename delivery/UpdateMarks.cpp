#include "delivery/UpdateMarks.h"

#include <windows.h>

#include <optional>
#include <string>

#include "delivery/UpdateText.h"
#include "engine/DllHelpers.h"
#include "engine/MStringList.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"

namespace {

constexpr char kUpdateKey[] = "Software\\Halcyonics\\LumenPlayerUpdate";
constexpr char kDescription[] = "description";
constexpr char kRejected[] = "Rejected";
constexpr char kRunOnceValue[] = "LumenPlayerUpdate";
constexpr char kArguments[] = " -update activex";
constexpr REGSAM kMarkRights = 0x2001F;
// The command line has 260 bytes, of which the arguments and the terminator take 17.
constexpr size_t kLongestProgram = 243;

std::string RunningProgram() {
  char path[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
  return {path, length < MAX_PATH ? length : 0};
}

void EnterForNextLogon(const char* executablePath) {
  const RegistryKey key = CreateKey(HKEY_CURRENT_USER, kRunOnceKey, kMarkRights);
  std::string command = executablePath == nullptr ? RunningProgram() : executablePath;
  if (!key || command.empty()) return;
  command.resize(std::min(command.size(), kLongestProgram));
  (void)WriteText(key.Get(), kRunOnceValue, command + kArguments);
}

bool DeleteTree(HKEY root, const std::string& path) {
  return DeleteKeyTree(root, WidenAscii(path).c_str()) == ERROR_SUCCESS;
}

bool DeleteOne(HKEY root, const char* path, const char* name) {
  return DeleteValue(root, path, name) == ERROR_SUCCESS;
}

}  // namespace

bool MarkAutoUpdaterForRun(const char* description, const char* executablePath) {
  if (description == nullptr) return false;
  const RegistryKey key = CreateKey(HKEY_CURRENT_USER, kUpdateKey, kMarkRights);
  if (!key) return true;
  const std::optional<std::string> rejected = ReadText(key.Get(), kRejected);
  if (rejected && MentionsRejected(description, *rejected)) return true;
  if (WriteText(key.Get(), kDescription, description) != ERROR_SUCCESS) return true;
  EnterForNextLogon(executablePath);
  return true;
}

bool ReadUpdateDescription(MStringList* out) {
  const std::optional<std::string> text = ReadText(HKEY_CURRENT_USER, kUpdateKey, kDescription);
  const auto block = text ? ExtractMetaBlock(*text) : std::nullopt;
  if (!block) return false;
  return out->Add(MString::FromNarrow(DecodeMetaBlock(*block).c_str()));
}

bool MarkUpdateRejected() {
  const std::optional<std::string> text = ReadText(HKEY_CURRENT_USER, kUpdateKey, kDescription);
  const auto version = text ? ExtractUpdateVersion(*text) : std::nullopt;
  if (!version) return false;
  const RegistryKey key = CreateKey(HKEY_CURRENT_USER, kUpdateKey, kMarkRights);
  return key && WriteText(key.Get(), kRejected, std::string(*version)) == ERROR_SUCCESS;
}

bool RemoveUpdateMarks(uint32_t kind) {
  bool all = DeleteOne(HKEY_CURRENT_USER, kRunOnceKey, kRunOnceValue);
  all = DeleteTree(HKEY_CURRENT_USER, GetProductKey(kind)) && all;
  all = DeleteOne(HKEY_CURRENT_USER, kPlayerKey, "LumenPlayerVersion") && all;
  all = DeleteOne(HKEY_CURRENT_USER, kPlayerKey, "TwlInstall") && all;
  all = DeleteTree(HKEY_LOCAL_MACHINE, GetProductKey(kind)) && all;
  if (kind == product_kind::ActiveX) return DeleteTree(HKEY_LOCAL_MACHINE, kDistributionUnitKey) && all;
  // The entry of an earlier version is more often gone than not, so this one does not count.
  if (kind == product_kind::Plugin || kind == product_kind::Pepper) {
    (void)DeleteTree(HKEY_LOCAL_MACHINE, GetOldUninstallKey(kind));
  }
  return all;
}

void RemoveSafeVersions() {
  (void)DeleteTree(HKEY_LOCAL_MACHINE, kSafeVersionsKey);
}
