// The platform's file dialogs as COM classes of the test process: they show nothing, record what they are asked into
// shell_fakes::g_record and answer with what the test put into g_choice.
#pragma once

#include <windows.h>

#include <propsys.h>
#include <shobjidl.h>

#include <string>
#include <vector>

#include "engine/WideText.h"
#include "tests/fakes/ShellFakes.h"

namespace dialog_fakes {

using shell_fakes::Counted;
using shell_fakes::g_record;

constexpr PROPERTYKEY kEncryptionOwners = {
    {0x5F5AFF6A, 0x37E5, 0x4780, {0x97, 0xEA, 0x80, 0xC7, 0x56, 0x5C, 0xF5, 0x35}}, 34};

struct Choice {
  std::vector<std::pair<WideString, WideString>> items;  // file-system path and parent-relative name
  std::vector<WideString> owners;                        // as the user leaves them
  bool nameless = false;                                 // names are given as null, with success
};
inline Choice g_choice;

inline LPWSTR TaskText(const WideString& text) {
  auto* const copy = static_cast<LPWSTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
  std::copy_n(text.c_str(), text.size() + 1, copy);
  return copy;
}

class Item final : public Counted<IShellItem> {
 public:
  explicit Item(size_t index) : index_(index) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  HRESULT STDMETHODCALLTYPE BindToHandler(IBindCtx*, REFGUID, REFIID, void**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetParent(IShellItem**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetAttributes(SFGAOF, SFGAOF*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Compare(IShellItem*, SICHINTF, int*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetDisplayName(SIGDN form, LPWSTR* name) override {
    const HRESULT result = g_record.Note("GetDisplayName", "");
    *name = nullptr;
    if (FAILED(result) || g_choice.nameless) return result;
    const auto& [path, leaf] = g_choice.items[index_];
    if (form != SIGDN_FILESYSPATH && form != SIGDN_PARENTRELATIVEPARSING) return E_INVALIDARG;
    *name = TaskText(form == SIGDN_FILESYSPATH ? path : leaf);
    return S_OK;
  }

 private:
  size_t index_;
};

class Items final : public Counted<IShellItemArray> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  HRESULT STDMETHODCALLTYPE BindToHandler(IBindCtx*, REFGUID, REFIID, void**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyStore(GETPROPERTYSTOREFLAGS, REFIID, void**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyDescriptionList(REFPROPERTYKEY, REFIID, void**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetAttributes(SIATTRIBFLAGS, SFGAOF, SFGAOF*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE EnumItems(IEnumShellItems**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override {
    *count = static_cast<DWORD>(g_choice.items.size());
    return g_record.Note("GetCount", "");
  }
  HRESULT STDMETHODCALLTYPE GetItemAt(DWORD index, IShellItem** item) override {
    const HRESULT result = g_record.Note("GetItemAt", std::to_string(index));
    if (SUCCEEDED(result)) *item = new Item(index);
    return result;
  }
};

// What the two dialogs share.
template <class Interface>
class Dialog : public Counted<Interface> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    *out = nullptr;
    if (iid != __uuidof(Interface)) return E_NOINTERFACE;
    *out = static_cast<Interface*>(this);
    this->AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Show(HWND owner) override {
    return g_record.Note("Show", IsWindow(owner) ? "on a window" : "");
  }
  HRESULT STDMETHODCALLTYPE SetFileTypes(UINT count, const COMDLG_FILTERSPEC* specs) override {
    std::string text;
    for (UINT i = 0; i < count; ++i) text += ToUtf8(specs[i].pszName) + "=" + ToUtf8(specs[i].pszSpec) + ";";
    return g_record.Note("SetFileTypes", text);
  }
  HRESULT STDMETHODCALLTYPE SetOptions(FILEOPENDIALOGOPTIONS options) override {
    char text[16] = {};
    std::snprintf(text, sizeof(text), "%08x", static_cast<unsigned>(options));
    return g_record.Note("SetOptions", text);
  }
  HRESULT STDMETHODCALLTYPE SetFileName(LPCWSTR name) override { return g_record.Note("SetFileName", ToUtf8(name)); }
  HRESULT STDMETHODCALLTYPE GetResult(IShellItem** item) override {
    const HRESULT result = g_record.Note("GetResult", "");
    if (SUCCEEDED(result)) *item = new Item(0);
    return result;
  }
  HRESULT STDMETHODCALLTYPE SetFileTypeIndex(UINT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetFileTypeIndex(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Advise(IFileDialogEvents*, DWORD*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetOptions(FILEOPENDIALOGOPTIONS*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetDefaultFolder(IShellItem*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFolder(IShellItem*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetFolder(IShellItem**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetCurrentSelection(IShellItem**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetFileName(LPWSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetTitle(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetOkButtonLabel(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFileNameLabel(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE AddPlace(IShellItem*, FDAP) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetDefaultExtension(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Close(HRESULT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetClientGuid(REFGUID) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ClearClientData() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFilter(IShellItemFilter*) override { return E_NOTIMPL; }
};

class OpenDialog final : public Dialog<IFileOpenDialog> {
 public:
  HRESULT STDMETHODCALLTYPE GetResults(IShellItemArray** items) override {
    const HRESULT result = g_record.Note("GetResults", "");
    if (SUCCEEDED(result)) *items = new Items;
    return result;
  }
  HRESULT STDMETHODCALLTYPE GetSelectedItems(IShellItemArray**) override { return E_NOTIMPL; }
};

class SaveDialog final : public Dialog<IFileSaveDialog> {
 public:
  HRESULT STDMETHODCALLTYPE SetSaveAsItem(IShellItem*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetCollectedProperties(IPropertyDescriptionList* list, BOOL) override {
    return g_record.Note("SetCollectedProperties", list == nullptr ? "" : "of a list");
  }
  HRESULT STDMETHODCALLTYPE SetProperties(IPropertyStore* store) override {
    PROPVARIANT owners = {};
    store->GetValue(kEncryptionOwners, &owners);
    std::string text = "(no texts)";
    if (owners.vt == (VT_VECTOR | VT_LPWSTR)) {
      text = std::to_string(owners.calpwstr.cElems) + " '" + ToUtf8(owners.calpwstr.pElems[0]) + "'";
    }
    PropVariantClear(&owners);
    return g_record.Note("SetProperties", text);
  }
  HRESULT STDMETHODCALLTYPE GetProperties(IPropertyStore** store) override {
    const HRESULT result = g_record.Note("GetProperties", "");
    if (FAILED(result)) return result;
    PROPVARIANT value = {};
    value.vt = VT_VECTOR | VT_LPWSTR;
    value.calpwstr.cElems = static_cast<ULONG>(g_choice.owners.size());
    value.calpwstr.pElems = static_cast<LPWSTR*>(CoTaskMemAlloc((g_choice.owners.size() + 1) * sizeof(LPWSTR)));
    for (size_t i = 0; i < g_choice.owners.size(); ++i) value.calpwstr.pElems[i] = TaskText(g_choice.owners[i]);
    PSCreateMemoryPropertyStore(__uuidof(IPropertyStore), reinterpret_cast<void**>(store));
    (*store)->SetValue(kEncryptionOwners, value);
    PropVariantClear(&value);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE ApplyProperties(IShellItem*, IPropertyStore*, HWND, IFileOperationProgressSink*) override {
    return E_NOTIMPL;
  }
};

// The list of properties that Wine cannot make from its text.
class PropertyList final : public Counted<IPropertyDescriptionList> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  HRESULT STDMETHODCALLTYPE GetCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetAt(UINT, REFIID, void**) override { return E_NOTIMPL; }

  // In place of PSGetPropertyDescriptionListFromString.
  static HRESULT WINAPI FromText(LPCWSTR text, REFIID, void** out) {
    const HRESULT result = g_record.Note("PropertyList", ToUtf8(text));
    if (SUCCEEDED(result)) *out = static_cast<IPropertyDescriptionList*>(new PropertyList);
    return result;
  }
};

}  // namespace dialog_fakes
