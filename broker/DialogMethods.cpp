// The dialogs that the sandbox cannot show: open, save and print. A file that the user picks for saving is one the
// client may write wherever it lies; the user's act stands in for the path policy.
#include <windows.h>

#include <commdlg.h>
#include <shobjidl.h>

#include <memory>
#include <new>
#include <vector>

#include "broker/CoLumenBrokerServer.h"
#include "broker/DialogFilters.h"
#include "broker/DialogOwner.h"
#include "broker/EncryptionOwner.h"
#include "engine/ComSupport.h"

namespace {

// The options a client may set. The rest are the server's: among them, to pick folders and to return what is no file.
constexpr ULONG kClientOptions = 0xFF31FF1A;

// Print flags that ask for hooks and templates. No call can bring those, and a platform that trusts the flags calls a
// null hook; one that does not refuses them, which is what a client gets.
constexpr DWORD kForeignPrintParts = PD_ENABLEPRINTHOOK | PD_ENABLESETUPHOOK | PD_ENABLEPRINTTEMPLATE |
                                     PD_ENABLESETUPTEMPLATE | PD_ENABLEPRINTTEMPLATEHANDLE |
                                     PD_ENABLESETUPTEMPLATEHANDLE;

struct FileDialogCall {
  HWND owner;
  ULONG pairs;
  ULONG length;
  SAFEARRAY* filters;
  ULONG options;

  [[nodiscard]] HRESULT Check() const {
    const HRESULT checked = CheckFilterArguments(pairs, length, filters);
    if (FAILED(checked)) return checked;
    return IsDialogOwnerAllowed(owner) ? S_OK : E_INVALIDARG;
  }
};

template <class Dialog>
HRESULT CreateDialogObject(REFCLSID clsid, ComPtr<Dialog>& dialog) {
  return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Dialog),
                          reinterpret_cast<void**>(dialog.GetAddressOf()));
}

// Filters and options of a dialog to be shown. The specs must live until it has been.
HRESULT Prepare(IFileDialog* dialog, const FileDialogCall& call, FilterSpecs& specs) {
  if (call.pairs > 0) {
    HRESULT outcome = ParseFilterArray(call.pairs, call.filters, specs);
    if (SUCCEEDED(outcome)) outcome = dialog->SetFileTypes(call.pairs, specs.get());
    if (FAILED(outcome)) return outcome;
  }
  return dialog->SetOptions(call.options & kClientOptions);
}

// An item's name in one of its forms.
HRESULT NameOf(IShellItem* item, SIGDN form, WideString& name) {
  LPWSTR text = nullptr;
  const HRESULT outcome = item->GetDisplayName(form, &text);
  const std::unique_ptr<wchar_t, decltype(&CoTaskMemFree)> owned(text, &CoTaskMemFree);
  if (SUCCEEDED(outcome) && text == nullptr) return E_FAIL;
  if (SUCCEEDED(outcome)) name = text;
  return outcome;
}

HRESULT NameAt(IShellItemArray* items, DWORD index, SIGDN form, WideString& name) {
  ComPtr<IShellItem> item;
  const HRESULT outcome = items->GetItemAt(index, item.GetAddressOf());
  return FAILED(outcome) ? outcome : NameOf(item.Get(), form, name);
}

// The paths of what was chosen, as clients take them: one path; or, with several, the directory and then each name in
// it.
HRESULT ListChosen(IShellItemArray* items, std::vector<WideString>& entries) {
  DWORD count = 0;
  HRESULT outcome = items->GetCount(&count);
  if (FAILED(outcome) || count == 0) return outcome;
  WideString path;
  if (FAILED(outcome = NameAt(items, 0, SIGDN_FILESYSPATH, path))) return outcome;
  entries.push_back(path);
  if (count == 1) return S_OK;
  for (DWORD i = 0; i < count; ++i) {
    WideString name;
    if (FAILED(outcome = NameAt(items, i, SIGDN_PARENTRELATIVEPARSING, name))) return outcome;
    if (i == 0) entries[0] = path.substr(0, path.rfind(name));  // with its separator
    entries.push_back(name);
  }
  return S_OK;
}

// The entries as an array of VARIANTs with a text each.
HRESULT ToVariantArray(const std::vector<WideString>& entries, VARIANT& out) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(entries.size()));
  if (array == nullptr) return E_OUTOFMEMORY;
  auto* const elements = static_cast<VARIANT*>(array->pvData);
  for (size_t i = 0; i < entries.size(); ++i) {
    elements[i].bstrVal = BString(WideView(entries[i])).Release();
    if (elements[i].bstrVal == nullptr) {
      SafeArrayDestroy(array);
      return E_OUTOFMEMORY;
    }
    elements[i].vt = VT_BSTR;
  }
  out.vt = VT_ARRAY | VT_VARIANT;
  out.parray = array;
  return S_OK;
}

// Write access to a file made anew, as the first write or seek will ask for it.
std::unique_ptr<DeferredOpen> DeferCreation(std::optional<WideString> identity) {
  auto deferred = std::make_unique<DeferredOpen>();
  deferred->desiredAccess = GENERIC_WRITE;
  deferred->shareMode = 0;
  deferred->creationDisposition = CREATE_ALWAYS;
  deferred->flagsAndAttributes = FILE_FLAG_RANDOM_ACCESS;
  deferred->identity = std::move(identity);
  return deferred;
}

