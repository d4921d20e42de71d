// Wine's internet shortcut without what Wine leaves out: the link interface, of which the icon's place is kept and
// written into the file that the real shortcut saves.
#pragma once

#include <windows.h>

#include <intshcut.h>
#include <shlobj.h>

#include "tests/fakes/ShellFakes.h"

// The toolchain's headers lack it.
__CRT_UUID_DECL(IUniformResourceLocatorW, 0xCABB0DA0, 0xDA57, 0x11CF, 0x99, 0x74, 0x00, 0x20, 0xAF, 0xD7, 0x97, 0x62)

namespace shell_fakes {

constexpr CLSID kInternetShortcut = {0xFBF23B40, 0xE3F0, 0x101B, {0x84, 0x88, 0x00, 0xAA, 0x00, 0x3E, 0x56, 0xF8}};

struct InternetShortcut final : SlotFake<IUniformResourceLocatorW, IPersistFile, IShellLinkW> {
  InternetShortcut() {
    // From the platform's library itself, since the class object of this process is this stand-in.
    const HMODULE library = LoadLibraryW(L"ieframe.dll");
    using GetClass = HRESULT WINAPI(REFCLSID, REFIID, void**);
    auto* const getClass =
        reinterpret_cast<GetClass*>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
    ComPtr<IClassFactory> factory;
    (void)getClass(kInternetShortcut, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf()));
    (void)factory->CreateInstance(nullptr, __uuidof(IUniformResourceLocatorW),
                                  reinterpret_cast<void**>(real.GetAddressOf()));
    On(&IUniformResourceLocatorW::SetURL,
       [](void* face, LPCWSTR url, DWORD flags) { return Self(face)->real->SetURL(url, flags); });
    On(&IShellLinkW::SetIconLocation, [](void* face, LPCWSTR path, int at) {
      Self(face)->icon = path;
      Self(face)->index = at;
      return g_record.Note("SetIconLocation", "");
    });
    On(&IPersistFile::Save, [](void* face, LPCOLESTR path, BOOL remember) {
      const InternetShortcut& shortcut = *Self(face);
      ComPtr<IPersistFile> file;
      (void)shortcut.real.As(&file);
      const HRESULT saved = file->Save(path, remember);
      if (FAILED(saved) || shortcut.icon.empty()) return saved;
      WritePrivateProfileStringW(L"InternetShortcut", L"IconFile", shortcut.icon.c_str(), path);
      WritePrivateProfileStringW(L"InternetShortcut", L"IconIndex", shortcut.index == 0 ? L"0" : L"other", path);
      return saved;
    });
  }
  static InternetShortcut* Self(void* face) { return static_cast<InternetShortcut*>(Of(face)); }

  ComPtr<IUniformResourceLocatorW> real;
  WideString icon;
  int index = -1;
};

}  // namespace shell_fakes
