// Per-user preferences and small services of the machine. All thin; what matters is the keys, the codes and the order
// in which the pending version is blanked and removed.
#include <windows.h>

#include <dinput.h>

#include <new>
#include <optional>
#include <string>

#include "broker/CoLumenBrokerServer.h"
#include "delivery/UpdateMarks.h"
#include "engine/ProductKeys.h"
#include "engine/Registry.h"

namespace {

constexpr char kPendingVersion[] = "LumenPlayerVersion";
constexpr char kDialogWidth[] = "Exception Dialog Width";
constexpr char kDialogHeight[] = "Exception Dialog Height";

constexpr REGSAM kReadRights = 131097;
constexpr REGSAM kDeleteRights = 131103;
constexpr REGSAM kWriteRights = 131078;

HRESULT Answer(bool done) {
  return done ? S_OK : E_FAIL;
}

// Blanked before it is removed: a removal that fails leaves nothing behind to act on. Only the removal is judged.
bool DeletePendingVersion() {
  const RegistryKey key = OpenKey(HKEY_CURRENT_USER, kPlayerKey, kDeleteRights);
  if (!key) return false;
  RegSetValueExA(key.Get(), kPendingVersion, 0, REG_SZ, nullptr, 0);
  return RegDeleteValueA(key.Get(), kPendingVersion) == ERROR_SUCCESS;
}

HRESULT GivePendingVersion(BSTR* text) {
  *text = nullptr;
  const RegistryKey key = OpenKey(HKEY_CURRENT_USER, kPlayerKey, kReadRights);
  const std::optional<std::string> version = key ? ReadText(key.Get(), kPendingVersion) : std::nullopt;
  if (version) *text = SysAllocString(WidenFromCodePage(*version).c_str());
  return Answer(*text != nullptr);
}

BOOL CALLBACK CountDevice(const DIDEVICEINSTANCEW* /*device*/, void* count) {
  ++*static_cast<ULONG*>(count);
  return DIENUM_CONTINUE;
}

}  // namespace

HRESULT CoLumenBrokerServer::BrokerPrefGetLumenPlayerVersion(BSTR* p_string) try {
  return p_string == nullptr ? E_INVALIDARG : GivePendingVersion(p_string);
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

// Removed whether or not there was anything to give, and judged by what was given alone.
HRESULT CoLumenBrokerServer::BrokerPrefGetAndDeleteLumenPlayerVersion(BSTR* p_string) try {
  if (p_string == nullptr) return E_INVALIDARG;
  const HRESULT given = GivePendingVersion(p_string);
  (void)DeletePendingVersion();
  return given;
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

HRESULT CoLumenBrokerServer::BrokerPrefDeleteLumenPlayerVersion() {
  return Answer(DeletePendingVersion());
}

HRESULT CoLumenBrokerServer::BrokerPrefGetExceptionDialogSize(ULONG* p_width, ULONG* p_height) {
  if (p_width == nullptr || p_height == nullptr) return E_INVALIDARG;
  const RegistryKey key = OpenKey(HKEY_CURRENT_USER, kPlayerKey, kReadRights);
  const std::optional<uint32_t> width = key ? ReadNumber(key.Get(), kDialogWidth) : std::nullopt;
  if (!width) return E_FAIL;
  *p_width = *width;
  const std::optional<uint32_t> height = ReadNumber(key.Get(), kDialogHeight);
  if (!height) return E_FAIL;
  *p_height = *height;
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerPrefSetExceptionDialogSize(ULONG p_width, ULONG p_height) {
  const RegistryKey key = OpenKey(HKEY_CURRENT_USER, kPlayerKey, kWriteRights);
  return Answer(key && WriteNumber(key.Get(), kDialogWidth, p_width) == ERROR_SUCCESS &&
                WriteNumber(key.Get(), kDialogHeight, p_height) == ERROR_SUCCESS);
}

HRESULT CoLumenBrokerServer::BrokerPrefMarkAutoUpdaterForRun(BSTR p_xmlFromServer) try {
  if (p_xmlFromServer == nullptr) return E_INVALIDARG;
  return Answer(MarkAutoUpdaterForRun(NarrowToCodePage(p_xmlFromServer).c_str(), nullptr));
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

// Setting the time-out starts it anew. Neither write is looked at: the first alone would switch the saver off for good.
HRESULT CoLumenBrokerServer::BrokerDelayScreensaver() {
  UINT seconds = 0;
  if (!SystemParametersInfoW(SPI_GETSCREENSAVETIMEOUT, 0, &seconds, 0) || seconds == 0) return E_FAIL;
  SystemParametersInfoW(SPI_SETSCREENSAVETIMEOUT, 0, nullptr, 0);
  SystemParametersInfoW(SPI_SETSCREENSAVETIMEOUT, seconds, nullptr, 0);
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerGetDirectInputCount(ULONG* p_count) {
  if (p_count == nullptr) return E_INVALIDARG;
  *p_count = 0;
  const auto create = Dinput8().DirectInput8Create;
  ComPtr<IDirectInput8W> input;
  void* raw = nullptr;
  if (create == nullptr || FAILED(create(GetModuleHandleW(nullptr), 0x0800, IID_IDirectInput8W, &raw, nullptr))) {
    return S_OK;
  }
  input = Adopt(static_cast<IDirectInput8W*>(raw));
  ULONG count = 0;
  if (input) input->EnumDevices(DI8DEVCLASS_GAMECTRL, CountDevice, &count, DIEDFL_ATTACHEDONLY);
  *p_count = count;
  return S_OK;
}

// Only the letter counts; whatever stands behind the colon is ignored.
HRESULT CoLumenBrokerServer::BrokerIsDriveAvailable(LPWSTR p_lpwRootPathName) {
  if (p_lpwRootPathName == nullptr || p_lpwRootPathName[0] == 0 || p_lpwRootPathName[1] != L':') return E_INVALIDARG;
  const wchar_t root[] = {p_lpwRootPathName[0], L':', L'\\', 0};
  const auto ask = pathOperations.Kernel().GetVolumeInformationW;
  const bool there = ask != nullptr && ask(root, nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0) == TRUE;
  return there ? S_OK : S_FALSE;
}
