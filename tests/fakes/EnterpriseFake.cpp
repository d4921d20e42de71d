// Stands in for what enterprise data protection asks: the runtime classes of files, their protection and consent, and
// the libraries that tell a token's identities (srpapi.dll) and protect a file to one (efswrt.dll).
#include <activation.h>
#include <winstring.h>

#include <functional>
#include <memory>

#include "broker/EnterpriseData.h"
#include "engine/Handles.h"
#include "tests/fakes/FakeControls.h"
#include "tests/fakes/SlotFake.h"

using namespace enterprise;  // NOLINT(google-build-using-namespace): these are its classes
using Step = FakeControls::Step;

namespace {

FakeControls g_controls;

template <class Function>
Function* Runtime(const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"combase.dll"), name)));
}

const wchar_t* TextOf(HSTRING text) {
  UINT32 length = 0;
  return Runtime<PCWSTR WINAPI(HSTRING, UINT32*)>("WindowsGetStringRawBuffer")(text, &length);
}

struct Info final : SlotFake<IFileProtectionInfo> {
  Info() {
    On(&IFileProtectionInfo::get_Status, [](void*, ProtectionStatus* status) -> HRESULT {
      *status = static_cast<ProtectionStatus>(g_controls.status);
      return S_OK;
    });
    On(&IFileProtectionInfo::get_Identity, [](void*, HSTRING* identity) -> HRESULT {
      return Runtime<HRESULT WINAPI(PCWSTR, UINT32, HSTRING*)>("WindowsCreateString")(
          g_controls.identity, static_cast<UINT32>(lstrlenW(g_controls.identity)), identity);
    });
  }
};

// An operation that completes as soon as it has a handler, here or on a thread of its own, or fails by its step.
template <class Operation, class Handler, class Results, Results (*kMake)(), Step kFails = Step::None>
struct Completing final : SlotFake<Operation> {
  Completing() {
    this->On(&Operation::put_Completed, [](void* at, Handler* handler) -> HRESULT {
      const bool fails = kFails != Step::None && g_controls.fails == kFails;
      const AsyncState state = fails ? AsyncState::Error : AsyncState::Completed;
      ComPtr<Operation> operation(static_cast<Operation*>(at));
      ComPtr<Handler> kept(handler);
      // On the platform's own pool: of detached threads of the toolchain's library one in some hundreds never came.
      using Work = std::function<void()>;
      const auto run = [](PTP_CALLBACK_INSTANCE, void* work) { (*std::unique_ptr<Work>(static_cast<Work*>(work)))(); };
      auto* const work = new Work([operation, kept, state] { kept->Invoke(operation.Get(), state); });
      if (!g_controls.onAnotherThread || !TrySubmitThreadpoolCallback(run, work, nullptr)) run(nullptr, work);
      return S_OK;
    });
    this->On(&Operation::GetResults, [](void*, Results* results) -> HRESULT {
      *results = kMake();
      return S_OK;
    });
  }
};

IStorageFile* MakeFile() {
  return (new SlotFake<IStorageFile>)->Get();
}
IFileProtectionInfo* MakeInfo() {
  return (new Info)->Get();
}
Evaluation Evaluate() {
  return static_cast<Evaluation>(g_controls.evaluation);
}
using FileOperation = Completing<IStorageFileOperation, IStorageFileHandler, IStorageFile*, MakeFile>;
using InfoOperation = Completing<IProtectionInfoOperation, IProtectionInfoHandler, IFileProtectionInfo*, MakeInfo>;
using RequestOperation = Completing<IEvaluationOperation, IEvaluationHandler, Evaluation, Evaluate, Step::RequestState>;

struct Files final : SlotFake<IStorageFileStatics> {
  Files() {
    On(&IStorageFileStatics::GetFileFromPathAsync, [](void*, HSTRING, IStorageFileOperation** operation) -> HRESULT {
      *operation = (new FileOperation)->Get();
      return S_OK;
    });
  }
};

