// The chain of asynchronous platform calls behind a protection query, and the state that it leaves.
//
// The steps run on the worker thread and on threads of the platform, one after the other; `done` publishes what they
// wrote. The completion handlers hold references, so one that comes late finds its state still there.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <optional>

#include "broker/EnterpriseData.h"
#include "broker/Task.h"
#include "engine/Handles.h"
#include "engine/WideText.h"

class ProtectionQuery final : public enterprise::IStorageFileHandler,
                              public enterprise::IProtectionInfoHandler,
                              public TaskJob {
 public:
  enum class Status : uint32_t { NotAsked = 0, Running = 2, FoundProtected = 3, Failed = 4 };

  explicit ProtectionQuery(const wchar_t* filePath);

  // Posts the query and waits for its end. Must not be called on the worker thread.
  void Ask();

  // IUnknown, for both handlers. Answers IAgileObject: a handler bound to the asking apartment could never be called.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  // The file has been opened, or not.
  HRESULT STDMETHODCALLTYPE Invoke(enterprise::IStorageFileOperation* operation, enterprise::AsyncState state) override;
  // Its protection is known, or not.
  HRESULT STDMETHODCALLTYPE Invoke(enterprise::IProtectionInfoOperation* operation,
                                   enterprise::AsyncState state) override;

  // TaskJob
  void Run() override;

  [[nodiscard]] bool IsProtected() const { return isProtected != 0; }
  [[nodiscard]] WideView Identity() const { return identity; }

 private:
  ~ProtectionQuery() = default;

  void Fail();
  void Publish(Status end);
  [[nodiscard]] HRESULT StartInfoQuery(enterprise::IStorageFileOperation* operation);
  [[nodiscard]] HRESULT TakeInfo(enterprise::IProtectionInfoOperation* operation);

  std::atomic<ULONG> refCount{1};
  WideString path;
  uint32_t isProtected = 0;
  WideString identity;
  std::atomic<Status> status{Status::NotAsked};
  std::atomic<bool> finished{false};
  KernelHandle done;  // manual reset
};
