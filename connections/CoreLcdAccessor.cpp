#include "connections/CoreLcdAccessor.h"

#include <cstring>

namespace {

constexpr size_t kSuffixBytes = 4;
constexpr uint32_t kEveryRealm = 3;
constexpr size_t kTargetBytes = 1024;

// Takes the lock for a scope.
class Hold {
 public:
  explicit Hold(ILcdAccessor& accessor) : accessor_(accessor), held_(accessor.Lock() >= 1) {}
  ~Hold() {
    if (held_) accessor_.Unlock();
  }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;
  explicit operator bool() const { return held_; }

 private:
  ILcdAccessor& accessor_;
  bool held_;
};

// A word of the header, read once: another participant may be changing it.
uint32_t ReadOnce(const uint32_t& word) {
  return *static_cast<const volatile uint32_t*>(&word);
}

// Realms 0 and 2 form one family, realm 1 another, and the two do not see each other. Any other realm byte, and a
// seeker in realm 3 or above, sees all.
bool IsSkipped(uint32_t sought, uint8_t realmByte) {
  const int entry = static_cast<int8_t>(realmByte) - 0x31;
  if (sought == 1) return entry == 0 || entry == 2;
  return entry == 1 && (sought == 0 || sought == 2);
}

}  // namespace

void CoreLcdAccessor::AttachSegment(LcdSegment* segment, bool initialise, size_t mappedBytes) {
  segment_ = segment;
  mappedBytes_ = mappedBytes;
  if (!initialise || segment == nullptr) return;
  segment->layoutVersion = 1;
  segment->secondMark = 1;
  segment->connectionList[0] = 0;
  segment->messageSize = 0;
  segment->messageTime = 0;
}

bool CoreLcdAccessor::IsSegmentValid() const {
  return segment_ != nullptr && ReadOnce(segment_->layoutVersion) == 1;
}

uint8_t CoreLcdAccessor::ByteAt(const uint8_t* from, size_t offset) const {
  // A suffix that the mapping's end cuts off leaves `from` beyond it.
  return from < End() && offset < static_cast<size_t>(End() - from) ? from[offset] : 0;
}

bool CoreLcdAccessor::HasSuffix(const uint8_t* at) const {
  return ByteAt(at, 0) == ':' && ByteAt(at, 1) == ':';
}

uint8_t* CoreLcdAccessor::FindConnection(const char* name, uint32_t realm) const {
  if (segment_ == nullptr) return nullptr;
  const size_t length = std::strlen(name);
  uint8_t* at = segment_->connectionList;
  for (;;) {
    const auto room = static_cast<size_t>(End() - at);
    // A participant may have written over the terminator; the walk then ends with the mapping.
    auto* const end = static_cast<uint8_t*>(std::memchr(at, 0, room));
    if (end == nullptr) return nullptr;
    const auto size = static_cast<size_t>(end - at);
    if (size == 0) return at;
    if (size == length && std::memcmp(at, name, length) == 0) {
      // Other writers leave the suffixes out; such an entry belongs to every realm.
      const bool complete =
          HasSuffix(at + length + 1) && ByteAt(at, length + 5) == ':' && ByteAt(at, length + 6) == ':';
      if (!complete || !IsSkipped(realm, ByteAt(at, length + 7))) return at;
    }
    // Suffixes are strings like any other and are walked as such.
    at = end + 1;
    if (at == End()) return nullptr;
  }
}

int32_t CoreLcdAccessor::FindConnectionFormat(const char* name, uint32_t realm) {
  const Hold hold(*this);
  if (!hold) return 0;
  const uint8_t* const entry = FindConnection(name, realm);
  if (entry == nullptr || *entry == 0) return 0;
  const size_t length = std::strlen(name);
  if (!HasSuffix(entry + length + 1)) return 1;
  // A digit reads as its value. The byte is stored without an offset, so a plain number reads back 0x30 less.
  return static_cast<int8_t>(ByteAt(entry, length + 3)) - 0x30;
}

bool CoreLcdAccessor::TryAddConnection(const char* name, uint32_t realmToSeek, uint32_t realmToAdd, int32_t format) {
  const Hold hold(*this);
  if (!hold) return false;
  uint8_t* const place = FindConnection(name, realmToSeek);
  if (place == nullptr || *place != 0) return false;
  const uint64_t length = std::strlen(name);
  const auto offset = static_cast<uint64_t>(place - segment_->connectionList);
  // Five bytes less than an entry takes, so a last entry may run past the list; LcdSegment.h tells how far.
  if (offset + length + 5 > LcdSegment::kListBytes) return false;
  if (length + 10 > static_cast<uint64_t>(End() - place)) return false;
  uint8_t* at = place;
  std::memcpy(at, name, length + 1);
  at += length + 1;
  const uint8_t suffixes[] = {
      ':', ':', static_cast<uint8_t>(format), 0, ':', ':', static_cast<uint8_t>(realmToAdd + 0x31), 0, 0};
  std::memcpy(at, suffixes, sizeof(suffixes));
  return true;
}

