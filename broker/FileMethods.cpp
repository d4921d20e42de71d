// Opening, reading, writing, seeking and closing files. None of these impersonates the client: the server's own token
// opens every file, and what protects the machine is the path policy and the look at the first write.
#include <windows.h>

#include <new>
#include <utility>

#include "broker/BrokerFileProtectionInfo.h"
#include "broker/CoLumenBrokerServer.h"
#include "broker/DeferredOpening.h"
#include "broker/ExecutableSniffer.h"
#include "broker/FileOpening.h"
#include "broker/SafeArrayBytes.h"
#include "broker/ZoneMarks.h"
#include "engine/ComSupport.h"

namespace {

// More than a call can carry back. Marshallers reckon a reply's length in 32 bits, with their own words on top; one
// whose length wraps would be written over the server's memory. It fails like an array that there is no memory for.
constexpr ULONG kMostReplyBytes = 0x7FFF0000;

HANDLE ToHandle(intptr_t value) {
  return reinterpret_cast<HANDLE>(value);
}
intptr_t FromHandle(HANDLE handle) {
  return reinterpret_cast<intptr_t>(handle);
}

// The cookie's file, opened a second time for the look at what precedes a write.
class CookieFileSource final : public FileSniffSource {
 public:
  CookieFileSource(const Kernel32DllHelper& helper, HANDLE cookieHandle, const BrokerCookieRecord& cookieRecord)
      : kernel32(helper), handle(cookieHandle), record(cookieRecord) {}

  Result Rewind() override {
    const DWORD position = SetFilePointer(handle, 0, nullptr, FILE_BEGIN);
    return position == INVALID_SET_FILE_POINTER ? LastError() : result::Ok;
  }
  Result Open() override {
    if (!record.filePath) return HresultFromError(ERROR_PATH_NOT_FOUND);
    file = OpenSharedForReading(kernel32, record.filePath->c_str());
    return file ? result::Ok : LastError();
  }
  Result ByteAt(uint32_t position, uint8_t& byte) override {
    DWORD read = 0;
    byte = 0;
    SetFilePointer(file.Get(), static_cast<LONG>(position), nullptr, FILE_BEGIN);
    return ReadFile(file.Get(), &byte, 1, &read, nullptr) ? result::Ok : LastError();
  }

 private:
  static Result LastError() { return HresultFromError(static_cast<int32_t>(GetLastError())); }

  const Kernel32DllHelper& kernel32;
  HANDLE handle;
  const BrokerCookieRecord& record;
  FileHandle file;
};

}  // namespace

