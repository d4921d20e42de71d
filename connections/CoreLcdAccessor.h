// Every algorithm of the connection directory, on a segment that somebody else maps. No operation allocates.
//
// The segment is shared with participants that may write anything into it, with or without the lock. No word in it is
// trusted for a bound: every walk and copy ends at the mapping, and a word that decides is read once.
#pragma once

#include "connections/ILcdAccessor.h"
#include "connections/LcdSegment.h"

class CoreLcdAccessor : public virtual ILcdAccessor {
 public:
  int32_t FindConnectionFormat(const char* name, uint32_t realm) override;
  bool RemoveConnection(const char* name, uint32_t realm) override;
  bool TryAddConnection(const char* name, uint32_t realmToSeek, uint32_t realmToAdd, int32_t format) override;
  bool GetMessageTarget(char* buffer, size_t size) override;
  LcdDispatch DispatchMessage(const uint8_t* data, int32_t size, int32_t senderVersion, int32_t expectedFormat,
                              uint32_t realm) override;
  bool ClearMessage() override;
  bool PruneDeadMessage() override;
  bool GetMessageData(const uint8_t** data, int32_t* size) override;

  // The entry of a name that a seeker in `realm` sees, or the list's terminator; null when there is no segment, or no
  // terminator before the mapping ends. The caller holds the lock.
  [[nodiscard]] uint8_t* FindConnection(const char* name, uint32_t realm) const;
  // `mappedBytes` is how much of memory from `segment` on may be touched, at least the segment and its overrun.
  void AttachSegment(LcdSegment* segment, bool initialise, size_t mappedBytes);
  [[nodiscard]] bool IsSegmentValid() const;

 protected:
  [[nodiscard]] LcdSegment* Segment() const { return segment_; }

 private:
  [[nodiscard]] uint8_t* End() const { return reinterpret_cast<uint8_t*>(segment_) + mappedBytes_; }
  [[nodiscard]] uint8_t ByteAt(const uint8_t* from, size_t offset) const;
  [[nodiscard]] bool HasSuffix(const uint8_t* at) const;

  LcdSegment* segment_ = nullptr;  // not owned
  size_t mappedBytes_ = 0;
};
