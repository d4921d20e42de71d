// A client's bitmap fill: whatever header it sends, a platform that believes the header reads nothing that is not ours.
// The last byte tells how many of the others are the header.
#include "broker/CompositeFills.h"
#include "fuzz/Require.h"
#include "tests/support/RecordingRelay.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 49) return 0;
  const bool transparent = (data[--size] & 1) != 0;
  const size_t header = transparent ? kTransparentFillHeaderBytes : kFillHeaderBytes;
  const uint8_t rect[sizeof(DrawingRect)] = {};
  const std::span<const uint8_t> all(data, size);
  const BitmapArrays arrays = {rect, rect, all.subspan(header), all.first(header)};
  RecordingRelay relay;
  const Result filled =
      transparent ? FillPathThroughBitmap(relay, 1, arrays, 0, 0) : FillPathWithBitmap(relay, 1, arrays, true);
  Require(relay.open == 0 && (filled == result::Ok || relay.calls.empty()));
  return 0;
}
