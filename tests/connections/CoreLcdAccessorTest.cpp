#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/connections/MemoryLcdAccessor.h"

namespace {

class Directory : public testing::Test {
 protected:
  ~Directory() override {
    EXPECT_EQ(accessor.holds, 0) << "every operation gives back what it took";
    EXPECT_TRUE(accessor.GuardsAreWhole());
  }
  void PutList(const std::string& bytes) { std::memcpy(accessor.List(), bytes.data(), bytes.size()); }
  LcdDispatch Send(const std::vector<uint8_t>& message, int32_t version = 8, int32_t format = 1, uint32_t realm = 0) {
    return accessor.DispatchMessage(message.data(), static_cast<int32_t>(message.size()), version, format, realm);
  }
  std::string Target(size_t size = 1024) {
    std::vector<char> buffer(size + 1, '#');
    if (!accessor.GetMessageTarget(buffer.data(), size)) return "(none)";
    EXPECT_EQ(buffer[size], '#');
    return buffer.data();
  }

  MemoryLcdAccessor accessor;
};

TEST_F(Directory, AnEntryIsWrittenByteForByte) {
  ASSERT_TRUE(accessor.TryAddConnection("name", 0, 2, 0x132));
  const std::string expected("name\0::\x32\0::3\0", 13);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(accessor.List()), 14), expected + '\0');
  EXPECT_EQ(accessor.FindConnectionFormat("name", 0), 2);
  ASSERT_TRUE(accessor.TryAddConnection("plain", 0, 0, 2));
  EXPECT_EQ(accessor.FindConnectionFormat("plain", 0), -46) << "a plain number is stored as it stands";
}

TEST_F(Directory, EntriesOfOtherWritersNeedNoSuffixes) {
  PutList(std::string("bare\0fmt\0::5\0both\0::4\0::2\0half\0:x\0last\0\0", 40));
  EXPECT_EQ(accessor.FindConnectionFormat("bare", 1), 1);
  EXPECT_EQ(accessor.FindConnectionFormat("fmt", 1), 5);
  EXPECT_EQ(accessor.FindConnectionFormat("both", 1), 4);
  EXPECT_EQ(accessor.FindConnectionFormat("both", 0), 0);
  EXPECT_EQ(accessor.FindConnectionFormat("half", 0), 1);
  EXPECT_TRUE(accessor.RemoveConnection("half", 0));
  EXPECT_EQ(accessor.FindConnectionFormat(":x", 0), 1) << "a lone colon is no suffix and stays";
  EXPECT_TRUE(accessor.RemoveConnection("fmt", 0));
  EXPECT_TRUE(accessor.RemoveConnection("bare", 0));
  EXPECT_EQ(accessor.FindConnectionFormat("both", 1), 4);
  EXPECT_EQ(accessor.FindConnectionFormat("::4", 1), 2) << "suffixes are walked as strings";
  EXPECT_EQ(accessor.FindConnectionFormat("", 0), 0);
  EXPECT_TRUE(accessor.TryAddConnection("", 0, 0, '1')) << "adds nothing";
  EXPECT_FALSE(accessor.RemoveConnection("", 0));
}

TEST_F(Directory, TheLastEntryMayRunFiveBytesPastTheList) {
  // One filler whose terminator leaves exactly `room` for name and suffixes by the bound.
  for (const size_t over : {0u, 1u}) {
    MemoryLcdAccessor fresh;
    const std::string name(100, 'n');
    const size_t offset = LcdSegment::kListBytes - name.size() - 5 + over;
    std::memset(fresh.List(), 'f', offset - 1);
    fresh.List()[offset - 1] = 0;
    fresh.List()[offset] = 0;
    EXPECT_EQ(fresh.TryAddConnection(name.c_str(), 0, 0, '7'), over == 0);
    EXPECT_TRUE(fresh.GuardsAreWhole());
    EXPECT_EQ(fresh.FindConnectionFormat(name.c_str(), 0), over == 0 ? 7 : 0);
  }
}

