// A hostile client's file filters: no access out of bounds, and every text that passes has its fields inside itself.
#include <vector>

#include "broker/FilterArray.h"
#include "fuzz/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint32_t pairs = data[0];
  std::vector<uint8_t> bytes(data + 1, data + size);  // aligned, and ending where the input ends
  if (DecodeFilters(bytes, pairs) != result::Ok) return 0;
  Require(bytes.size() % sizeof(wchar_t) == 0);
  const auto* at = reinterpret_cast<const wchar_t*>(bytes.data());
  const wchar_t* const end = at + bytes.size() / sizeof(wchar_t);
  for (uint32_t i = 0; i < 2 * pairs; ++i) (void)TakeField(at);
  Require(at <= end);
  return 0;
}
