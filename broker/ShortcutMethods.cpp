// Icons in the icon cache, and shortcuts on the desktop, in the start menu, in the quick launch bar and on the taskbar.
#include <windows.h>

#include <shlobj.h>
#include <shlwapi.h>

#include <intshcut.h>
#include <isguids.h>

#include <iterator>
#include <new>
#include <optional>
#include <vector>

#include "broker/CoLumenBrokerServer.h"
#include "broker/SafeArrayBytes.h"
#include "broker/ShortcutRules.h"
#include "delivery/SignedMessage.h"
#include "delivery/TrustAnchor.h"
#include "engine/HostCallbacks.h"
#include "install/UniqueFileName.h"

__CRT_UUID_DECL(IUniformResourceLocatorW, 0xCABB0DA0, 0xDA57, 0x11CF, 0x99, 0x74, 0x00, 0x20, 0xAF, 0xD7, 0x97, 0x62)

namespace {

// One code for every refused shortcut; it does not say which test refused.
constexpr HRESULT kRefused = RPC_E_INVALID_PARAMETER;
static_assert(kRefused == static_cast<HRESULT>(0x80010010));

constexpr ULONG kQuickLaunch = 4;
constexpr ULONG kTaskbarPin = 8;

struct Place {
  ULONG flag;
  int folder;
  const wchar_t* below;
};
constexpr Place kPlaces[] = {
    {1, CSIDL_DESKTOPDIRECTORY, L""},
    {2, CSIDL_PROGRAMS, L""},
    {kQuickLaunch, CSIDL_APPDATA, L"\\Microsoft\\Internet Explorer\\Quick Launch"},
};

bool Exists(const wchar_t* path) {
  return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES;
}

bool IsEmpty(BSTR text) {
  return text == nullptr || text[0] == 0;
}

std::optional<WideString> FolderPath(int folder, WideView below) {
  wchar_t buffer[MAX_PATH] = {};
  if (FAILED(SHGetFolderPathW(nullptr, folder, nullptr, 0, buffer))) return std::nullopt;
  return WideString(buffer) + WideString(below);
}

std::optional<WideString> IconCache() {
  return FolderPath(CSIDL_APPDATA, L"\\Corva\\Lumen Player\\Icon Cache");
}

// A free path in `folder`, at most MAX_PATH units with the terminator.
std::optional<WideString> UniquePath(const std::optional<WideString>& folder, const wchar_t* name,
                                     const wchar_t* extension, bool overwrite) {
  wchar_t buffer[MAX_PATH] = {};
  if (!folder || folder->size() >= std::size(buffer)) return std::nullopt;
  WideTraits::copy(buffer, folder->c_str(), folder->size() + 1);
  if (MakeUniqueFileName(buffer, std::size(buffer), name, extension, overwrite, Exists) == nullptr) return std::nullopt;
  return WideString(buffer);
}

HRESULT CreateIconPath(BSTR name, BSTR* iconPath, bool overwrite) try {
  if (iconPath == nullptr) return E_INVALIDARG;
  *iconPath = nullptr;
  const std::optional<WideString> folder = IconCache();
  if (folder) SHCreateDirectoryExW(nullptr, folder->c_str(), nullptr);  // may well be there already
  const std::optional<WideString> path = UniquePath(folder, name, L".ico", overwrite);
  if (path) *iconPath = SysAllocString(path->c_str());
  return *iconPath == nullptr ? E_FAIL : S_OK;
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

// Saves a link at every place that `flags` name. A place whose path cannot be built is passed over; a failed save ends
// it.
HRESULT SaveAtPlaces(IPersistFile* link, const wchar_t* name, const wchar_t* desktopExtension, ULONG flags) {
  for (const Place& place : kPlaces) {
    if ((flags & place.flag) == 0) continue;
    const wchar_t* const extension = place.flag == 1 ? desktopExtension : L".lnk";
    const std::optional<WideString> path = UniquePath(FolderPath(place.folder, place.below), name, extension, false);
    if (!path) continue;
    const HRESULT saved = link->Save(path->c_str(), TRUE);
    if (FAILED(saved)) return saved;
    if (place.flag == kQuickLaunch && (flags & kTaskbarPin) != 0) {
      // The pin is what remains; the link in the quick launch folder has done its duty.
      ShellExecuteW(nullptr, L"taskbarpin", path->c_str(), nullptr, nullptr, SW_SHOWNORMAL);
      DeleteFileW(path->c_str());
    }
  }
  return S_OK;
}

HRESULT SaveDesktopShortcut(BSTR name, BSTR url, BSTR iconPath, ULONG flags) {
  ComPtr<IUniformResourceLocatorW> shortcut;
  HRESULT result =
      CoCreateInstance(CLSID_InternetShortcut, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUniformResourceLocatorW),
                       reinterpret_cast<void**>(shortcut.GetAddressOf()));
  if (FAILED(result)) return result;
  ComPtr<IPersistFile> file;
  ComPtr<IShellLinkW> link;
  if (FAILED(result = shortcut.As(&file)) || FAILED(result = shortcut.As(&link))) return result;
  if (FAILED(result = shortcut->SetURL(url, 0))) return result;
  if (!IsEmpty(iconPath) && FAILED(result = link->SetIconLocation(iconPath, 0))) return result;
  return SaveAtPlaces(file.Get(), name, L".url", flags);
}

HRESULT SaveBrowserShortcut(BSTR name, const wchar_t* url, BSTR iconPath, ULONG flags) {
  wchar_t browser[MAX_PATH] = {};
  DWORD length = MAX_PATH;
  HRESULT result = AssocQueryStringW(ASSOCF_NONE, ASSOCSTR_EXECUTABLE, L"http", L"open", browser, &length);
  if (FAILED(result)) return result;
  ComPtr<IShellLinkW> link;
  result = CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                            reinterpret_cast<void**>(link.GetAddressOf()));
  if (FAILED(result)) return result;
  if (FAILED(result = link->SetPath(browser)) || FAILED(result = link->SetArguments(url)) ||
      FAILED(result = link->SetIconLocation(iconPath, 0))) {
    return result;
  }
  ComPtr<IPersistFile> file;
  if (FAILED(result = link.As(&file))) return result;
  return SaveAtPlaces(file.Get(), name, L".lnk", flags);
}

