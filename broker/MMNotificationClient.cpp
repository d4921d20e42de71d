#include "broker/MMNotificationClient.h"

#include <new>

#include "engine/Handles.h"

namespace {

bool IsRenderEndpoint(IMMDeviceEnumerator* enumerator, LPCWSTR deviceId) {
  ComPtr<IMMDevice> device;
  ComPtr<IMMEndpoint> endpoint;
  EDataFlow flow = eCapture;
  return enumerator != nullptr && SUCCEEDED(enumerator->GetDevice(deviceId, &device)) && device &&
         SUCCEEDED(device->QueryInterface(__uuidof(IMMEndpoint), reinterpret_cast<void**>(endpoint.GetAddressOf()))) &&
         SUCCEEDED(endpoint->GetDataFlow(&flow)) && flow == eRender;
}

}  // namespace

MMNotificationClient* MMNotificationClient::Create(HANDLE source) {
  auto* const client = new (std::nothrow) MMNotificationClient(source);
  if (client != nullptr) client->Register();
  return client;
}

void MMNotificationClient::Register() {
  if (registered != 0) return;
  const HRESULT created =
      CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IMMDeviceEnumerator),
                       reinterpret_cast<void**>(enumerator.GetAddressOf()));
  if (SUCCEEDED(created) && SUCCEEDED(enumerator->RegisterEndpointNotificationCallback(this))) registered = 1;
}

HRESULT MMNotificationClient::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  if (iid == __uuidof(IUnknown) || iid == __uuidof(IMMNotificationClient)) {
    AddRef();
    *out = static_cast<IMMNotificationClient*>(this);
    return S_OK;
  }
  *out = nullptr;
  return E_NOINTERFACE;
}

ULONG MMNotificationClient::AddRef() {
  return static_cast<ULONG>(++refCount);
}

ULONG MMNotificationClient::Release() {
  const int32_t count = --refCount;
  if (count == 0) {
    ShutDown();
    DropHold();
  }
  // Below zero only when a client destroyed what it had destroyed before.
  return count > 0 ? static_cast<ULONG>(count) : 0;
}

void MMNotificationClient::LeaveList() {
  Release();
  DropHold();
}

void MMNotificationClient::DropHold() {
  if (--holds == 0) delete this;
}

void MMNotificationClient::ShutDown() {
  // The enumerator may release its own reference while it is left; the count is below zero then and does nothing.
  if (enumerator) enumerator->UnregisterEndpointNotificationCallback(this);
  KernelHandle(defaultDeviceChangeEvent.exchange(nullptr)).Reset();
  KernelHandle(deviceStateChangeEvent.exchange(nullptr)).Reset();
  registered = 0;
  // The enumerator itself is let go with the memory: a callback already under way may still be asking it for a device.
}

bool MMNotificationClient::ReplaceEvent(std::atomic<HANDLE>& field, HANDLE sourceEvent) const {
  if (sourceEvent == nullptr || refCount.load() <= 0) return false;
  HANDLE duplicate = nullptr;
  if (!DuplicateHandle(sourceProcess, sourceEvent, GetCurrentProcess(), &duplicate, 0, FALSE, DUPLICATE_SAME_ACCESS)) {
    return false;
  }
  KernelHandle(field.exchange(duplicate)).Reset();
  return true;
}

bool MMNotificationClient::SetDefaultDeviceChangeEvent(HANDLE sourceEvent) {
  return ReplaceEvent(defaultDeviceChangeEvent, sourceEvent);
}

bool MMNotificationClient::SetDeviceStateChangeEvent(HANDLE sourceEvent) {
  return ReplaceEvent(deviceStateChangeEvent, sourceEvent);
}

// A new default for playing always signals; one for recording only in the role of multimedia.
HRESULT MMNotificationClient::OnDefaultDeviceChanged(EDataFlow flow, ERole role, LPCWSTR /*deviceId*/) {
  if (flow != eRender && role != eMultimedia) return S_OK;
  SetEvent(defaultDeviceChangeEvent.load());
  return S_OK;
}

HRESULT MMNotificationClient::OnDeviceStateChanged(LPCWSTR deviceId, DWORD /*newState*/) {
  if (IsRenderEndpoint(enumerator.Get(), deviceId)) SetEvent(deviceStateChangeEvent.load());
  return S_OK;
}

HRESULT MMNotificationClient::OnDeviceAdded(LPCWSTR /*deviceId*/) {
  return S_OK;
}
HRESULT MMNotificationClient::OnDeviceRemoved(LPCWSTR /*deviceId*/) {
  return S_OK;
}
HRESULT MMNotificationClient::OnPropertyValueChanged(LPCWSTR /*deviceId*/, const PROPERTYKEY /*key*/) {
  return S_OK;
}