// A list without a terminator, in a block of exactly the mapping's size, so that a sanitizer sees every byte read
// beyond it.
TEST_F(Directory, AWalkEndsWithTheMapping) {
  constexpr size_t kMapped = MemoryLcdAccessor::kMapped;
  const std::unique_ptr<uint8_t[]> mapping(new uint8_t[kMapped]);
  accessor.AttachSegment(reinterpret_cast<LcdSegment*>(mapping.get()), true, kMapped);
  for (const size_t colons : {0u, 1u, 2u, 3u, 4u}) {
    uint8_t* const end = mapping.get() + kMapped;
    std::memset(mapping.get() + offsetof(LcdSegment, connectionList), 'x', LcdSegment::kListBytes + kLcdOverrun);
    std::memset(end - colons, ':', colons);
    std::memcpy(end - colons - 3, "\0y", 3);
    EXPECT_EQ(accessor.FindConnectionFormat("y", 0), colons < 2 ? 1 : colons == 2 ? -0x30 : ':' - 0x30) << colons;
    EXPECT_FALSE(accessor.RemoveConnection("y", 0)) << "there is no terminator to move";
    EXPECT_FALSE(accessor.TryAddConnection("z", 0, 0, '1')) << colons;
  }
}

TEST_F(Directory, TargetsInBothEncodings) {
  const std::pair<std::vector<uint8_t>, const char*> rows[] = {
      {MessageFor("abc", "x"), "abc"},
      {MessageFor("abc", "x", true), "abc"},
      {MessageFor(""), ""},
      {{2}, "(none)"},
      {{3, 0, 1, 'a'}, "(none)"},
      {{2, 0, 2, 'a'}, "(none)"},
      {{2, 0, 1, 'a'}, "a"},
      {{12, 0xFF, 0xFF, 0xFF, 0xFF, 'a'}, "(none)"},
      {{12, 0xFF, 0xFF, 0xFF, 0xFE, 'a'}, "(none)"},  // wraps with its header
      {MessageFor(std::string(1023, 'n')), nullptr},
  };
  for (const auto& [message, target] : rows) {
    (void)accessor.ClearMessage();
    accessor.At().messageSize = static_cast<uint32_t>(message.size());
    std::copy(message.begin(), message.end(), accessor.At().messageArea);
    EXPECT_EQ(Target(), target == nullptr ? std::string(1023, 'n') : target) << message.size();
  }
  EXPECT_EQ(Target(1023), "(none)");
}

TEST_F(Directory, DispatchByVersionAndFormat) {
  const struct {
    int32_t version, format;
    const char* name;
    LcdDispatch outcome;
    bool stays;
  } rows[] = {{-1, 5, "a", LcdDispatch::Posted, true},  {8, 5, "a", LcdDispatch::Posted, true},
              {10, 5, "a", LcdDispatch::Refused, true}, {11, 5, "a", LcdDispatch::Refused, false},
              {11, 2, "a", LcdDispatch::Posted, true},  {8, 5, "b", LcdDispatch::Refused, false}};
  ASSERT_TRUE(accessor.TryAddConnection("a", 0, 0, '2'));
  for (const auto& row : rows) {
    EXPECT_EQ(Send(MessageFor(row.name), row.version, row.format), row.outcome);
    EXPECT_EQ(accessor.At().messageSize != 0, row.stays) << row.version << "/" << row.format;
    EXPECT_TRUE(accessor.ClearMessage());
  }
}

TEST_F(Directory, TheSlotTakesOneMessage) {
  ASSERT_TRUE(accessor.TryAddConnection("a", 0, 0, '1'));
  EXPECT_EQ(Send({}), LcdDispatch::Posted) << "of no bytes, which leaves the slot free";
  EXPECT_EQ(accessor.At().messageTime, accessor.now);
  std::vector<uint8_t> largest(LcdSegment::kMessageBytes, 7);
  EXPECT_EQ(Send(largest), LcdDispatch::Posted) << "for nobody that can be read";
  EXPECT_EQ(Send(MessageFor("a")), LcdDispatch::NotPosted);
  const uint8_t* data = nullptr;
  int32_t size = 0;
  EXPECT_TRUE(accessor.GetMessageData(&data, &size));
  EXPECT_EQ(std::vector<uint8_t>(data, data + size), largest);
  EXPECT_TRUE(accessor.ClearMessage());
  for (const int32_t wrong : {40961, -1}) {
    EXPECT_EQ(accessor.DispatchMessage(largest.data(), wrong, 8, 1, 0), LcdDispatch::NotPosted);
  }
  for (const uint32_t hostile : {0x80000000u, 0xFFFFFFFFu, 40961u}) {
    accessor.At().messageSize = hostile;
    EXPECT_FALSE(accessor.GetMessageData(&data, &size)) << hostile;
    EXPECT_EQ(data, nullptr);
  }
}

