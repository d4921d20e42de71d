// The audited open of an enterprise's file, and marking a file as unsafe.
#include <windows.h>

#include <shobjidl.h>

#include <new>
#include <optional>
#include <utility>

#include "broker/BrokerFileProtectionInfo.h"
#include "broker/CoLumenBrokerServer.h"
#include "broker/DialogOwner.h"
#include "broker/FileOpening.h"
#include "broker/PolicyConsent.h"
#include "engine/ComSupport.h"

namespace {

WideString LeafName(const WideString& path) {
  const size_t slash = path.find_last_of(L"\\/");
  return slash == WideString::npos ? path : path.substr(slash + 1);
}

bool IsPresent(BSTR text) {
  return SysStringLen(text) > 0;
}

HRESULT MarkAttachment(const wchar_t* path, BSTR sourceUrl, BSTR refererUrl) {
  ComPtr<IAttachmentExecute> attachment;
  HRESULT outcome = CoCreateInstance(__uuidof(AttachmentServices), nullptr, CLSCTX_INPROC_SERVER,
                                     __uuidof(IAttachmentExecute), reinterpret_cast<void**>(attachment.GetAddressOf()));
  if (FAILED(outcome) || FAILED(outcome = attachment->SetLocalPath(path))) return outcome;
  if (IsPresent(refererUrl) && FAILED(outcome = attachment->SetReferrer(refererUrl))) return outcome;
  if (IsPresent(sourceUrl) && FAILED(outcome = attachment->SetSource(sourceUrl))) return outcome;
  return attachment->Save();
}

}  // namespace

HRESULT CoLumenBrokerServer::BrokerOpenFileWithAuditingInfo(BSTR pFileName, BSTR pRemoteUrl, ULONG p_hwnd,
                                                            ULONG* p_fileCookie) try {
  const HRESULT opened = BrokerCreateFile(pFileName, 1, 0, p_fileCookie);
  if (opened != E_ACCESSDENIED || !serverIdentities.HasIdentity()) return opened;
  const std::optional<WideString> path = Expand(pFileName);
  if (!path) return E_ACCESSDENIED;
  const BrokerFileProtectionInfo protection(path->c_str());
  if (!protection.IsProtected()) return E_ACCESSDENIED;
  const WideString owner(protection.GetIdentity());
  if (!owner.empty() && !serverIdentities.Contains(owner)) return E_ACCESSDENIED;
  if (!IsDialogOwnerAllowed(ToWindow(p_hwnd))) return E_ACCESSDENIED;

  const EnterpriseIdentityList callerIdentities(EnterpriseIdentityList::Of::CallingClient);
  const WideString target(callerIdentities.First());
  const wchar_t* const remoteUrl = pRemoteUrl == nullptr ? L"" : pRemoteUrl;
  if (!RequestAuditedConsent(owner.empty() ? nullptr : owner.c_str(), target.c_str(), ToWindow(p_hwnd),
                             LeafName(*path).c_str(), remoteUrl)) {
    return E_ACCESSDENIED;
  }
  FileHandle file = OpenSharedForReading(pathOperations.Kernel(), path->c_str());
  if (!file || FAILED(EnterFile(std::move(file), *path, *p_fileCookie))) return E_ACCESSDENIED;
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_ACCESSDENIED;
}

// No path test: all it can do is add a mark.
HRESULT CoLumenBrokerServer::BrokerMarkFileUnsafe(BSTR p_filePath, BSTR p_sourceURL, BSTR p_refURL) try {
  const std::optional<WideString> path = Expand(p_filePath);
  if (p_filePath == nullptr || !path) return E_INVALIDARG;
  const ComInitializer com;
  if (!com.Succeeded()) return com.Result();
  return MarkAttachment(path->c_str(), p_sourceURL, p_refURL);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}
