// What a screen reader talks to in place of a region that it cannot see: one region's name, role, state and place. The
// region has one reference, each client its own; a client may keep the object longer than the region lives. The count
// may be changed on any thread; all else reads the region and belongs to the window's.
#pragma once

#include <windows.h>

#include <oleacc.h>

class MRegion;

class MAccProxyObject final : public IAccessible {
 public:
  // Unreferenced. `of` outlives the object or calls Disconnect first.
  explicit MAccProxyObject(MRegion* of) : region(of) {}
  // The region is gone: from here on the object ends with its last reference, and answers CO_E_OBJNOTCONNECTED.
  void Disconnect();

  STDMETHODIMP QueryInterface(REFIID id, void** out) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }

  // Writes nothing: the platform then takes the parent of the native window.
  STDMETHODIMP get_accParent(IDispatch**) override { return S_OK; }
  STDMETHODIMP get_accChildCount(LONG* count) override;
  STDMETHODIMP get_accChild(VARIANT child, IDispatch** out) override;
  // Writes nothing for a region without a label.
  STDMETHODIMP get_accName(VARIANT child, BSTR* name) override;
  STDMETHODIMP get_accValue(VARIANT child, BSTR* value) override { return Nothing(child, value); }
  STDMETHODIMP get_accDescription(VARIANT child, BSTR* text) override { return Nothing(child, text); }
  // Role and state are the region's, whichever child is asked for.
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override;
  // Adds its flags to those in `state`.
  STDMETHODIMP get_accState(VARIANT child, VARIANT* state) override;
  STDMETHODIMP get_accHelp(VARIANT, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accHelpTopic(BSTR*, VARIANT, LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accKeyboardShortcut(VARIANT child, BSTR* keys) override;
  STDMETHODIMP get_accFocus(VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP get_accSelection(VARIANT* children) override;
  STDMETHODIMP get_accDefaultAction(VARIANT child, BSTR* action) override { return Nothing(child, action); }
  STDMETHODIMP accSelect(LONG, VARIANT) override { return E_NOTIMPL; }
  // In screen coordinates.
  STDMETHODIMP accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override;
  STDMETHODIMP accNavigate(LONG, VARIANT, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP accHitTest(LONG, LONG, VARIANT*) override { return S_FALSE; }
  STDMETHODIMP accDoDefaultAction(VARIANT) override { return E_NOTIMPL; }
  STDMETHODIMP put_accName(VARIANT, BSTR) override { return E_NOTIMPL; }
  STDMETHODIMP put_accValue(VARIANT, BSTR) override { return E_NOTIMPL; }

 private:
  ~MAccProxyObject() = default;
  // S_OK when the region is there, `out` is somewhere to write and `child` is the region itself.
  [[nodiscard]] HRESULT Check(const void* out, const VARIANT& child) const;
  [[nodiscard]] HRESULT Nothing(const VARIANT& child, BSTR* out) const;

  MRegion* region;
  volatile LONG refCount = 0;
  bool zombie = false;
};
