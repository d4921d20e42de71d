#include "broker/DeferredOpening.h"

#include "broker/EnterpriseIdentityList.h"
#include "broker/ZoneMarks.h"
#include "engine/ComSupport.h"
#include "engine/Handles.h"

namespace {

// Whether opening with this disposition would make the file anew.
bool MakesAnew(DWORD disposition, bool exists) {
  if (exists) return disposition == CREATE_ALWAYS;
  return disposition == CREATE_NEW || disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS;
}

// Puts the file under the identity that the user chose in the dialog, before anything is written to it.
bool ProtectFirst(DeferredOpen& open, const wchar_t* path, const Kernel32DllHelper& kernel32,
                  const Edpwin32DllHelper& protection) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  const bool exists =
      kernel32.GetFileAttributesExW != nullptr && kernel32.GetFileAttributesExW(path, GetFileExInfoStandard, &data);
  if (MakesAnew(open.creationDisposition, exists)) {
    const FileHandle created(
        kernel32.CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!created) return false;
  }
  open.creationDisposition = OPEN_EXISTING;
  return protection.ProtectFileToEnterpriseIdentity == nullptr ||
         SUCCEEDED(protection.ProtectFileToEnterpriseIdentity(path, open.identity->c_str()));
}

}  // namespace

HANDLE OpenDeferred(BrokerCookieRecord& record, const Kernel32DllHelper& kernel32,
                    const Edpwin32DllHelper& protection) {
  const std::unique_ptr<DeferredOpen> open = std::move(record.deferredOpen);
  if (kernel32.CreateFileW == nullptr || !record.filePath) return INVALID_HANDLE_VALUE;
  const wchar_t* const path = record.filePath->c_str();
  if (open->identity && (open->desiredAccess & GENERIC_WRITE) != 0) {
    const EnterpriseIdentityList serverIdentities(EnterpriseIdentityList::Of::ServerProcess);
    if (serverIdentities.HasIdentity() && !ProtectFirst(*open, path, kernel32, protection)) return INVALID_HANDLE_VALUE;
  }
  FileHandle file(kernel32.CreateFileW(path, open->desiredAccess, open->shareMode, nullptr, open->creationDisposition,
                                       open->flagsAndAttributes, nullptr));
  const ComInitializer com;
  if (com.Succeeded()) LumenBrokerAttachmentExecute::Mark(path);  // whatever the open gave
  return file.Release();                                          // the record's from here on
}
