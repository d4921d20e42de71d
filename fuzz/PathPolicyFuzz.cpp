// Any path from a client: whatever may be written lies under a root when the in-memory system opens it. Bytes that are
// no path are tried as reparse data too.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "broker/BrokerPathPolicy.h"
#include "broker/ReparseData.h"
#include "tests/support/MemoryPathOperations.h"

namespace {

constexpr WideView kRoots[] = {L"C:\\USERS\\A\\APPDATA\\ROAMING\\HALCYONICS\\LUMEN PLAYER",
                               L"C:\\USERS\\A\\APPDATA\\ROAMING\\CORVA\\LUMEN PLAYER",
                               L"C:\\USERS\\A\\APPDATA\\LOCAL\\TEMP\\LOW"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static MemoryPathOperations system;
  static BrokerPathPolicy policy(system, true);
  (void)ParseReparseTarget({data, size});
  const WideString path = FromUtf8({reinterpret_cast<const char*>(data), size});
  const auto expanded = policy.ExpandBrokerPath(path.c_str());
  if (!expanded) return 0;
  (void)policy.IsCreatableDirectory(expanded->c_str());
  (void)policy.IsSearchablePath(expanded->c_str());
  const bool strict = policy.IsWritableDataPath(expanded->c_str(), true, nullptr);
  const bool loose = policy.IsWritableDataPath(expanded->c_str(), false, nullptr);
  if (strict && !loose) __builtin_trap();
  if (!loose) return 0;
  const auto opened = system.OpenForReal(*expanded);
  if (!opened) return 0;
  for (const WideView root : kRoots) {
    if (BrokerPathPolicy::IsPathUnderRoot(*opened, root)) return 0;
  }
  __builtin_trap();
}