TEST_F(Directory, AgeIsSignedAndStrict) {
  const struct {
    uint32_t stamp, now;
    bool dead;
  } rows[] = {{1000, 6000, false},          {1000, 6001, true},     {6000, 1000, false},
              {0xFFFFFF00u, 0x1300u, true}, {0, 0x7FFFFFFFu, true}, {0, 0x80000000u, false}};
  for (const auto& row : rows) {  // for nobody that can be read: only the message goes
    accessor.At().messageSize = 1;
    accessor.At().messageTime = row.stamp;
    accessor.now = row.now;
    EXPECT_EQ(accessor.PruneDeadMessage(), row.dead) << row.stamp << " at " << row.now;
    EXPECT_EQ(accessor.At().messageSize == 0, row.dead);
  }
}

// A directory as anyone would describe it: names with a realm and a format, and at most one message.
struct Entry {
  std::string name;
  uint32_t realm;
  int format;
};
struct Model {
  std::vector<Entry> entries;
  std::optional<std::pair<std::string, uint32_t>> message;  // target, stamp
  size_t used = 0;

  static bool Sees(uint32_t sought, uint32_t realm) { return sought >= 3 || (sought == 1) == (realm == 1); }
  std::vector<Entry>::iterator Find(const std::string& name, uint32_t sought) {
    return std::find_if(entries.begin(), entries.end(),
                        [&](const Entry& e) { return e.name == name && Sees(sought, e.realm); });
  }
  bool Remove(const std::string& name, uint32_t sought) {
    const auto found = Find(name, sought);
    if (found == entries.end()) return false;
    used -= name.size() + 9;
    entries.erase(found);
    return true;
  }
};

TEST_F(Directory, AgreesWithASimpleModelOverManySteps) {
  std::mt19937 random(42);
  Model model;
  const auto pick = [&random](uint32_t n) { return static_cast<uint32_t>(random() % n); };
  for (int step = 0; step < 100000; ++step) {
    const uint32_t number = pick(1200);
    const std::string name = "n" + std::to_string(number) + std::string(number % 40, 'x');
    const uint32_t realm = pick(3);
    accessor.now += pick(700);
    switch (pick(6)) {
      case 0:
      case 1: {
        const bool fits = model.used + name.size() + 5 <= LcdSegment::kListBytes;
        const bool expected = model.Find(name, realm) == model.entries.end() && fits;
        const int format = static_cast<int>(pick(9)) + 1;
        ASSERT_EQ(accessor.TryAddConnection(name.c_str(), realm, realm, format + 0x30), expected) << step;
        if (!expected) break;
        model.entries.push_back({name, realm, format});
        model.used += name.size() + 9;
        break;
      }
      case 2: {
        const uint32_t sought = pick(4);
        ASSERT_EQ(accessor.RemoveConnection(name.c_str(), sought), model.Remove(name, sought)) << step;
        break;
      }
      case 3: {
        const auto found = model.Find(name, realm);
        ASSERT_EQ(accessor.FindConnectionFormat(name.c_str(), realm), found == model.entries.end() ? 0 : found->format);
        break;
      }
      case 4: {
        const auto found = model.Find(name, realm);
        LcdDispatch expected = LcdDispatch::NotPosted;
        if (!model.message) {
          expected = found == model.entries.end() ? LcdDispatch::Refused : LcdDispatch::Posted;
          if (expected == LcdDispatch::Posted) model.message = {name, accessor.now};
        }
        ASSERT_EQ(Send(MessageFor(name, "payload", number % 2 == 0), 8, 1, realm), expected) << step;
        break;
      }
      default: {
        const bool dead = model.message && static_cast<int32_t>(accessor.now - model.message->second) > 5000;
        ASSERT_EQ(accessor.PruneDeadMessage(), dead) << step;
        if (!dead) break;
        while (model.Remove(model.message->first, 3)) {
        }
        model.message.reset();
        break;
      }
    }
    ASSERT_EQ(Target(), model.message ? model.message->first : "(none)") << step;
  }
  EXPECT_GT(model.entries.size(), 100u) << "the list must have been in use";
}

}  // namespace