// The name as the platform would write it; a name that is not its own canonical form tries to leave its folder.
bool IsCanonicalName(BSTR name) {
  wchar_t canonical[MAX_PATH] = {};
  return SysStringLen(name) < MAX_PATH && PathCanonicalizeW(canonical, name) && WideView(canonical) == WideView(name);
}

std::optional<WideString> CanonicalUrl(BSTR url) {
  wchar_t canonical[MAX_PATH] = {};
  DWORD length = MAX_PATH;
  if (FAILED(UrlCanonicalizeW(url, canonical, &length, URL_ESCAPE_UNSAFE | URL_ESCAPE_PERCENT))) return std::nullopt;
  return WideString(canonical);
}
static_assert((URL_ESCAPE_UNSAFE | URL_ESCAPE_PERCENT) == 0x20001000);

// A client is entitled to a shortcut by a message that the add-on channel signed over the very strings it brings.
bool IsEntitled(HostCallbacks* host, std::span<const uint8_t> message, std::span<const uint8_t> strings) {
  MString anchorPath;
  uint8_t ignored = 0;
  if (host != nullptr) host->GetDownloadSettings(&anchorPath, &ignored);
  std::vector<uint8_t> anchor;
  std::vector<uint8_t> content;
  return LoadAnchor(anchorPath.Data(), anchor) && VerifySignedMessage(message, anchor, content) &&
         std::equal(content.begin(), content.end(), strings.begin(), strings.end());
}

}  // namespace

HRESULT CoLumenBrokerServer::BrokerCreateIconPath(BSTR p_fileName, BSTR* p_iconPath) {
  return CreateIconPath(p_fileName, p_iconPath, false);
}

HRESULT CoLumenBrokerServer::BrokerCreateIconPathV2(BSTR p_fileName, BSTR* p_iconPath, LONG p_overwrite) {
  return CreateIconPath(p_fileName, p_iconPath, p_overwrite == 1);
}

HRESULT CoLumenBrokerServer::BrokerCreateDesktopShortcut(BSTR fileName, BSTR url, BSTR iconPath, ULONG flags) try {
  // One for all clients: each broker object is only one client's.
  static ShortcutRateLimit rateLimit;
  if (!rateLimit.Admit(GetTickCount())) return kRefused;
  if (IsEmpty(fileName) || IsEmpty(url) || flags == 0) return kRefused;
  if (!IsDesktopShortcutName(fileName) || !IsRedirectAddress(url)) return kRefused;
  return SaveDesktopShortcut(fileName, url, iconPath, flags);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

HRESULT CoLumenBrokerServer::BrokerCreateInternetShortcut(BSTR fileName, BSTR url, BSTR iconPath,
                                                          SAFEARRAY* p_signed_auth_data, SAFEARRAY* p_strings,
                                                          ULONG flags) try {
  if (IsEmpty(fileName) || IsEmpty(url) || IsEmpty(iconPath) || flags == 0) return kRefused;
  if (p_signed_auth_data == nullptr || p_strings == nullptr) return kRefused;
  if (!IsCanonicalName(fileName) || !IsInternetShortcutName(fileName)) return kRefused;
  const std::optional<WideString> address = CanonicalUrl(url);
  if (!address || !IsHttpAddress(*address)) return kRefused;
  const std::optional<WideString> cache = IconCache();
  if (!cache || !IsIconCachePath(iconPath, *cache, fileName)) return kRefused;

  const SafeArrayBytes strings(p_strings);
  const SafeArrayBytes message(p_signed_auth_data);
  if (!strings.IsOpen() || !message.IsOpen()) return kRefused;
  if (!EntitlesShortcut(strings.Bytes(), *address, fileName)) return kRefused;
  if (!IsEntitled(host, message.Bytes(), strings.Bytes())) return kRefused;
  return SaveBrowserShortcut(fileName, address->c_str(), iconPath, flags);
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}
