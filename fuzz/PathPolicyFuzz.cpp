// Any path from a client: whatever may be written lies under a root when the in-memory system opens it. Bytes that are
// no path are tried as reparse data too.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "broker/BrokerPathPolicy.h"
#include "broker/ReparseData.h"
#include "tests/support/MemoryPathOperations.h"

namespace {

constexpr WideView kRoots[] = {L"C:\\USERS\\A\\APPDATA\\ROAMING\\HALCYONICS\\LUMEN PLAYER",
                               L"C:\\USERS\\A\\APPDATA\\ROAMING\\CORVA\\LUMEN PLAYER",
                               L"C:\\USERS\\A\\APPDATA\\LOCAL\\TEMP\\LOW"};
constexpr WideView kSettings = L"C:\\USERS\\A\\APPDATA\\ROAMING\\HALCYONICS\\LUMEN PLAYER\\CORVA.EXAMPLE";

bool LiesUnderAWritableRoot(WideView path) {
  if (BrokerPathPolicy::IsPathUnderRoot(path, kSettings)) return false;
  return std::any_of(std::begin(kRoots), std::end(kRoots),
                     [path](WideView root) { return BrokerPathPolicy::IsPathUnderRoot(path, root); });
}

void Judge(const WideString& path, bool foldsVerbatim) {
  static MemoryPathOperations system;
  static BrokerPathPolicy policy(system, true);
  system.foldsVerbatim = foldsVerbatim;
  const auto expanded = policy.ExpandBrokerPath(path.c_str());
  if (!expanded) return;
  (void)policy.IsCreatableDirectory(expanded->c_str());
  (void)policy.IsSearchablePath(expanded->c_str());
  const bool strict = policy.IsWritableDataPath(expanded->c_str(), true, nullptr);
  const bool loose = policy.IsWritableDataPath(expanded->c_str(), false, nullptr);
  if (strict && !loose) __builtin_trap();
  if (!loose) return;
  const auto opened = system.OpenForReal(*expanded);
  if (opened && !LiesUnderAWritableRoot(*opened)) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto target = ParseReparseTarget({data, size});
  if (target && (!IsLinkTag({data, size}) || target->size() * 2 > size)) __builtin_trap();
  const WideString path = FromUtf8({reinterpret_cast<const char*>(data), size});
  Judge(path, false);
  Judge(path, true);
  return 0;
}