HRESULT CoLumenBrokerServer::BrokerCreateFile(BSTR pFileName, LONG p_readOnly, LONG p_truncateOnOpen,
                                              ULONG* p_fileCookie) try {
  if (p_fileCookie == nullptr) return E_INVALIDARG;
  *p_fileCookie = 0;
  const std::optional<WideString> path = Expand(pFileName);
  if (!path) return E_INVALIDARG;
  const Kernel32DllHelper& kernel32 = pathOperations.Kernel();
  if (kernel32.CreateFileW == nullptr) return E_FAIL;

  const bool reading = p_readOnly != 0;
  DWORD disposition = p_truncateOnOpen != 0 ? CREATE_ALWAYS : OPEN_ALWAYS;
  const HRESULT judged = reading ? JudgeReading(*path) : JudgeWriting(*path, disposition);
  if (FAILED(judged)) return judged;

  FileHandle file;
  if (reading) {
    file = OpenSharedForReading(kernel32, path->c_str());
  } else {
    file.Reset(kernel32.CreateFileW(path->c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, disposition,
                                    FILE_FLAG_RANDOM_ACCESS, nullptr));
  }
  if (!file) return LastErrorResult();
  if (!reading) {
    const ComInitializer com;
    if (com.Succeeded()) LumenBrokerZoneIdentifier::Mark(path->c_str());
  }
  return EnterFile(std::move(file), *path, *p_fileCookie);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

// Sniffing is armed for reads as well; only a write ever runs it.
HRESULT CoLumenBrokerServer::EnterFile(FileHandle file, const WideString& path, ULONG& cookie) {
  uint32_t number = 0;
  if (!cookies.AddFileCookie(FromHandle(file.Get()), number, true, path.c_str(), nullptr)) return E_FAIL;
  (void)file.Release();  // the record's from here on
  cookie = number;
  return S_OK;
}

// Reading is not restricted by path; only a file that an enterprise protects is kept from callers of another identity.
HRESULT CoLumenBrokerServer::JudgeReading(const WideString& path) {
  const EnterpriseIdentityList callerIdentities(EnterpriseIdentityList::Of::CallingClient);
  if (!callerIdentities.HasIdentity()) {
    if (!serverIdentities.HasIdentity()) return S_OK;
    const BrokerFileProtectionInfo protection(path.c_str());
    return protection.IsProtected() ? E_ACCESSDENIED : S_OK;
  }
  const BrokerFileProtectionInfo protection(path.c_str());
  if (!protection.IsProtected() || protection.GetIdentity().empty()) return S_OK;
  return callerIdentities.Contains(protection.GetIdentity()) ? S_OK : E_ACCESSDENIED;
}

HRESULT CoLumenBrokerServer::JudgeWriting(const WideString& path, DWORD& disposition) {
  const EnterpriseIdentityList callerIdentities(EnterpriseIdentityList::Of::CallingClient);
  bool shared = false;
  if (!policy.IsWritableDataPath(path.c_str(), true, &shared)) return E_ACCESSDENIED;
  if (!callerIdentities.HasIdentity() || !shared || !serverIdentities.HasIdentity()) return S_OK;
  if (pathOperations.AttributesEx(path)) return S_OK;

  // A new file among the shared objects is protected before anything is in it.
  const Kernel32DllHelper& kernel32 = pathOperations.Kernel();
  FileHandle created(kernel32.CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, disposition,
                                          FILE_FLAG_RANDOM_ACCESS, nullptr));
  if (!created) return LastErrorResult();
  created.Reset();
  disposition = OPEN_EXISTING;
  if (efswrt.ProtectFileToEnterpriseIdentity == nullptr) return S_OK;
  return efswrt.ProtectFileToEnterpriseIdentity(path.c_str(), WideString(callerIdentities.First()).c_str());
}

