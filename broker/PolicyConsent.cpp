#include "broker/PolicyConsent.h"

#include <atomic>
#include <new>

#include "broker/EnterpriseData.h"
#include "engine/Handles.h"

using enterprise::AsyncState;
using enterprise::Evaluation;

namespace {

// Every kind of message and input; written out because the headers' name for it varies with the version asked for.
constexpr DWORD kAnyMessage = 7423;

class ConsentHandler final : public enterprise::IEvaluationHandler {
 public:
  ConsentHandler() : answered(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    const bool known =
        iid == __uuidof(IUnknown) || iid == __uuidof(IAgileObject) || iid == __uuidof(enterprise::IEvaluationHandler);
    *out = known ? static_cast<enterprise::IEvaluationHandler*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refCount; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG count = --refCount;
    if (count == 0) delete this;
    return count;
  }
  HRESULT STDMETHODCALLTYPE Invoke(enterprise::IEvaluationOperation* operation, AsyncState state) override {
    Evaluation evaluation = Evaluation::Blocked;
    const bool answer = state == AsyncState::Completed && SUCCEEDED(operation->GetResults(&evaluation));
    allowed = answer && evaluation == Evaluation::Allowed;
    SetEvent(answered.Get());
    return S_OK;
  }

  // Serves the apartment's messages until the answer is there. False when waiting itself fails.
  [[nodiscard]] bool Wait() const {
    const HANDLE event = answered.Get();
    if (event == nullptr) return false;
    for (;;) {
      const DWORD waited = MsgWaitForMultipleObjects(1, &event, FALSE, INFINITE, kAnyMessage);
      if (waited == WAIT_OBJECT_0) return true;
      if (waited != WAIT_OBJECT_0 + 1) return false;
      MSG message = {};
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
  }
  [[nodiscard]] bool IsAllowed() const { return allowed; }

 private:
  ~ConsentHandler() = default;

  std::atomic<ULONG> refCount{1};
  std::atomic<bool> allowed{false};
  KernelHandle answered;
};

ComPtr<enterprise::IProtectionPolicyAuditInfo> MakeAuditInfo(const wchar_t* fileName, const wchar_t* remoteUrl) {
  const auto factory =
      enterprise::FactoryOf<enterprise::IProtectionPolicyAuditInfoFactory>(enterprise::kAuditInfoClass);
  const enterprise::String data{WideView(fileName)};
  const enterprise::String target{WideView(remoteUrl)};
  ComPtr<enterprise::IProtectionPolicyAuditInfo> info;
  if (factory && data.IsValid() && target.IsValid()) {
    factory->Create(enterprise::AuditAction::SendToRecipient, data.Get(), nullptr, target.Get(), &info);
  }
  return info;
}

}  // namespace

bool RequestAuditedConsent(const wchar_t* identity, const wchar_t* target, HWND window, const wchar_t* fileName,
                           const wchar_t* remoteUrl) {
  if (identity == nullptr || target == nullptr || window == nullptr || window == INVALID_HANDLE_VALUE) return false;
  const auto manager =
      enterprise::FactoryOf<enterprise::IProtectionPolicyManagerInterop2>(enterprise::kPolicyManagerClass);
  const auto audit = MakeAuditInfo(fileName == nullptr ? L"" : fileName, remoteUrl == nullptr ? L"" : remoteUrl);
  const enterprise::String source{WideView(identity)};
  const enterprise::String destination{WideView(target)};
  if (!manager || !audit || !source.IsValid() || !destination.IsValid()) return false;

  void* raw = nullptr;
  if (FAILED(manager->RequestAccessWithAuditingInfoForWindowAsync(window, source.Get(), destination.Get(), audit.Get(),
                                                                  __uuidof(enterprise::IEvaluationOperation), &raw)) ||
      raw == nullptr) {
    return false;
  }
  const auto operation = Adopt(static_cast<enterprise::IEvaluationOperation*>(raw));
  const auto handler = Adopt(new (std::nothrow) ConsentHandler);
  if (!handler || FAILED(operation->put_Completed(handler.Get()))) return false;
  return handler->Wait() && handler->IsAllowed();
}
