// Asks the platform whether a file belongs to an enterprise identity, and to which. The constructor waits for the
// answer, without a limit; the question itself runs on the Task worker. A query that fails leaves the file unprotected,
// which is settled: protection must not make every other file unreadable. Apartment thread.
#pragma once

#include <windows.h>

#include <cstdint>

#include "engine/ComSupport.h"
#include "engine/WideText.h"

class ProtectionQuery;

class BrokerFileProtectionInfo {
 public:
  explicit BrokerFileProtectionInfo(const wchar_t* path);
  BrokerFileProtectionInfo(const BrokerFileProtectionInfo&) = delete;
  BrokerFileProtectionInfo& operator=(const BrokerFileProtectionInfo&) = delete;
  ~BrokerFileProtectionInfo();

  [[nodiscard]] bool IsProtected() const;
  // The owning identity, empty when there is none. Valid while this object lives.
  [[nodiscard]] WideView GetIdentity() const;

 private:
  // Shared with the completion handlers, which may outlive this object.
  ComPtr<ProtectionQuery> query;
};
