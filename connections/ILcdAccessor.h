// The connection directory as its users see it. Names are UTF-8. Every operation takes the lock for itself; holds nest,
// so a caller brackets several with Lock and Unlock. Without the lock an operation answers its failure value and
// touches nothing.
#pragma once

#include <cstddef>
#include <cstdint>

// <windows.h> makes a macro of this name, which would rename the operation.
#undef DispatchMessage

enum class LcdDispatch : int32_t {
  NotPosted = 0,  // no lock, no segment, or the slot is taken
  Posted = 1,
  Refused = 2  // nobody listens under that name, or in another format
};

class ILcdAccessor {
 public:
  virtual ~ILcdAccessor() = default;

  // The count of nested holds; 0 or less: not obtained. Waits without a limit.
  virtual int32_t Lock() = 0;
  // The count that remains.
  virtual int32_t Unlock() = 0;
  // Tick in milliseconds of the outermost hold; it does not advance during one.
  virtual uint32_t LockTime() = 0;
  // The format of a listening connection; 0 for none.
  virtual int32_t FindConnectionFormat(const char* name, uint32_t realm) = 0;
  // Takes out the first entry that matches. False when there was none.
  virtual bool RemoveConnection(const char* name, uint32_t realm) = 0;
  // Enters a name unless one is there in the realm to seek. False when it is, or there is no room.
  virtual bool TryAddConnection(const char* name, uint32_t realmToSeek, uint32_t realmToAdd, int32_t format) = 0;
  // Copies out whom the message in the slot is for, terminated. False when there is none or it does not fit.
  virtual bool GetMessageTarget(char* buffer, size_t size) = 0;
  virtual LcdDispatch DispatchMessage(const uint8_t* data, int32_t size, int32_t senderVersion, int32_t expectedFormat,
                                      uint32_t realm) = 0;
  virtual bool ClearMessage() = 0;
  // Takes out a message that nobody collected in time, with every connection of its target's name. False when there is
  // none.
  virtual bool PruneDeadMessage() = 0;
  // The age in milliseconds beyond which a message is dead.
  virtual int32_t MessageTimeout() = 0;
  // The message in the slot, in the segment itself: stable only while the caller holds the lock. False, with null and
  // 0, when there is none; without the lock the outputs are left alone.
  virtual bool GetMessageData(const uint8_t** data, int32_t* size) = 0;
};