HRESULT CoLumenBrokerServer::BrokerCloseHandle(ULONG p_fileCookie) {
  HANDLE handle = INVALID_HANDLE_VALUE;
  if (ResolveFileHandle(p_fileCookie, handle, true) == nullptr) return E_INVALIDARG;
  FileHandle(handle).Reset();  // a failure to close is nobody's concern
  (void)cookies.FreeCookie(p_fileCookie);
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerSetFilePointer(ULONG p_fileCookie, LONG p_distanceToMove, ULONG p_moveMethod,
                                                  ULONG* p_newPosition) try {
  HANDLE handle = INVALID_HANDLE_VALUE;
  BrokerCookieRecord* const record = ResolveFileHandle(p_fileCookie, handle, false);
  if (record == nullptr || p_newPosition == nullptr) return E_INVALIDARG;
  // Whatever the move is measured from: the look at a first write takes it for the distance from the start.
  record->seekBase = p_distanceToMove;
  SetLastError(ERROR_SUCCESS);  // all ones is also a position
  const DWORD position = SetFilePointer(handle, p_distanceToMove, nullptr, p_moveMethod);
  const HRESULT outcome = position == INVALID_SET_FILE_POINTER ? LastErrorResult() : S_OK;
  if (SUCCEEDED(outcome)) *p_newPosition = position;
  return outcome;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerReadFile(ULONG p_fileCookie, ULONG p_numToRead, ULONG* p_numRead,
                                            SAFEARRAY** p_data) {
  intptr_t raw = kNoHandle;
  if (!cookies.ResolveRawHandle(p_fileCookie, raw) || p_numRead == nullptr || p_data == nullptr) return E_INVALIDARG;
  *p_data = p_numToRead > kMostReplyBytes ? nullptr : SafeArrayCreateVector(VT_UI1, 0, p_numToRead);
  if (*p_data == nullptr) return E_FAIL;
  void* bytes = nullptr;
  // An array that cannot be locked goes back as it is, with success; clients look at the count first.
  if (FAILED(SafeArrayAccessData(*p_data, &bytes))) return S_OK;
  *p_numRead = 0;
  DWORD read = 0;
  const BOOL done = ReadFile(ToHandle(raw), bytes, p_numToRead, &read, nullptr);
  const HRESULT failure = LastErrorResult();
  SafeArrayUnaccessData(*p_data);
  if (done) {
    *p_numRead = read;
    return S_OK;
  }
  SafeArrayDestroy(*p_data);
  *p_data = nullptr;
  return failure;
}

HRESULT CoLumenBrokerServer::BrokerWriteFile(ULONG p_fileCookie, SAFEARRAY* p_data, ULONG* p_numWritten) try {
  HANDLE handle = INVALID_HANDLE_VALUE;
  BrokerCookieRecord* const record = ResolveFileHandle(p_fileCookie, handle, false);
  if (record == nullptr || p_data == nullptr || p_numWritten == nullptr) return E_INVALIDARG;
  *p_numWritten = 0;
  const SafeArrayBytes slice(p_data);
  if (!slice.IsOpen()) return slice.LockResult();

  HRESULT outcome = S_OK;
  {
    // Closes the file again before it may have to be deleted.
    CookieFileSource source(pathOperations.Kernel(), handle, *record);
    outcome = SniffSlice(*record, slice.Bytes(), source);
  }
  if (record->executableSeen != 0) {
    DropExecutable(*record, handle);
    return E_FAIL;
  }
  DWORD written = 0;
  const auto length = static_cast<DWORD>(slice.Bytes().size());
  if (!WriteFile(handle, slice.Bytes().data(), length, &written, nullptr)) outcome = LastErrorResult();
  *p_numWritten = written;
  record->writePosition += length;
  record->lastWriteSize = length;
  return outcome;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

// Takes away a file that turned out to be an executable image. The cookie stays, without a handle.
//
// Sniffing also runs when a client writes through a cookie that it opened for reading, where the write itself would
// fail. Reading is open to any path, so the file is deleted only where the client could have written it.
void CoLumenBrokerServer::DropExecutable(BrokerCookieRecord& record, HANDLE handle) {
  if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return;
  FileHandle(handle).Reset();
  record.handle = kNoHandle;
  const auto remove = pathOperations.Kernel().DeleteFileW;
  if (remove != nullptr && record.filePath && policy.IsWritableDataPath(record.filePath->c_str(), false, nullptr)) {
    remove(record.filePath->c_str());
  }
}

BrokerCookieRecord* CoLumenBrokerServer::ResolveFileHandle(uint32_t cookie, HANDLE& handle, bool noDeferredOpen) {
  handle = INVALID_HANDLE_VALUE;
  BrokerCookieRecord* const record = cookies.FindCookie(cookie);
  if (record == nullptr) return nullptr;
  if (noDeferredOpen || !record->deferredOpen) {
    handle = ToHandle(record->handle);
    return record;
  }
  // While the platform's attachment services look at the file, other calls of this client may arrive, and one of them
  // may close the cookie. So the record is not touched meanwhile, and looked up again.
  BrokerCookieRecord opening;
  opening.filePath = record->filePath;
  opening.deferredOpen = std::move(record->deferredOpen);
  FileHandle file(OpenDeferred(opening, pathOperations.Kernel(), efswrt));
  BrokerCookieRecord* const remaining = cookies.FindCookie(cookie);
  if (remaining == nullptr) return nullptr;
  handle = file.Release();  // the record's from here on
  remaining->handle = FromHandle(handle);
  return remaining;
}