struct Manager final : SlotFake<IFileProtectionManagerStatics> {
  Manager() {
    On(&IFileProtectionManagerStatics::GetProtectionInfoAsync,
       [](void*, IStorageItem*, IProtectionInfoOperation** operation) -> HRESULT {
         *operation = (new InfoOperation)->Get();
         return S_OK;
       });
  }
};

struct Audit final : SlotFake<IProtectionPolicyAuditInfoFactory> {
  Audit() {
    On(&IProtectionPolicyAuditInfoFactory::Create,
       [](void*, AuditAction, HSTRING data, HSTRING, HSTRING target, IProtectionPolicyAuditInfo** info) -> HRESULT {
         lstrcpynW(g_controls.auditData, TextOf(data), 64);
         lstrcpynW(g_controls.auditTarget, TextOf(target), 128);
         *info = reinterpret_cast<IProtectionPolicyAuditInfo*>((new SlotFake<IInspectable>)->Get());
         return S_OK;
       });
  }
};

struct Policy final : SlotFake<IProtectionPolicyManagerInterop2> {
  Policy() {
    On(&IProtectionPolicyManagerInterop2::RequestAccessWithAuditingInfoForWindowAsync,
       [](void*, HWND, HSTRING source, HSTRING target, IUnknown*, REFIID, void** operation) -> HRESULT {
         lstrcpynW(g_controls.source, TextOf(source), 64);
         lstrcpynW(g_controls.target, TextOf(target), 64);
         *operation = (new RequestOperation)->Get();
         return S_OK;
       });
  }
};

// Activation asks for IActivationFactory and queries on; every object here answers that query with itself.
template <class Factory>
HRESULT Give(IActivationFactory** factory) {
  *factory = reinterpret_cast<IActivationFactory*>((new Factory)->Get());
  return S_OK;
}

bool IsImpersonating() {
  HANDLE token = nullptr;
  return OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token) && KernelHandle(token).IsValid();
}

// The pointers, and behind them the texts.
void Fill(const wchar_t* const* ids, ULONG count, PCWSTR* out) {
  auto* text = reinterpret_cast<wchar_t*>(out + count);
  for (ULONG i = 0; i < count; ++i) {
    out[i] = lstrcpyW(text, ids[i]);
    text += lstrlenW(ids[i]) + 1;
  }
}

}  // namespace

extern "C" __declspec(dllexport) FakeControls* GetControls() {
  return &g_controls;
}

extern "C" __declspec(dllexport) HRESULT WINAPI DllGetActivationFactory(HSTRING name, IActivationFactory** factory) {
  const WideView wanted(TextOf(name));
  if (wanted == kStorageFileClass) return Give<Files>(factory);
  if (wanted == kFileProtectionManagerClass) return Give<Manager>(factory);
  if (wanted == kAuditInfoClass && g_controls.fails != Step::AuditFactory) return Give<Audit>(factory);
  if (wanted == kPolicyManagerClass) return Give<Policy>(factory);
  return CLASS_E_CLASSNOTAVAILABLE;
}

extern "C" __declspec(dllexport) HRESULT WINAPI ProtectFileToEnterpriseIdentity(PCWSTR /*path*/, PCWSTR identity) {
  ++g_controls.calls;
  lstrcpynW(g_controls.protectedFor, identity, 260);
  return g_controls.result;
}

extern "C" __declspec(dllexport) HRESULT WINAPI
    SrpGetEnterpriseIds(HANDLE /*token*/, ULONG* bytes, PCWSTR* ids, ULONG* count) {
  constexpr HRESULT kTooSmall = static_cast<HRESULT>(0x8007007A);
  const wchar_t* const* const known = IsImpersonating() ? g_controls.clientIds : g_controls.serverIds;
  ULONG found = 0, needed = 0;
  for (; found < 4 && known[found] != nullptr; ++found) {
    needed += static_cast<ULONG>(sizeof(PCWSTR) + (static_cast<ULONG>(lstrlenW(known[found])) + 1) * sizeof(wchar_t));
  }
  *count = found;
  if (*bytes < needed || ids == nullptr) {
    *bytes = needed;
    return kTooSmall;
  }
  Fill(known, found, ids);
  return S_OK;
}
