// Signals a client's events when the system's audio devices change. One for each BrokerMMNotificationClientCreate; the
// client names it by its address.
//
// The broker methods run on the apartment thread, the callbacks on threads of the audio service. The two event handles
// pass between them without a lock: a callback that reads none signals nothing.
//
// Its reference count is one a client can run down: the destroy method releases and leaves the entry in the broker's
// list, so destroying twice releases twice, and the end of the broker object releases once more. What a count of zero
// means, closing the events and leaving the enumerator, therefore happens once, at zero; the memory goes only when the
// list has let go as well.
#pragma once

#include <windows.h>

#include <mmdeviceapi.h>

#include <atomic>
#include <cstdint>

#include "engine/ComSupport.h"

class MMNotificationClient final : public IMMNotificationClient {
 public:
  // Registers with the device enumerator; without one the object exists and never signals. `source` is a handle in this
  // process of the process that the event handles come from; it is not owned.
  static MMNotificationClient* Create(HANDLE source);

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR deviceId, DWORD newState) override;
  HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR deviceId) override;
  HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR deviceId) override;
  HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow flow, ERole role, LPCWSTR deviceId) override;
  HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR deviceId, const PROPERTYKEY key) override;

  // Takes a duplicate of the source process's event in place of the one held. False when it cannot be duplicated, is
  // null, or the object has already been released to zero.
  [[nodiscard]] bool SetDefaultDeviceChangeEvent(HANDLE sourceEvent);
  [[nodiscard]] bool SetDeviceStateChangeEvent(HANDLE sourceEvent);
  // The broker's list lets go: releases the list's reference, and frees the object once that count is at zero.
  void LeaveList();

 private:
  explicit MMNotificationClient(HANDLE source) : sourceProcess(source) {}
  virtual ~MMNotificationClient() = default;

  void Register();
  void ShutDown();
  void DropHold();
  [[nodiscard]] bool ReplaceEvent(std::atomic<HANDLE>& field, HANDLE sourceEvent) const;

  uint8_t registered = 0;
  HANDLE sourceProcess;  // of the client's process; never closed here
  ComPtr<IMMDeviceEnumerator> enumerator;
  std::atomic<HANDLE> defaultDeviceChangeEvent{nullptr};  // owned
  std::atomic<HANDLE> deviceStateChangeEvent{nullptr};    // owned
  std::atomic<int32_t> refCount{1};
  // Who keeps the memory: the broker's list, and any reference at all.
  std::atomic<int32_t> holds{2};
};
