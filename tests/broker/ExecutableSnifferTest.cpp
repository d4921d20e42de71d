// The look at the first write, against an oracle written from what it is for rather than from how it goes about it.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "tests/support/SnifferOracle.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Image() {
  Bytes image(120, 0x5A);
  const uint8_t start[] = {'M', 'Z'}, header[] = {80, 0, 0, 0}, mark[] = {'P', 'E', 0, 0};
  std::copy(std::begin(start), std::end(start), image.begin());
  std::copy(std::begin(header), std::end(header), image.begin() + 60);
  std::copy(std::begin(mark), std::end(mark), image.begin() + 80);
  return image;
}

// Every place that a slice can start and end at, over every kind of file there may be ahead of it. The slice goes on
// with the image where the seek left off, or begins the image there.
TEST(ExecutableSniffer, EverySeekAndSliceIsJudgedAsTheOracleSays) {
  constexpr int32_t kHeaders[] = {0, 2, 58, 64, 80, 116, 118, INT32_MAX - 2, INT32_MIN, -2, -70};
  int refused = 0;
  for (const int32_t header : kHeaders) {
    Bytes image = Image();
    for (int i = 0; i < 4; ++i) image[60u + static_cast<size_t>(i)] = static_cast<uint8_t>(header >> (8 * i));
    if (header >= 64 && header < 117) std::copy_n(image.begin() + 80, 4, image.begin() + header);
    const auto size = static_cast<int32_t>(image.size());
    for (const Bytes& content : {image, Bytes(image.begin(), image.begin() + 62), Bytes(image.size(), 'x'), Bytes()}) {
      for (int32_t seek = -72; seek <= size + 2; ++seek) {
        for (const bool readable : {true, false}) {
          if (!readable && seek <= 0) continue;  // nothing is read back from ahead of the start
          for (int32_t length = 0; length <= size; length += length % 20 == 3 ? 3 : 1) {
            const int32_t start = std::clamp(seek, 0, size - length);
            for (const int32_t from : {0, start}) {
              const std::span<const uint8_t> slice(image.data() + from, static_cast<size_t>(length));
              BrokerCookieRecord record;
              record.sniffActive = 1;
              record.seekBase = seek;
              const FirstWrite write{seek, slice, content, readable};
              WrittenFile file(write);
              (void)SniffSlice(record, slice, file);
              ASSERT_EQ(record.executableSeen != 0, IsImage(write))
                  << "header " << header << " seek " << seek << " slice " << from << "+" << length << " of "
                  << content.size() << (readable ? "" : " unreadable");
              ASSERT_EQ(record.sniffActive, 0);
              ASSERT_EQ(file.rewound, seek != 0);
              refused += record.executableSeen;
            }
          }
        }
      }
    }
  }
  EXPECT_GT(refused, 1000) << "the oracle refuses something at all";
}

}  // namespace
