// The platform's save dialog as a COM class of the test process: it shows nothing, records what it is asked into
// shell_fakes::g_record and answers with what the test put into g_choice.
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
  WideString path;
  std::vector<WideString> owners;  // as the user leaves them
};
inline Choice g_choice;

inline LPWSTR TaskText(const WideString& text) {
  auto* const copy = static_cast<LPWSTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
  std::copy_n(text.c_str(), text.size() + 1, copy);
  return copy;
}

struct Item final : SlotFake<IShellItem> {
  Item() {
    On(&IShellItem::GetDisplayName, [](void*, SIGDN form, LPWSTR* name) -> HRESULT {
      if (form != SIGDN_FILESYSPATH) return E_INVALIDARG;
      *name = TaskText(g_choice.path);
      return g_record.Note("GetDisplayName", "");
    });
  }
};

struct SaveDialog final : SlotFake<IFileSaveDialog> {
  SaveDialog() {
    On(&IFileSaveDialog::Show,
       [](void*, HWND owner) { return g_record.Note("Show", IsWindow(owner) ? "on a window" : ""); });
    On(&IFileSaveDialog::SetFileTypes, [](void*, UINT count, const COMDLG_FILTERSPEC* specs) {
      std::string text;
      for (UINT i = 0; i < count; ++i) text += ToUtf8(specs[i].pszName) + "=" + ToUtf8(specs[i].pszSpec) + ";";
      return g_record.Note("SetFileTypes", text);
    });
    On(&IFileSaveDialog::SetOptions, [](void*, FILEOPENDIALOGOPTIONS options) {
      char text[16] = {};
      std::snprintf(text, sizeof(text), "%08x", static_cast<unsigned>(options));
      return g_record.Note("SetOptions", text);
    });
    On(&IFileSaveDialog::SetFileName, [](void*, LPCWSTR name) { return g_record.Note("SetFileName", ToUtf8(name)); });
    On(&IFileSaveDialog::GetResult, [](void*, IShellItem** item) {
      *item = (new Item)->Get();
      return g_record.Note("GetResult", "");
    });
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
      PROPVARIANT value = {};
      value.vt = VT_VECTOR | VT_LPWSTR;
      value.calpwstr.cElems = static_cast<ULONG>(g_choice.owners.size());
      value.calpwstr.pElems = static_cast<LPWSTR*>(CoTaskMemAlloc((g_choice.owners.size() + 1) * sizeof(LPWSTR)));
      for (size_t i = 0; i < g_choice.owners.size(); ++i) value.calpwstr.pElems[i] = TaskText(g_choice.owners[i]);
      PSCreateMemoryPropertyStore(__uuidof(IPropertyStore), reinterpret_cast<void**>(store));
      (*store)->SetValue(kEncryptionOwners, value);
      PropVariantClear(&value);
      return g_record.Note("GetProperties", "");
    });
  }
};

// In place of PSGetPropertyDescriptionListFromString: Wine cannot make the list from its text.
inline HRESULT WINAPI PropertyListFromText(LPCWSTR text, REFIID, void** out) {
  *out = (new SlotFake<IPropertyDescriptionList>)->Get();
  return g_record.Note("PropertyList", ToUtf8(text));
}

}  // namespace dialog_fakes
