// The operations of the shim that open an address or a program for the user.
#include <windows.h>

#include <shellapi.h>

#include <optional>

#include "engine/Handles.h"
#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/SettingsTree.h"
#include "engine/SystemPaths.h"

namespace {

constexpr wchar_t kInternetExplorer[] = L"c:\\Program Files\\Internet Explorer\\iexplore.exe";
constexpr wchar_t kInternetExplorerX86[] = L"c:\\Program Files (x86)\\Internet Explorer\\iexplore.exe";
// The shell's answer above this is a success.
constexpr INT_PTR kLastShellError = 32;

// Opens `url` with `browser`, or by itself when that is null.
bool Open(HWND window, const wchar_t* browser, const MString& url) {
  const wchar_t* const file = browser == nullptr ? url.Data() : browser;
  const wchar_t* const parameters = browser == nullptr ? nullptr : url.Data();
  const HINSTANCE opened = ShellExecuteW(window, L"open", file, parameters, nullptr, SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(opened) > kLastShellError;
}

}  // namespace

bool LumenBrokerShim::OpenExpressInstallUrl(HWND window) noexcept {
  const SettingsNode* const setting = FindSetting(host->GetSettings(), MString(L"ExpressInstallURL"));
  return setting != nullptr && setting->values != nullptr && OpenUrl(window, setting->values->name);
}

bool LumenBrokerShim::OpenUrl(HWND window, MString url) noexcept {
  const uint32_t flags = host->GetFlags();
  const bool forActiveX = (flags & host_flag::ActiveX) != 0;
  std::optional<MString> browser;
  if (forActiveX) {
    browser = MString(kInternetExplorer);
  } else if ((flags & host_flag::Plugin) != 0) {
    const bool known = !browserName.IsEmpty() || FindDefaultBrowser();
    browser = known ? browserName : MString(L"firefox.exe");
  }
  if (Open(window, browser ? browser->Data() : nullptr, url)) return true;
  if (forActiveX && Open(window, kInternetExplorerX86, url)) return true;
  return Open(window, nullptr, url);
}

bool LumenBrokerShim::OpenControlPanelApplet() noexcept {
  std::optional<WideString> applet = FolderPath(ShellFolder::Windows);
  if (!applet) return false;
  *applet += L"\\SysWOW64\\LumenPlayerCPLApp.cpl";
  const FileHandle there(
      CreateFileW(applet->c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!there) return false;
  WideString command = L"control.exe " + *applet;
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION started = {};
  if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started)) {
    KernelHandle(started.hThread).Reset();
    KernelHandle(started.hProcess).Reset();
  }
  // False also when the applet has started: callers go on to their own way of showing settings.
  return false;
}
