#include "broker/CoLumenBrokerServer.h"

#include "broker/BrokerFactory.h"
#include "broker/MMNotificationClient.h"
#include "engine/WindowsFileManager.h"

__CRT_UUID_DECL(IMLangFontLink, 0x359F3441, 0xBD4A, 0x11D0, 0xB1, 0x88, 0x00, 0xAA, 0x00, 0x38, 0xC9, 0x69)
__CRT_UUID_DECL(IMultiLanguage, 0x275C23E1, 0x3747, 0x11D0, 0x9F, 0xEA, 0x00, 0xAA, 0x00, 0x3F, 0x86, 0x46)

namespace {

// The dispatch side is that of generation 2 and is not brought up to date with the vtable; scripts written for it go
// on.
ComPtr<ITypeInfo> LoadDispatchInfo() {
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> info;
  if (FAILED(LoadRegTypeLib(LIBID_LumenBrokerLib, 1, 0, LOCALE_NEUTRAL, &library))) return info;
  if (FAILED(library->GetTypeInfoOfGuid(IID_ILumenBroker2, &info))) info.Reset();
  return info;
}

}  // namespace

CoLumenBrokerServer::CoLumenBrokerServer(HostCallbacks* hostCallbacks)
    : policy(pathOperations, true), host(hostCallbacks), serverIdentities(EnterpriseIdentityList::Of::ServerProcess) {
  policy.SetEnableLocalAppData(SASM::WindowsFileManager().EnableLocalAppData());
  if (Factory* const factory = CurrentFactory()) factory->CountObject(+1);
  typeInfo = LoadDispatchInfo();
  CoCreateInstance(CLSID_CMultiLanguage, nullptr, CLSCTX_INPROC, __uuidof(IMultiLanguage),
                   reinterpret_cast<void**>(multiLanguage.GetAddressOf()));
  if (multiLanguage) (void)multiLanguage.As(&fontLink);
}

// Files and searches that the client left open stay open until the process ends: closing them would be a guess at what
// their cookies stand for.
CoLumenBrokerServer::~CoLumenBrokerServer() {
  lcdAccessor.reset();
  if (Factory* const factory = CurrentFactory()) factory->CountObject(-1);
  cookies.FreeAll();
  fontLink.Reset();
  multiLanguage.Reset();
  for (MMNotificationClient* const client : notificationClients) {
    if (client != nullptr) client->LeaveList();
  }
}

HRESULT CoLumenBrokerServer::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  // Of the six generations only the newest is answered for, though its vtable holds them all.
  if (iid != IID_IUnknown && iid != IID_IDispatch && iid != IID_ILumenBroker6) return E_NOINTERFACE;
  AddRef();
  *out = static_cast<ILumenBroker6*>(this);
  return S_OK;
}

ULONG CoLumenBrokerServer::AddRef() {
  return static_cast<ULONG>(++refCount);
}

ULONG CoLumenBrokerServer::Release() {
  const int32_t count = --refCount;
  if (count != 0) return static_cast<ULONG>(count);
  delete this;
  const Factory* const factory = CurrentFactory();
  if (factory != nullptr && factory->CanUnload()) PostQuitMessage(0);
  return 0;
}

HRESULT CoLumenBrokerServer::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_INVALIDARG;
  *count = 1;
  return S_OK;
}

HRESULT CoLumenBrokerServer::GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) {
  if (info == nullptr) return E_INVALIDARG;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  if (!typeInfo) return E_FAIL;  // no type library was found; asking then was never defined
  return typeInfo.CopyTo(info);
}

HRESULT CoLumenBrokerServer::GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                                           DISPID* ids) {
  return typeInfo ? DispGetIDsOfNames(typeInfo.Get(), names, count, ids) : E_FAIL;
}

HRESULT CoLumenBrokerServer::Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD flags, DISPPARAMS* arguments,
                                    VARIANT* result, EXCEPINFO* exception, UINT* badArgument) {
  if (!typeInfo) return E_FAIL;
  return DispInvoke(static_cast<ILumenBroker6*>(this), typeInfo.Get(), id, flags, arguments, result, exception,
                    badArgument);
}

// A null name is an empty one to a client that passes it through automation.
std::optional<WideString> CoLumenBrokerServer::Expand(BSTR path) {
  return policy.ExpandBrokerPath(path == nullptr ? L"" : path);
}
