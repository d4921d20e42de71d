// The look at the first write, against an oracle written from what it is for rather than from how it goes about it.
#include "broker/ExecutableSniffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

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

TEST(ExecutableSniffer, OneWrongByteOfTheTenLetsAFilePass) {
  for (const size_t position : {0u, 1u, 80u, 81u, 82u, 83u}) {
    Bytes image = Image();
    image[position] ^= 1;
    BrokerCookieRecord record = Fresh();
    FakeFile file;
    EXPECT_FALSE(Write(record, image, file)) << position;
    EXPECT_EQ(record.sniffActive, 0);
  }
  BrokerCookieRecord record = Fresh();
  FakeFile file;
  EXPECT_TRUE(Write(record, Image(), file));
}

// Ahead of the first slice the client seeks, and the file already holds what precedes it.
TEST(ExecutableSniffer, WithASeekAheadTheFileSuppliesWhatPrecedesTheSlice) {
  const Bytes image = Image();
  for (size_t seek = 1; seek < image.size(); ++seek) {
    BrokerCookieRecord record = Fresh();
    record.seekBase = static_cast<int32_t>(seek);
    const auto middle = image.begin() + static_cast<std::ptrdiff_t>(seek);
    FakeFile file(Bytes(image.begin(), middle));
    EXPECT_TRUE(Write(record, Bytes(middle, image.end()), file)) << seek;
    EXPECT_TRUE(file.rewound);

    // The same slice behind a file that is no image passes.
    BrokerCookieRecord plain = Fresh();
    plain.seekBase = static_cast<int32_t>(seek);
    FakeFile other(Bytes(seek, 'x'));
    EXPECT_FALSE(Write(plain, Bytes(middle, image.end()), other)) << seek;
  }
}

TEST(ExecutableSniffer, FirstSlicesThatStopEarly) {
  struct Row {
    const char* why;
    Bytes slice;
    int32_t peOffset;
  };
  const Bytes image = Image();
  const auto front = [&image](size_t size) {
    return Bytes(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(size));
  };
  const Row rows[] = {
      {"one byte that is not M", {'X'}, 0},
      {"MZ and nothing more leaves the header at 0, where M is not P", front(2), 0},
      {"63 bytes do not reach the header's offset", front(63), 0},
      {"64 bytes do, but not the header", front(64), 80},
      {"nothing at all", {}, 0},
  };
  for (const Row& row : rows) {
    BrokerCookieRecord record = Fresh();
    FakeFile file;
    EXPECT_FALSE(Write(record, row.slice, file)) << row.why;
    EXPECT_EQ(record.peOffset, row.peOffset) << row.why;
    EXPECT_EQ(record.sniffActive, 0) << row.why;
  }
}

TEST(ExecutableSniffer, ReadingBackThatFailsIsToldAndStopsNothing) {
  BrokerCookieRecord record = Fresh();
  record.seekBase = 10;
  FakeFile file({}, result::AccessDenied);
  EXPECT_EQ(SniffSlice(record, Image(), file), result::AccessDenied);
  EXPECT_EQ(record.executableSeen, 0);
}

TEST(ExecutableSniffer, PositionsOfAHostileClientStayInBounds) {
  Bytes image = Image();
  for (const int32_t seek : {INT32_MIN, -200, -1, INT32_MAX - 1, INT32_MAX}) {
    for (const uint32_t position : {0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
      for (const uint8_t top : Bytes{0x00, 0x7F, 0x80, 0xFF}) {
        image[63] = top;
        BrokerCookieRecord record = Fresh();
        record.seekBase = seek;
        record.writePosition = position;
        FakeFile file(image);
        (void)SniffSlice(record, image, file);
        EXPECT_EQ(record.sniffActive, 0);
      }
    }
  }
}

}  // namespace
