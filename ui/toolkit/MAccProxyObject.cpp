#include "ui/toolkit/MAccProxyObject.h"

#include <new>

#include "engine/DllHelpers.h"
#include "ui/toolkit/AccProxy.h"
#include "ui/toolkit/MButton.h"
#include "ui/toolkit/MWindow.h"

namespace {

bool IsSelf(const VARIANT& child) {
  return child.vt == VT_I4 && child.lVal == CHILDID_SELF;
}

LONG RoleOf(const MRegion& region) {
  switch (region.controlKind) {
    case kButtonControl: return ROLE_SYSTEM_PUSHBUTTON;
    case kCheckboxControl: return ROLE_SYSTEM_CHECKBUTTON;
    case kRadioControl: return ROLE_SYSTEM_RADIOBUTTON;
    default: return ROLE_SYSTEM_STATICTEXT;
  }
}

LONG StateOf(const MRegion& region) {
  if (region.controlKind == kNoControl) return STATE_SYSTEM_READONLY;
  LONG state = STATE_SYSTEM_FOCUSABLE;
  if (region.owner != nullptr && region.owner->focusRegion == &region) state |= STATE_SYSTEM_FOCUSED;
  const auto* const box = dynamic_cast<const MCheckboxButton*>(&region);
  if (box != nullptr && box->checked) state |= STATE_SYSTEM_CHECKED;
  return state;
}

}  // namespace

void MAccProxyObject::Disconnect() {
  region = nullptr;
  zombie = true;
}

STDMETHODIMP MAccProxyObject::QueryInterface(REFIID id, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (id != IID_IAccessible && id != IID_IDispatch && id != IID_IUnknown) return E_NOINTERFACE;
  AddRef();
  *out = static_cast<IAccessible*>(this);
  return S_OK;
}

STDMETHODIMP_(ULONG) MAccProxyObject::AddRef() {
  return static_cast<ULONG>(InterlockedIncrement(&refCount));
}

// While the region lives the object stays, even for a client that gives back more than it took.
STDMETHODIMP_(ULONG) MAccProxyObject::Release() {
  const LONG left = InterlockedDecrement(&refCount);
  if (left == 0 && zombie) delete this;
  return static_cast<ULONG>(left);
}

STDMETHODIMP MAccProxyObject::get_accChildCount(LONG* count) {
  if (region == nullptr) return CO_E_OBJNOTCONNECTED;
  if (count == nullptr) return E_INVALIDARG;
  *count = 0;
  return S_OK;
}

STDMETHODIMP MAccProxyObject::get_accChild(VARIANT child, IDispatch** out) {
  if (region == nullptr) return CO_E_OBJNOTCONNECTED;
  if (out == nullptr) return E_INVALIDARG;
  *out = nullptr;
  if (!IsSelf(child)) return S_FALSE;
  AddRef();
  *out = this;
  return S_OK;
}

STDMETHODIMP MAccProxyObject::get_accName(VARIANT child, BSTR* name) {
  const HRESULT checked = Check(name, child);
  if (FAILED(checked) || region->label.IsEmpty()) return checked;
  const WideView text = region->label.View();
  *name = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return *name == nullptr ? E_OUTOFMEMORY : S_OK;
}

STDMETHODIMP MAccProxyObject::get_accRole(VARIANT /*child*/, VARIANT* role) {
  if (region == nullptr) return CO_E_OBJNOTCONNECTED;
  if (role == nullptr) return E_INVALIDARG;
  role->vt = VT_I4;
  role->lVal = RoleOf(*region);
  return S_OK;
}

STDMETHODIMP MAccProxyObject::get_accState(VARIANT /*child*/, VARIANT* state) {
  if (region == nullptr) return CO_E_OBJNOTCONNECTED;
  if (state == nullptr) return E_INVALIDARG;
  state->vt = VT_I4;
  state->lVal |= StateOf(*region);
  return S_OK;
}

STDMETHODIMP MAccProxyObject::get_accKeyboardShortcut(VARIANT child, BSTR* keys) {
  const HRESULT checked = Check(keys, child);
  if (FAILED(checked)) return checked;
  *keys = SysAllocString(L"");
  return *keys == nullptr ? E_OUTOFMEMORY : S_OK;
}

STDMETHODIMP MAccProxyObject::get_accSelection(VARIANT* children) {
  if (region == nullptr) return CO_E_OBJNOTCONNECTED;
  if (children == nullptr) return E_INVALIDARG;
  children->vt = VT_EMPTY;
  return S_OK;
}

STDMETHODIMP MAccProxyObject::accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) {
  const bool complete = left != nullptr && top != nullptr && width != nullptr && height != nullptr;
  const HRESULT checked = Check(complete ? left : nullptr, child);
  if (FAILED(checked)) return checked;
  const Rect place = region->AbsoluteBounds();
  POINT corners[] = {{place.left, place.top}, {place.right, place.bottom}};
  for (POINT& corner : corners) {
    if (region->owner != nullptr) ClientToScreen(region->owner->handle, &corner);
  }
  *left = corners[0].x;
  *top = corners[0].y;
  *width = corners[1].x - corners[0].x;
  *height = corners[1].y - corners[0].y;
  return S_OK;
}

HRESULT MAccProxyObject::Check(const void* out, const VARIANT& child) const {
  if (region == nullptr) return CO_E_OBJNOTCONNECTED;
  return out == nullptr || !IsSelf(child) ? E_INVALIDARG : S_OK;
}

HRESULT MAccProxyObject::Nothing(const VARIANT& child, BSTR* out) const {
  const HRESULT checked = Check(out, child);
  if (SUCCEEDED(checked)) *out = nullptr;
  return checked;
}

AccProxyOwner MakeAccProxy(MRegion* region) {
  auto* const proxy = new (std::nothrow) MAccProxyObject(region);
  if (proxy != nullptr) proxy->AddRef();
  return {proxy, [](MAccProxyObject* of) {
            of->Disconnect();
            of->Release();
          }};
}

intptr_t AnswerGetObject(MAccProxyObject* proxy, uintptr_t wParam) {
  static BoundFunction<decltype(::LresultFromObject)> lresultFromObject(L"OLEAcc.dll", "LresultFromObject");
  auto* const answer = lresultFromObject.Get();
  return answer == nullptr ? 0 : answer(IID_IAccessible, wParam, proxy);
}
