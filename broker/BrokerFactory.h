// The broker's class object. One exists while the server is published; it makes a broker object for each client and
// counts them. All calls on the server's apartment thread; the counts are atomic because COM asks that of reference
// counts.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>
#include <cstdint>

#include "broker/CoLumenBrokerServer.h"

class CoLumenBrokerServer::Factory final : public IClassFactory {
 public:
  explicit Factory(HostCallbacks* hostCallbacks) : host(hostCallbacks) {}
  Factory(const Factory&) = delete;
  Factory& operator=(const Factory&) = delete;

  // IUnknown and IClassFactory; anything else is E_NOINTERFACE with a null `out`.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  // CLASS_E_NOAGGREGATION for an outer object, E_OUTOFMEMORY, or what the new object's QueryInterface says. An unknown
  // interface makes an object and destroys it again, which may end the server like any other last release.
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override;
  // Only counts, and answers S_OK: taking the last lock away leaves the server running until an object is next
  // released.
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

  // A broker object has come (+1) or gone (-1).
  void CountObject(int32_t change) { objectCount += change; }
  // No object and no lock.
  [[nodiscard]] bool CanUnload() const { return objectCount == 0 && lockCount == 0; }

 private:
  virtual ~Factory() = default;

  std::atomic<int32_t> refCount{1};
  std::atomic<int32_t> lockCount{0};
  std::atomic<int32_t> objectCount{0};
  HostCallbacks* host;  // not owned; each broker object is given it
};

// The class object while it is published, else null; broker objects count themselves with it. Kept by BrokerServer.cpp.
[[nodiscard]] CoLumenBrokerServer::Factory* CurrentFactory();
