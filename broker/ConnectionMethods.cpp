// The connection directory, which a sandboxed client cannot open itself. Every method makes the object's accessor at
// need; an accessor that could not open the directory is kept, and its operations answer no.
#include <windows.h>

#include <algorithm>
#include <new>
#include <string>

#include "broker/CoLumenBrokerServer.h"
#include "broker/SafeArrayBytes.h"
#include "connections/Win32LcdAccessor.h"

namespace {

constexpr HRESULT kNo = S_FALSE;

HRESULT Answer(bool yes) {
  return yes ? S_OK : kNo;
}

// A text that cannot be converted is the empty one, which no connection has.
std::string NameOf(BSTR text) {
  const int units = static_cast<int>(SysStringLen(text));
  const int length = WideCharToMultiByte(CP_UTF8, 0, text, units, nullptr, 0, nullptr, nullptr);
  std::string name(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  if (length <= 0 || WideCharToMultiByte(CP_UTF8, 0, text, units, name.data(), length, nullptr, nullptr) != length)
    return {};
  name.resize(std::min(name.find('\0'), name.size()));  // a name ends there
  return name;
}

}  // namespace

ILcdAccessor* CoLumenBrokerServer::Directory() {
  if (!lcdAccessor) lcdAccessor.reset(new (std::nothrow) Win32LcdAccessor);
  return lcdAccessor.get();
}

HRESULT CoLumenBrokerServer::BrokerLcdLock(LONG* p_refCount) {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr || p_refCount == nullptr) return E_FAIL;
  *p_refCount = directory->Lock();
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerLcdUnlock(LONG* p_refCount) {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr || p_refCount == nullptr) return E_FAIL;
  *p_refCount = directory->Unlock();
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerLcdLockTime(LONG* p_lockTime) {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr || p_lockTime == nullptr) return E_FAIL;
  *p_lockTime = static_cast<LONG>(directory->LockTime());
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerLcdMessageTimeout(LONG* p_timeout) {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr || p_timeout == nullptr) return E_FAIL;
  *p_timeout = directory->MessageTimeout();
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerLcdFindConnectionFormat(BSTR p_string, ULONG p_realm, LONG* p_format) try {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr || p_string == nullptr || p_format == nullptr) return E_FAIL;
  *p_format = directory->FindConnectionFormat(NameOf(p_string).c_str(), p_realm);
  return Answer(*p_format != 0);
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

HRESULT CoLumenBrokerServer::BrokerLcdRemoveConnection(BSTR p_string, ULONG p_realm) try {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr || p_string == nullptr) return E_FAIL;
  return Answer(directory->RemoveConnection(NameOf(p_string).c_str(), p_realm));
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

HRESULT CoLumenBrokerServer::BrokerLcdTryAddConnection(BSTR p_string, ULONG p_realmToSeek, ULONG p_realmToAdd,
                                                       LONG p_msgFormatVersion) try {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr || p_string == nullptr) return E_FAIL;
  return Answer(directory->TryAddConnection(NameOf(p_string).c_str(), p_realmToSeek, p_realmToAdd, p_msgFormatVersion));
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

HRESULT CoLumenBrokerServer::BrokerLcdGetMessageTarget(BSTR* p_string) try {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr || p_string == nullptr) return E_FAIL;
  char target[1024] = {};
  if (!directory->GetMessageTarget(target, sizeof(target))) return kNo;
  wchar_t wide[1024] = {};
  // What cannot be converted is an empty name.
  if (MultiByteToWideChar(CP_UTF8, 0, target, -1, wide, static_cast<int>(std::size(wide))) == 0) wide[0] = 0;
  *p_string = SysAllocString(wide);
  return *p_string == nullptr ? E_FAIL : S_OK;
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

// The only place where the size of a message is limited.
HRESULT CoLumenBrokerServer::BrokerLcdDispatchMessage(SAFEARRAY* p_msgData, ULONG p_senderTwlVersion,
                                                      ULONG p_expectedMsgFormat, ULONG p_realm) {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr) return E_FAIL;
  const SafeArrayBytes message(p_msgData);
  if (!message.IsOpen()) return message.LockResult();
  if (message.Bytes().size() > LcdSegment::kMessageBytes) return E_FAIL;
  const LcdDispatch outcome = directory->DispatchMessage(
      message.Bytes().data(), static_cast<int32_t>(message.Bytes().size()), static_cast<int32_t>(p_senderTwlVersion),
      static_cast<int32_t>(p_expectedMsgFormat), p_realm);
  if (outcome == LcdDispatch::Refused) return E_INVALIDARG;
  return Answer(outcome == LcdDispatch::Posted);
}

HRESULT CoLumenBrokerServer::BrokerLcdClearMessage() {
  ILcdAccessor* const directory = Directory();
  return directory == nullptr ? E_FAIL : Answer(directory->ClearMessage());
}

HRESULT CoLumenBrokerServer::BrokerLcdPruneDeadMessage() {
  ILcdAccessor* const directory = Directory();
  return directory == nullptr ? E_FAIL : Answer(directory->PruneDeadMessage());
}

// The hold of the accessor's own has ended by the time the bytes are copied; a client that wants them whole holds the
// lock.
HRESULT CoLumenBrokerServer::BrokerLcdGetMessageData(SAFEARRAY** p_msgData) {
  ILcdAccessor* const directory = Directory();
  if (directory == nullptr || p_msgData == nullptr) return E_FAIL;
  const uint8_t* data = nullptr;
  int32_t size = 0;
  if (!directory->GetMessageData(&data, &size)) return kNo;
  if (data == nullptr) return E_FAIL;
  *p_msgData = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size));
  if (*p_msgData == nullptr) return E_FAIL;
  void* bytes = nullptr;
  // An array that cannot be locked goes back unfilled, with success, as it always has.
  if (FAILED(SafeArrayAccessData(*p_msgData, &bytes))) return S_OK;
  CopyMemory(bytes, data, static_cast<size_t>(size));
  SafeArrayUnaccessData(*p_msgData);
  return S_OK;
}
