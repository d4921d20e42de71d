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

// Records the call and makes a `Fake` for `out`.
template <class Fake, class Interface, class... Arguments>
HRESULT Give(const char* call, const std::string& argument, Interface** out, Arguments... arguments) {
  const HRESULT result = g_record.Note(call, argument);
  if (SUCCEEDED(result)) *out = (new Fake(arguments...))->Get();
  return result;
}

struct Item final : SlotFake<IShellItem> {
  explicit Item(size_t index) : at(index) {
    On(&IShellItem::GetDisplayName, [](void* item, SIGDN form, LPWSTR* name) -> HRESULT {
      const HRESULT result = g_record.Note("GetDisplayName", "");
      *name = nullptr;
      if (FAILED(result) || g_choice.nameless) return result;
      const auto& [path, leaf] = g_choice.items[static_cast<Item*>(Of(item))->at];
      if (form != SIGDN_FILESYSPATH && form != SIGDN_PARENTRELATIVEPARSING) return E_INVALIDARG;
      *name = TaskText(form == SIGDN_FILESYSPATH ? path : leaf);
      return S_OK;
    });
  }
  size_t at;
};

struct Items final : SlotFake<IShellItemArray> {
  Items() {
    On(&IShellItemArray::GetCount, [](void*, DWORD* count) {
      *count = static_cast<DWORD>(g_choice.items.size());
      return g_record.Note("GetCount", "");
    });
    On(&IShellItemArray::GetItemAt, [](void*, DWORD index, IShellItem** item) {
      return Give<Item>("GetItemAt", std::to_string(index), item, index);
    });
  }
};

// What the two dialogs share.
template <class Interface>
struct Dialog : SlotFake<Interface> {
  Dialog() {
    this->On(&IFileDialog::Show,
             [](void*, HWND owner) { return g_record.Note("Show", IsWindow(owner) ? "on a window" : ""); });
    this->On(&IFileDialog::SetFileTypes, [](void*, UINT count, const COMDLG_FILTERSPEC* specs) {
      std::string text;
      for (UINT i = 0; i < count; ++i) text += ToUtf8(specs[i].pszName) + "=" + ToUtf8(specs[i].pszSpec) + ";";
      return g_record.Note("SetFileTypes", text);
    });
    this->On(&IFileDialog::SetOptions, [](void*, FILEOPENDIALOGOPTIONS options) {
      char text[16] = {};
      std::snprintf(text, sizeof(text), "%08x", static_cast<unsigned>(options));
      return g_record.Note("SetOptions", text);
    });
    this->On(&IFileDialog::SetFileName, [](void*, LPCWSTR name) { return g_record.Note("SetFileName", ToUtf8(name)); });
    this->On(&IFileDialog::GetResult, [](void*, IShellItem** item) { return Give<Item>("GetResult", "", item, 0); });
  }
};

struct OpenDialog final : Dialog<IFileOpenDialog> {
  OpenDialog() {
    On(&IFileOpenDialog::GetResults,
       [](void*, IShellItemArray** items) { return Give<Items>("GetResults", "", items); });
  }
};

struct SaveDialog final : Dialog<IFileSaveDialog> {
  SaveDialog() {
    On(&IFileSaveDialog::SetCollectedProperties, [](void*, IPropertyDescriptionList* list, BOOL) {
      return g_record.Note("SetCollectedProperties", list == nullptr ? "" : "of a list");
    });
    On(&IFileSaveDialog::SetProperties, [](void*, IPropertyStore* store) {
      PROPVARIANT owners = {};
      store->GetValue(kEncryptionOwners, &owners);
      std::string text = "(no texts)";
      if (owners.vt == (VT_VECTOR | VT_LPWSTR)) {
        text = std::to_string(owners.calpwstr.cElems) + " '" + ToUtf8(owners.calpwstr.pElems[0]) + "'";
      }
      PropVariantClear(&owners);
      return g_record.Note("SetProperties", text);
    });
    On(&IFileSaveDialog::GetProperties, [](void*, IPropertyStore** store) -> HRESULT {
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
    });
  }
};

// In place of PSGetPropertyDescriptionListFromString: Wine cannot make the list from its text.
inline HRESULT WINAPI PropertyListFromText(LPCWSTR text, REFIID, void** out) {
  return Give<SlotFake<IPropertyDescriptionList>>("PropertyList", ToUtf8(text), out);
}

}  // namespace dialog_fakes
