#include "broker/EncryptionOwner.h"

#include <propsys.h>

#include <algorithm>

#include "engine/ComSupport.h"

namespace {

// PKEY_Security_EncryptionOwners, which the toolchain's headers lack: a vector of texts.
constexpr PROPERTYKEY kEncryptionOwners = {
    {0x5F5AFF6A, 0x37E5, 0x4780, {0x97, 0xEA, 0x80, 0xC7, 0x56, 0x5C, 0xF5, 0x35}}, 34};

class PropertyValue {
 public:
  PropertyValue() { PropVariantInit(&value_); }
  ~PropertyValue() { PropVariantClear(&value_); }
  PropertyValue(const PropertyValue&) = delete;
  PropertyValue& operator=(const PropertyValue&) = delete;
  [[nodiscard]] PROPVARIANT& Get() { return value_; }

 private:
  PROPVARIANT value_;
};

// Makes `value` a vector of that one text. By hand: the platform's own helpers for it are not in every version.
bool FillTextVector(PROPVARIANT& value, const WideString& text) {
  auto* const elements = static_cast<LPWSTR*>(CoTaskMemAlloc(sizeof(LPWSTR)));
  if (elements == nullptr) return false;
  elements[0] = static_cast<LPWSTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
  if (elements[0] != nullptr) std::copy_n(text.c_str(), text.size() + 1, elements[0]);
  value.vt = VT_VECTOR | VT_LPWSTR;
  value.calpwstr = {elements[0] != nullptr ? 1ul : 0ul, elements};
  return elements[0] != nullptr;
}

}  // namespace

void OfferEncryptionOwner(IFileSaveDialog* dialog, const WideString& identity) {
  ComPtr<IPropertyDescriptionList> owners;
  if (FAILED(PSGetPropertyDescriptionListFromString(L"prop:System.Security.EncryptionOwners",
                                                    __uuidof(IPropertyDescriptionList),
                                                    reinterpret_cast<void**>(owners.GetAddressOf()))) ||
      FAILED(dialog->SetCollectedProperties(owners.Get(), FALSE))) {
    return;
  }
  ComPtr<IPropertyStore> store;
  PropertyValue value;
  if (FAILED(PSCreateMemoryPropertyStore(__uuidof(IPropertyStore), reinterpret_cast<void**>(store.GetAddressOf()))) ||
      !FillTextVector(value.Get(), identity) || FAILED(store->SetValue(kEncryptionOwners, value.Get()))) {
    return;
  }
  (void)dialog->SetProperties(store.Get());
}

std::optional<WideString> ChosenEncryptionOwner(IFileSaveDialog* dialog) {
  ComPtr<IPropertyStore> store;
  PropertyValue value;
  if (FAILED(dialog->GetProperties(store.GetAddressOf())) || !store ||
      FAILED(store->GetValue(kEncryptionOwners, &value.Get()))) {
    return std::nullopt;
  }
  const PROPVARIANT& owners = value.Get();
  if (owners.vt != (VT_VECTOR | VT_LPWSTR) || owners.calpwstr.cElems == 0) return std::nullopt;
  const wchar_t* const first = owners.calpwstr.pElems[0];
  if (first == nullptr || *first == 0) return std::nullopt;
  return WideString(first);
}
