// Wine's internet shortcut without what Wine leaves out: the link interface, of which the icon's place is kept and
// written into the file that the real shortcut saves.
#pragma once

#include <windows.h>

#include <intshcut.h>
#include <shlobj.h>

#include "engine/ComSupport.h"
#include "tests/fakes/ShellFakes.h"

namespace shell_fakes {

constexpr CLSID kInternetShortcut = {0xFBF23B40, 0xE3F0, 0x101B, {0x84, 0x88, 0x00, 0xAA, 0x00, 0x3E, 0x56, 0xF8}};
constexpr IID kUniformLocator = {0xCABB0DA0, 0xDA57, 0x11CF, {0x99, 0x74, 0x00, 0x20, 0xAF, 0xD7, 0x97, 0x62}};

class InternetShortcut final : public Counted<IUniformResourceLocatorW, IPersistFile, IShellLinkW> {
 public:
  InternetShortcut() {
    // From the platform's library itself, since the class object of this process is this stand-in.
    const HMODULE library = LoadLibraryW(L"ieframe.dll");
    using GetClass = HRESULT WINAPI(REFCLSID, REFIID, void**);
    auto* const getClass =
        reinterpret_cast<GetClass*>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
    ComPtr<IClassFactory> factory;
    if (getClass != nullptr) {
      (void)getClass(kInternetShortcut, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf()));
    }
    if (factory) {
      (void)factory->CreateInstance(nullptr, kUniformLocator, reinterpret_cast<void**>(locator_.GetAddressOf()));
    }
    if (locator_) (void)locator_.As(&file_);
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    *out = nullptr;
    if (!file_) return E_UNEXPECTED;
    if (iid == kUniformLocator) *out = static_cast<IUniformResourceLocatorW*>(this);
    if (iid == IID_IPersistFile) *out = static_cast<IPersistFile*>(this);
    if (iid == IID_IShellLinkW) *out = static_cast<IShellLinkW*>(this);
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE SetURL(LPCWSTR url, DWORD flags) override { return locator_->SetURL(url, flags); }
  HRESULT STDMETHODCALLTYPE GetURL(LPWSTR* url) override { return locator_->GetURL(url); }
  HRESULT STDMETHODCALLTYPE InvokeCommand(PURLINVOKECOMMANDINFOW) override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) override { return file_->GetClassID(clsid); }
  HRESULT STDMETHODCALLTYPE IsDirty() override { return file_->IsDirty(); }
  HRESULT STDMETHODCALLTYPE Load(LPCOLESTR path, DWORD mode) override { return file_->Load(path, mode); }
  HRESULT STDMETHODCALLTYPE Save(LPCOLESTR path, BOOL remember) override {
    const HRESULT saved = file_->Save(path, remember);
    if (FAILED(saved) || icon_.empty()) return saved;
    WritePrivateProfileStringW(L"InternetShortcut", L"IconFile", icon_.c_str(), path);
    WritePrivateProfileStringW(L"InternetShortcut", L"IconIndex", index_ == 0 ? L"0" : L"other", path);
    return saved;
  }
  HRESULT STDMETHODCALLTYPE SaveCompleted(LPCOLESTR path) override { return file_->SaveCompleted(path); }
  HRESULT STDMETHODCALLTYPE GetCurFile(LPOLESTR* path) override { return file_->GetCurFile(path); }

  HRESULT STDMETHODCALLTYPE SetIconLocation(LPCWSTR path, int index) override {
    icon_ = path;
    index_ = index;
    return g_record.Note("SetIconLocation", "");
  }
  HRESULT STDMETHODCALLTYPE GetPath(LPWSTR, int, WIN32_FIND_DATAW*, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDList(LPITEMIDLIST*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetIDList(LPCITEMIDLIST) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetDescription(LPWSTR, int) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetDescription(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetWorkingDirectory(LPWSTR, int) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetWorkingDirectory(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetArguments(LPWSTR, int) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetArguments(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetHotkey(WORD*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetHotkey(WORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetShowCmd(int*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetShowCmd(int) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIconLocation(LPWSTR, int, int*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetRelativePath(LPCWSTR, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Resolve(HWND, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetPath(LPCWSTR) override { return E_NOTIMPL; }

 private:
  ComPtr<IUniformResourceLocatorW> locator_;
  ComPtr<IPersistFile> file_;
  WideString icon_;
  int index_ = -1;
};

}  // namespace shell_fakes
