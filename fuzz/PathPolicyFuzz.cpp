// Any path from a client: whatever may be written lies under a root when the in-memory system opens it. Bytes that are
// no path are tried as reparse data too.
#include "broker/BrokerPathPolicy.h"
#include "broker/ReparseData.h"
#include "fuzz/Require.h"
#include "tests/support/MemoryPathOperations.h"

namespace {

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
  Require(loose || !strict);
  if (!loose) return;
  const auto opened = system.OpenForReal(*expanded);
  Require(!opened || MemoryPathOperations::LiesUnderAWritableRoot(*opened, false));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto target = ParseReparseTarget({data, size});
  Require(!target || (IsLinkTag({data, size}) && target->size() * 2 <= size));
  const WideString path = FromUtf8({reinterpret_cast<const char*>(data), size});
  Judge(path, false);
  Judge(path, true);
  return 0;
}
