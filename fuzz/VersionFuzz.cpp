// Version texts come from the registry and from servers. Whatever they hold, comparing them is an order: two texts and
// the numbers they stand for agree, and the answer turns round when the texts do.
#include <algorithm>
#include <cstring>

#include "fuzz/Require.h"
#include "install/VersionNumbers.h"

static MString FromBytes(const uint8_t* data, size_t size) {
  WideString text(size / sizeof(wchar_t), 0);
  std::memcpy(text.data(), data, text.size() * sizeof(wchar_t));
  return MString(WideView(text));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const MString a = FromBytes(data, size / 2);
  const MString b = FromBytes(data + size / 2, size - size / 2);
  const int32_t order = CompareVersionStrings(a, b);
  Require(order == -CompareVersionStrings(b, a));
  Require(CompareVersionStrings(a, a) == 0);
  Require((order == 0) == (ParseVersion(a) == ParseVersion(b)));
  return 0;
}
