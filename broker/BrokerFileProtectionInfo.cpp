#include "broker/BrokerFileProtectionInfo.h"

#include <new>

#include "broker/ProtectionQuery.h"
#include "engine/DllHelpers.h"

BrokerFileProtectionInfo::BrokerFileProtectionInfo(const wchar_t* path) {
  // A file that does not exist is not protected; no worker is started for it.
  const Kernel32DllHelper& kernel32 = Kernel32();
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (kernel32.GetFileAttributesExW == nullptr) return;
  if (!kernel32.GetFileAttributesExW(path, GetFileExInfoStandard, &data)) return;
  query = Adopt(new (std::nothrow) ProtectionQuery(path));
  if (query) query->Ask();
}

BrokerFileProtectionInfo::~BrokerFileProtectionInfo() = default;

bool BrokerFileProtectionInfo::IsProtected() const {
  return query && query->IsProtected();
}

WideView BrokerFileProtectionInfo::GetIdentity() const {
  return query ? query->Identity() : WideView();
}
