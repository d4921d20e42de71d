#include "broker/BrokerFactory.h"

#include <new>

HRESULT CoLumenBrokerServer::Factory::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
  AddRef();
  *out = static_cast<IClassFactory*>(this);
  return S_OK;
}

ULONG CoLumenBrokerServer::Factory::AddRef() {
  return static_cast<ULONG>(++refCount);
}

ULONG CoLumenBrokerServer::Factory::Release() {
  const int32_t count = --refCount;
  if (count == 0) delete this;
  return static_cast<ULONG>(count);
}

HRESULT CoLumenBrokerServer::Factory::CreateInstance(IUnknown* outer, REFIID iid, void** out) try {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  auto* const server = new (std::nothrow) CoLumenBrokerServer(host);
  if (server == nullptr) return E_OUTOFMEMORY;
  const HRESULT found = server->QueryInterface(iid, out);
  server->Release();
  return found;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::Factory::LockServer(BOOL lock) {
  lockCount += lock ? 1 : -1;
  return S_OK;
}