bool CoreLcdAccessor::RemoveConnection(const char* name, uint32_t realm) {
  const Hold hold(*this);
  if (!hold) return false;
  uint8_t* const entry = FindConnection(name, realm);
  if (entry == nullptr || *entry == 0) return false;
  uint8_t* behind = entry + std::strlen(name) + 1;
  for (int suffix = 0; suffix < 2 && HasSuffix(behind); ++suffix) behind += kSuffixBytes;
  // To the terminator, string by string; without one, or with a suffix cut off by the mapping's end, nothing is moved.
  uint8_t* last = behind;
  while (last < End() && *last != 0) {
    auto* const end = static_cast<uint8_t*>(std::memchr(last, 0, static_cast<size_t>(End() - last)));
    if (end == nullptr) return false;
    last = end + 1;
  }
  if (last >= End()) return false;
  std::memmove(entry, behind, static_cast<size_t>(last - behind) + 1);
  return true;
}

bool CoreLcdAccessor::GetMessageTarget(char* buffer, size_t size) {
  const Hold hold(*this);
  if (!hold || segment_ == nullptr) return false;
  const uint32_t messageSize = ReadOnce(segment_->messageSize);
  if (messageSize <= 1) return false;
  const uint8_t* const message = segment_->messageArea;
  uint32_t length = 0;
  uint32_t header = 0;
  const uint8_t encoding = message[0];
  if (encoding == 2) {
    length = static_cast<uint32_t>(message[1]) << 8 | message[2];
    header = 3;
  } else if (encoding == 12) {
    for (int i = 1; i <= 4; ++i) length = length << 8 | message[i];
    header = 5;
  } else {
    return false;
  }
  if (length + header > messageSize) return false;
  if (length + 1 > size || length + 1 < length) return false;
  if (length > LcdSegment::kMessageBytes - header) return false;
  std::memcpy(buffer, message + header, length);
  buffer[length] = 0;
  return true;
}

LcdDispatch CoreLcdAccessor::DispatchMessage(const uint8_t* data, int32_t size, int32_t senderVersion,
                                             int32_t expectedFormat, uint32_t realm) {
  const Hold hold(*this);
  if (!hold || segment_ == nullptr || ReadOnce(segment_->messageSize) != 0) return LcdDispatch::NotPosted;
  // Callers bound the size; one that does not may not write over the list.
  if (size < 0 || static_cast<size_t>(size) > LcdSegment::kMessageBytes) return LcdDispatch::NotPosted;
  segment_->messageTime = LockTime();
  segment_->messageSize = static_cast<uint32_t>(size);
  if (size > 0) std::memcpy(segment_->messageArea, data, static_cast<size_t>(size));

  char target[kTargetBytes];
  if (!GetMessageTarget(target, sizeof(target))) return LcdDispatch::Posted;
  const int32_t format = FindConnectionFormat(target, realm);
  if (format == 0) {
    ClearMessage();
    return LcdDispatch::Refused;
  }
  if (senderVersion < 9 || format == expectedFormat) return LcdDispatch::Posted;
  // Senders of versions 9 and 10 are told, but their message stays until it is taken or pruned.
  if (senderVersion >= 11) ClearMessage();
  return LcdDispatch::Refused;
}

bool CoreLcdAccessor::ClearMessage() {
  const Hold hold(*this);
  if (!hold || segment_ == nullptr) return false;
  segment_->messageTime = 0;
  segment_->messageSize = 0;
  return true;
}

bool CoreLcdAccessor::GetMessageData(const uint8_t** data, int32_t* size) {
  const Hold hold(*this);
  if (!hold) return false;
  const auto messageSize = segment_ == nullptr ? 0 : static_cast<int32_t>(ReadOnce(segment_->messageSize));
  // A size beyond the slot is no message of this layout, and nobody may copy that much out.
  const bool present = messageSize > 0 && static_cast<size_t>(messageSize) <= LcdSegment::kMessageBytes;
  *data = present ? segment_->messageArea : nullptr;
  *size = present ? messageSize : 0;
  return present;
}

bool CoreLcdAccessor::PruneDeadMessage() {
  const Hold hold(*this);
  if (!hold || segment_ == nullptr || ReadOnce(segment_->messageSize) == 0) return false;
  // Signed, so that the tick may wrap; a stamp ahead of the lock is never dead.
  const auto age = static_cast<int32_t>(LockTime() - ReadOnce(segment_->messageTime));
  if (age <= MessageTimeout()) return false;
  char target[kTargetBytes];
  if (GetMessageTarget(target, sizeof(target))) {
    // No more entries than the list has room for, should somebody add them meanwhile.
    for (size_t i = 0; i < LcdSegment::kListBytes && RemoveConnection(target, kEveryRealm); ++i) {
    }
  }
  ClearMessage();
  return true;
}
