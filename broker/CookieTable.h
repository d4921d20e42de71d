// One client's cookies: 32-bit numbers that stand for files, searches and downloads. Plain logic; it opens and closes
// nothing. Apartment thread only. The table is bounded by memory alone, and the newest record is found first.
#pragma once

#include <cstdint>
#include <memory>

#include "broker/BrokerCookieRecord.h"

class CookieTable {
 public:
  explicit CookieTable(uint32_t firstCookie = 1) : nextCookie(firstCookie) {}
  CookieTable(const CookieTable&) = delete;
  CookieTable& operator=(const CookieTable&) = delete;
  // Frees the records. Their handles stay open until the process ends: a client that wants them closed closes its
  // cookies.
  ~CookieTable();

  // A new record at the head of the list, owned by the table; null when there is no memory. Numbers run upwards and
  // skip 0 at the wrap; whether a number is still in use after four thousand million of them is not looked at.
  [[nodiscard]] BrokerCookieRecord* AllocateCookie();
  // Enters a file: an open handle, or none with a `deferredOpen`. False, with 0 in `cookieOut`, when there is neither
  // or no memory; the handle is then the caller's still. The path is kept only with `sniff` or a deferred open.
  [[nodiscard]] bool AddFileCookie(intptr_t handle, uint32_t& cookieOut, bool sniff, const wchar_t* path,
                                   std::unique_ptr<DeferredOpen> deferredOpen);
  [[nodiscard]] BrokerCookieRecord* FindCookie(uint32_t cookie) const;
  // The handle behind a cookie without opening what is deferred. False when there is no record or no handle.
  [[nodiscard]] bool ResolveRawHandle(uint32_t cookie, intptr_t& handleOut) const;
  // Takes a record out and frees it. False when the number is unknown. Closes nothing.
  [[nodiscard]] bool FreeCookie(uint32_t cookie);
  // Frees every record, newest first. Closes nothing either.
  void FreeAll();

 private:
  uint32_t nextCookie;
  BrokerCookieRecord* cookieList = nullptr;
};