// Shows the save dialog to its end. The path, and the enterprise chosen to own it.
HRESULT AskWhereToSave(const FileDialogCall& call, const wchar_t* initialName, BString& path,
                       std::optional<WideString>& identity) {
  ComPtr<IFileSaveDialog> dialog;
  HRESULT outcome = CreateDialogObject(CLSID_FileSaveDialog, dialog);
  if (FAILED(outcome)) return outcome;
  if (initialName != nullptr && FAILED(outcome = dialog->SetFileName(initialName))) return outcome;
  FilterSpecs specs;
  if (FAILED(outcome = Prepare(dialog.Get(), call, specs))) return outcome;
  // The caller is known now; while the dialog is up other calls may be served.
  const EnterpriseIdentityList callerIdentities(EnterpriseIdentityList::Of::CallingClient);
  OfferEncryptionOwner(dialog.Get(), WideString(callerIdentities.First()));
  if (FAILED(outcome = dialog->Show(call.owner))) return outcome;
  specs.reset();

  ComPtr<IShellItem> item;
  if (FAILED(outcome = dialog->GetResult(item.GetAddressOf()))) return outcome;
  WideString name;
  if (FAILED(NameOf(item.Get(), SIGDN_FILESYSPATH, name))) return E_FAIL;
  path = BString(WideView(name));
  identity = ChosenEncryptionOwner(dialog.Get());
  return path.Get() == nullptr ? E_FAIL : S_OK;
}

}  // namespace

// A place in the table that clients no longer call; BrokerSaveDialog2 has its duty.
HRESULT CoLumenBrokerServer::BrokerSaveDialog(ULONG /*p_hwnd*/, LPWSTR /*p_lpwstrInitialFileName*/,
                                              ULONG* /*p_fileCookie*/, BSTR* /*p_chosenFilePath*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerOpenDialog(ULONG p_hwnd, ULONG dwFilterPairs, ULONG dwFilterLength,
                                              SAFEARRAY* p_FilterArray, ULONG dwFlags,
                                              VARIANT* p_chosenFilePathArray) try {
  if (p_chosenFilePathArray == nullptr) return E_INVALIDARG;
  VariantInit(p_chosenFilePathArray);
  const FileDialogCall call = {ToWindow(p_hwnd), dwFilterPairs, dwFilterLength, p_FilterArray, dwFlags};
  HRESULT outcome = call.Check();
  if (FAILED(outcome)) return outcome;
  ComPtr<IFileOpenDialog> dialog;
  if (FAILED(outcome = CreateDialogObject(CLSID_FileOpenDialog, dialog))) return outcome;
  FilterSpecs specs;
  if (FAILED(outcome = Prepare(dialog.Get(), call, specs))) return outcome;
  if (FAILED(outcome = dialog->Show(call.owner))) return outcome;
  specs.reset();

  // No cookie: what the user chose is opened for reading as any file is.
  ComPtr<IShellItemArray> items;
  if (FAILED(outcome = dialog->GetResults(items.GetAddressOf()))) return outcome;
  std::vector<WideString> entries;
  if (FAILED(outcome = ListChosen(items.Get(), entries))) return outcome;
  return ToVariantArray(entries, *p_chosenFilePathArray);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerSaveDialog2(ULONG p_hwnd, LPWSTR p_lpwstrInitialFileName, ULONG dwFilterPairs,
                                               ULONG dwFilterLength, SAFEARRAY* p_FilterArray, ULONG dwFlags,
                                               ULONG* p_fileCookie, BSTR* p_chosenFilePath) try {
  const FileDialogCall call = {ToWindow(p_hwnd), dwFilterPairs, dwFilterLength, p_FilterArray, dwFlags};
  HRESULT outcome = call.Check();
  if (FAILED(outcome)) return outcome;
  if (p_fileCookie == nullptr || p_chosenFilePath == nullptr) return E_INVALIDARG;
  *p_fileCookie = 0;
  *p_chosenFilePath = nullptr;

  BString path;
  std::optional<WideString> identity;
  if (FAILED(outcome = AskWhereToSave(call, p_lpwstrInitialFileName, path, identity))) return outcome;
  // Nothing is opened yet, and what the user named may hold anything, so nothing will be sniffed either.
  uint32_t cookie = 0;
  if (!cookies.AddFileCookie(kNoHandle, cookie, false, path.Get(), DeferCreation(std::move(identity)))) return E_FAIL;
  *p_fileCookie = cookie;
  *p_chosenFilePath = path.Release();
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

// Any window may own this one: what is chosen is a printer, not a file.
HRESULT CoLumenBrokerServer::BrokerPrintDialog(ULONG p_hwnd, ULONG* p_nFromPage, ULONG* p_nToPage, ULONG* p_dwFlags,
                                               ULONG* p_hdc) {
  static_assert(sizeof(PRINTDLGW) == 120);
  if (p_nFromPage == nullptr || p_nToPage == nullptr || p_dwFlags == nullptr || p_hdc == nullptr) return E_INVALIDARG;
  if ((*p_dwFlags & kForeignPrintParts) != 0) return E_FAIL;
  PRINTDLGW dialog = {};
  dialog.lStructSize = sizeof(dialog);
  dialog.hwndOwner = ToWindow(p_hwnd);
  dialog.Flags = *p_dwFlags;
  dialog.nFromPage = dialog.nMinPage = LOWORD(*p_nFromPage);
  dialog.nToPage = dialog.nMaxPage = LOWORD(*p_nToPage);
  dialog.nCopies = 1;
  const bool chosen = PrintDlgW(&dialog) != FALSE;
  if (chosen) {
    *p_nFromPage = dialog.nFromPage;
    *p_nToPage = dialog.nToPage;
    *p_dwFlags = dialog.Flags;
    *p_hdc = static_cast<ULONG>(reinterpret_cast<uintptr_t>(dialog.hDC));  // the client's from here on
  }
  GlobalFree(dialog.hDevMode);
  GlobalFree(dialog.hDevNames);
  return chosen ? S_OK : E_FAIL;
}
