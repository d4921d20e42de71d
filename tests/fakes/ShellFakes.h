// Zone identifier and attachment services as COM classes of the test process, recording what they are asked.
#pragma once

#include <windows.h>

#include <shobjidl.h>
#include <urlmon.h>

#include <functional>
#include <string>
#include <vector>

#include "engine/ComSupport.h"

namespace shell_fakes {

struct Record {
  std::vector<std::string> calls;
  DWORD zone = 0;          // what a load finds; 0 is no mark
  HRESULT loads = E_FAIL;  // of IPersistFile::Load
  std::string failing;     // the call that fails
  HRESULT failure = E_UNEXPECTED;
  std::function<void()> meanwhile;  // what arrives while the attachment services are at work

  HRESULT Note(const std::string& name, const std::string& argument) {
    calls.push_back(argument.empty() ? name : name + " " + argument);
    return name == failing ? failure : S_OK;
  }
};
inline Record g_record;

template <class... Interfaces>
class Counted : public Interfaces... {
 public:
  ULONG STDMETHODCALLTYPE AddRef() override { return ++count_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG count = --count_;
    if (count == 0) delete this;
    return count;
  }

 protected:
  virtual ~Counted() = default;

 private:
  ULONG count_ = 1;
};

class Zone final : public Counted<IZoneIdentifier, IPersistFile> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (iid == __uuidof(IPersistFile))
      *out = static_cast<IPersistFile*>(this);
    else
      *out = static_cast<IZoneIdentifier*>(this);
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetId(DWORD* zone) override {
    *zone = g_record.zone;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetId(DWORD zone) override { return g_record.Note("SetId", std::to_string(zone)); }
  HRESULT STDMETHODCALLTYPE Remove() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE IsDirty() override { return S_FALSE; }
  HRESULT STDMETHODCALLTYPE Load(LPCOLESTR, DWORD) override { return g_record.loads; }
  HRESULT STDMETHODCALLTYPE Save(LPCOLESTR path, BOOL remember) override {
    return g_record.Note("ZoneSave", ToUtf8(path) + (remember ? " remember" : ""));
  }
  HRESULT STDMETHODCALLTYPE SaveCompleted(LPCOLESTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetCurFile(LPOLESTR*) override { return E_NOTIMPL; }
};

class Attachment final : public Counted<IAttachmentExecute> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
    *out = static_cast<IAttachmentExecute*>(this);
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetClientTitle(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetClientGuid(REFGUID) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetLocalPath(LPCWSTR path) override { return g_record.Note("SetLocalPath", ToUtf8(path)); }
  HRESULT STDMETHODCALLTYPE SetFileName(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetSource(LPCWSTR url) override { return g_record.Note("SetSource", ToUtf8(url)); }
  HRESULT STDMETHODCALLTYPE SetReferrer(LPCWSTR url) override { return g_record.Note("SetReferrer", ToUtf8(url)); }
  HRESULT STDMETHODCALLTYPE CheckPolicy() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Prompt(HWND, ATTACHMENT_PROMPT, ATTACHMENT_ACTION*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Save() override {
    if (g_record.meanwhile) g_record.meanwhile();
    return g_record.Note("Save", "");
  }
  HRESULT STDMETHODCALLTYPE Execute(HWND, LPCWSTR, HANDLE*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SaveWithUI(HWND) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ClearClientState() override { return E_NOTIMPL; }
};

template <class Product>
class Factory final : public Counted<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
    *out = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** out) override {
    auto* const product = new Product;
    const HRESULT found = product->QueryInterface(iid, out);
    product->Release();
    return found;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

// Puts a class in the platform's place for a scope.
template <class Product>
class Registered {
 public:
  explicit Registered(REFCLSID clsid) {
    auto* const factory = new Factory<Product>;
    CoRegisterClassObject(clsid, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &number_);
    factory->Release();
  }
  ~Registered() { CoRevokeClassObject(number_); }
  Registered(const Registered&) = delete;
  Registered& operator=(const Registered&) = delete;

 private:
  DWORD number_ = 0;
};

constexpr CLSID kZoneClass = {0x0968E258, 0x16C7, 0x4DBA, {0xAA, 0x86, 0x46, 0x2D, 0xD6, 0x1E, 0x31, 0xA3}};

}  // namespace shell_fakes
