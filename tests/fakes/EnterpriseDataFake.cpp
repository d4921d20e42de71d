// Stands in for the runtime classes of enterprise data protection: files, their protection, consent.
#include <activation.h>
#include <winstring.h>

#include <atomic>
#include <thread>

#include "broker/EnterpriseData.h"
#include "tests/fakes/FakeControls.h"

using enterprise::AsyncState;
using enterprise::ProtectionStatus;
using Step = EnterpriseControls::Step;

namespace {

EnterpriseControls g_controls;

bool Fails(Step step) {
  return g_controls.fails == step;
}

template <class Function>
Function* Runtime(const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"combase.dll"), name)));
}

const wchar_t* TextOf(HSTRING text) {
  UINT32 length = 0;
  return Runtime<PCWSTR WINAPI(HSTRING, UINT32*)>("WindowsGetStringRawBuffer")(text, &length);
}

// The common part of every object here. Answers any interface it is asked for with the one it is.
template <class Interface>
class Object : public Interface {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
    this->AddRef();
    *out = static_cast<Interface*>(this);
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++count_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG count = --count_;
    if (count == 0) delete this;
    return count;
  }
  HRESULT STDMETHODCALLTYPE GetIids(ULONG*, IID**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetRuntimeClassName(HSTRING*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTrustLevel(TrustLevel*) override { return E_NOTIMPL; }

 protected:
  virtual ~Object() = default;

 private:
  std::atomic<ULONG> count_{1};
};

class Item final : public Object<enterprise::IStorageFile> {};

class Info final : public Object<enterprise::IFileProtectionInfo> {
 public:
  HRESULT STDMETHODCALLTYPE get_Status(ProtectionStatus* status) override {
    *status = static_cast<ProtectionStatus>(g_controls.status);
    return Fails(Step::InfoStatus) ? E_FAIL : S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_IsRoamable(boolean*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_Identity(HSTRING* identity) override {
    if (Fails(Step::InfoIdentity)) return E_FAIL;
    return Runtime<HRESULT WINAPI(PCWSTR, UINT32, HSTRING*)>("WindowsCreateString")(
        g_controls.identity, static_cast<UINT32>(lstrlenW(g_controls.identity)), identity);
  }
};

// An operation that completes as soon as it has a handler, here or on a thread of its own.
template <class Operation, class Handler, class Results, Step kHandler, Step kState, Step kResults>
class Completing final : public Object<Operation> {
 public:
  explicit Completing(Results results) : results_(results) {}
  HRESULT STDMETHODCALLTYPE put_Completed(Handler* handler) override {
    if (Fails(kHandler)) return E_FAIL;
    const AsyncState state = Fails(kState) ? AsyncState::Error : AsyncState::Completed;
    if (!g_controls.onAnotherThread) {
      handler->Invoke(this, state);
      return S_OK;
    }
    this->AddRef();
    handler->AddRef();
    std::thread([this, handler, state] {
      handler->Invoke(this, state);
      handler->Release();
      this->Release();
    }).detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_Completed(Handler**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetResults(Results* results) override {
    if (Fails(kResults)) return E_FAIL;
    *results = results_;
    if constexpr (std::is_pointer_v<Results>) results_->AddRef();
    return S_OK;
  }

 private:
  ~Completing() override {
    if constexpr (std::is_pointer_v<Results>) results_->Release();
  }
  Results results_;
};
using FileOperation = Completing<enterprise::IStorageFileOperation, enterprise::IStorageFileHandler,
                                 enterprise::IStorageFile*, Step::FileHandler, Step::FileState, Step::FileResults>;
using InfoOperation =
    Completing<enterprise::IProtectionInfoOperation, enterprise::IProtectionInfoHandler,
               enterprise::IFileProtectionInfo*, Step::InfoHandler, Step::InfoState, Step::InfoResults>;
using RequestOperation =
    Completing<enterprise::IEvaluationOperation, enterprise::IEvaluationHandler, enterprise::Evaluation,
               Step::RequestHandler, Step::RequestState, Step::RequestResults>;

class Files final : public Object<enterprise::IStorageFileStatics> {
 public:
  HRESULT STDMETHODCALLTYPE GetFileFromPathAsync(HSTRING, enterprise::IStorageFileOperation** operation) override {
    ++g_controls.queries;
    if (Fails(Step::FileStart)) return E_FAIL;
    *operation = new FileOperation(new Item);
    return S_OK;
  }
};

class Manager final : public Object<enterprise::IFileProtectionManagerStatics> {
 public:
  HRESULT STDMETHODCALLTYPE ProtectAsync(enterprise::IStorageItem*, HSTRING, IInspectable**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CopyProtectionAsync(enterprise::IStorageItem*, enterprise::IStorageItem*,
                                                IInspectable**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetProtectionInfoAsync(enterprise::IStorageItem*,
                                                   enterprise::IProtectionInfoOperation** operation) override {
    if (Fails(Step::InfoStart)) return E_FAIL;
    *operation = new InfoOperation(new Info);
    return S_OK;
  }
};

class AuditInfo final : public Object<enterprise::IProtectionPolicyAuditInfo> {};

class AuditFactory final : public Object<enterprise::IProtectionPolicyAuditInfoFactory> {
 public:
  HRESULT STDMETHODCALLTYPE Create(enterprise::AuditAction, HSTRING data, HSTRING, HSTRING target,
                                   enterprise::IProtectionPolicyAuditInfo** info) override {
    if (Fails(Step::AuditCreate)) return E_FAIL;
    lstrcpynW(g_controls.auditData, TextOf(data), 64);
    lstrcpynW(g_controls.auditTarget, TextOf(target), 128);
    *info = new AuditInfo;
    return S_OK;
  }
};

class Policy final : public Object<enterprise::IProtectionPolicyManagerInterop2> {
 public:
  HRESULT STDMETHODCALLTYPE RequestAccessForAppWithWindowAsync(HWND, HSTRING, HSTRING, REFIID, void**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE RequestAccessWithAuditingInfoForWindowAsync(HWND, HSTRING source, HSTRING target, IUnknown*,
                                                                        REFIID, void** operation) override {
    ++g_controls.requests;
    if (Fails(Step::RequestStart)) return E_FAIL;
    lstrcpynW(g_controls.source, TextOf(source), 64);
    lstrcpynW(g_controls.target, TextOf(target), 64);
    *operation = static_cast<enterprise::IEvaluationOperation*>(
        new RequestOperation(static_cast<enterprise::Evaluation>(g_controls.evaluation)));
    return S_OK;
  }
};

// Activation asks for IActivationFactory and queries on; every object here answers any query with itself.
template <class Factory>
HRESULT Give(Step step, IActivationFactory** factory) {
  if (Fails(step)) return CLASS_E_CLASSNOTAVAILABLE;
  *factory = reinterpret_cast<IActivationFactory*>(new Factory);
  return S_OK;
}

}  // namespace

extern "C" __declspec(dllexport) EnterpriseControls* GetControls() {
  return &g_controls;
}

extern "C" __declspec(dllexport) HRESULT WINAPI DllGetActivationFactory(HSTRING name, IActivationFactory** factory) {
  const WideView wanted(TextOf(name));
  if (wanted == enterprise::kStorageFileClass) return Give<Files>(Step::FileFactory, factory);
  if (wanted == enterprise::kFileProtectionManagerClass) return Give<Manager>(Step::ManagerFactory, factory);
  if (wanted == enterprise::kAuditInfoClass) return Give<AuditFactory>(Step::AuditFactory, factory);
  if (wanted == enterprise::kPolicyManagerClass) return Give<Policy>(Step::PolicyFactory, factory);
  return CLASS_E_CLASSNOTAVAILABLE;
}
