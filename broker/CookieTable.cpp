#include "broker/CookieTable.h"

#include <new>
#include <utility>

namespace {

bool IsOpen(intptr_t handle) {
  return handle != 0 && handle != kNoHandle;
}

}  // namespace

CookieTable::~CookieTable() {
  FreeAll();
}

BrokerCookieRecord* CookieTable::AllocateCookie() {
  if (nextCookie == 0) nextCookie = 1;
  auto* const record = new (std::nothrow) BrokerCookieRecord;
  if (record == nullptr) return nullptr;
  record->cookie = nextCookie++;
  record->next = cookieList;
  cookieList = record;
  return record;
}

bool CookieTable::AddFileCookie(intptr_t handle, uint32_t& cookieOut, bool sniff, const wchar_t* path,
                                std::unique_ptr<DeferredOpen> deferredOpen) try {
  cookieOut = 0;
  if (!IsOpen(handle) && deferredOpen == nullptr) return false;
  // Before the record exists, so that a failure leaves the table as it was.
  std::optional<WideString> keptPath;
  if ((sniff || deferredOpen != nullptr) && path != nullptr) keptPath = path;
  BrokerCookieRecord* const record = AllocateCookie();
  if (record == nullptr) return false;
  record->deferredOpen = std::move(deferredOpen);
  record->sniffActive = sniff ? 1 : 0;
  record->handle = handle == 0 ? kNoHandle : handle;
  record->filePath = std::move(keptPath);
  cookieOut = record->cookie;
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

BrokerCookieRecord* CookieTable::FindCookie(uint32_t cookie) const {
  BrokerCookieRecord* record = cookieList;
  while (record != nullptr && record->cookie != cookie) record = record->next;
  return record;
}

bool CookieTable::ResolveRawHandle(uint32_t cookie, intptr_t& handleOut) const {
  const BrokerCookieRecord* const record = FindCookie(cookie);
  handleOut = record == nullptr ? kNoHandle : record->handle;
  return handleOut != kNoHandle;
}

bool CookieTable::FreeCookie(uint32_t cookie) {
  for (BrokerCookieRecord** link = &cookieList; *link != nullptr; link = &(*link)->next) {
    if ((*link)->cookie != cookie) continue;
    delete std::exchange(*link, (*link)->next);
    return true;
  }
  return false;
}

void CookieTable::FreeAll() {
  while (cookieList != nullptr) delete std::exchange(cookieList, cookieList->next);
}
