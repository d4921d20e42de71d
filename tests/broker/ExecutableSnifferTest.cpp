// The look at the first write, against an oracle written from what it is for rather than from how it goes about it.
#include "broker/ExecutableSniffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "tests/support/SnifferOracle.h"

namespace {

using Bytes = std::vector<uint8_t>;

// A file whose content precedes what is written.
class FakeFile final : public FileSniffSource {
 public:
  explicit FakeFile(Bytes bytes = {}, Result open = result::Ok) : content(std::move(bytes)), openResult(open) {}
  Result Rewind() override {
    rewound = true;
    return result::Ok;
  }
  Result Open() override { return openResult; }
  Result ByteAt(uint32_t position, uint8_t& byte) override {
    byte = position < content.size() ? content[position] : 0;
    return result::Ok;
  }
  bool rewound = false;

 private:
  Bytes content;
  Result openResult;
};

Bytes Image(size_t header = 80, size_t size = 120) {
  Bytes image(size, 0x5A);
  image[0] = 'M';
  image[1] = 'Z';
  for (size_t i = 0; i < 4; ++i) image[60 + i] = static_cast<uint8_t>(header >> (8 * i));
  const uint8_t mark[] = {'P', 'E', 0, 0};
  std::copy(std::begin(mark), std::end(mark), image.begin() + static_cast<std::ptrdiff_t>(header));
  return image;
}

BrokerCookieRecord Fresh() {
  BrokerCookieRecord record;
  record.sniffActive = 1;
  return record;
}

// Writes a slice as the method does: judge, then account for it. Whether it was refused.
bool Write(BrokerCookieRecord& record, const Bytes& slice, FileSniffSource& file) {
  (void)SniffSlice(record, slice, file);
  if (record.executableSeen != 0) return true;
  record.writePosition += static_cast<uint32_t>(slice.size());
  record.lastWriteSize = static_cast<uint32_t>(slice.size());
  return false;
}

TEST(ExecutableSniffer, EverySplitOfAnImageIsRefusedExactlyWhenItsFirstSliceHoldsTheHeader) {
  for (const size_t header : {64u, 80u, 100u}) {
    const Bytes image = Image(header);
    for (size_t split = 0; split <= image.size(); ++split) {
      BrokerCookieRecord record = Fresh();
      FakeFile file;
      const auto middle = image.begin() + static_cast<std::ptrdiff_t>(split);
      const bool first = Write(record, Bytes(image.begin(), middle), file);
      EXPECT_EQ(first, split >= header + 4) << header << " split at " << split;
      if (first) continue;
      EXPECT_FALSE(Write(record, Bytes(middle, image.end()), file)) << "later slices are not looked at";
      EXPECT_EQ(record.sniffActive, 0);
    }
  }
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
          FakeFile file(content, readable ? result::Ok : result::AccessDenied);
          for (int32_t length = 0; length <= size; length += length % 20 == 3 ? 3 : 1) {
            const int32_t start = std::clamp(seek, 0, size - length);
            for (const int32_t from : {0, start}) {
              const std::span<const uint8_t> slice(image.data() + from, static_cast<size_t>(length));
              BrokerCookieRecord record = Fresh();
              record.seekBase = seek;
              file.rewound = false;
              (void)SniffSlice(record, slice, file);
              const FirstWrite write{seek, slice, content, readable};
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

// A second write of a client that sought back behind an empty first one: nothing is judged, yet the handle is rewound.
TEST(ExecutableSniffer, AHeaderAheadOfTheSeekRewindsOnceMore) {
  BrokerCookieRecord record = Fresh();
  record.sniffActive = 0;
  record.peOffset = 80;
  FakeFile file;
  record.seekBase = 10;
  EXPECT_FALSE(Write(record, Image(), file));
  EXPECT_TRUE(file.rewound);
  for (const auto& [seek, lastWrite] : {std::pair{80, 0u}, std::pair{0, 0u}, std::pair{10, 5u}}) {
    BrokerCookieRecord other = Fresh();
    other.sniffActive = 0;
    other.peOffset = 80;
    other.seekBase = seek;
    other.lastWriteSize = lastWrite;
    FakeFile untouched;
    EXPECT_FALSE(Write(other, Image(), untouched));
    EXPECT_FALSE(untouched.rewound) << seek << " after " << lastWrite;
  }
}

}  // namespace
