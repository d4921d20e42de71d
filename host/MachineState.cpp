#include "host/MachineState.h"

// clang-format off
#include <windows.h>
#include <mstask.h>
#include <taskschd.h>
// clang-format on

#include "engine/ComSupport.h"
#include "engine/ProductIds.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "engine/Vendor.h"
#include "host/PayloadList.h"
#include "install/VersionNumbers.h"
#include "removal/ScheduledTask.h"
#include "removal/ServiceRunner.h"

namespace {

constexpr char kNone[] = "-";
constexpr wchar_t kBrokerKey[] = L"Software\\Classes\\CLSID\\" LUMEN_BROKER_CLASS_ID_6 L"\\LocalServer32";
constexpr wchar_t kControlKey[] = L"Software\\Classes\\CLSID\\" LUMEN_CONTROL_CLASS_ID L"\\InprocServer32";
constexpr wchar_t kPluginKey[] = L"SOFTWARE\\MozillaPlugins\\" LUMEN_PLUGIN_ID;

bool Exists(const WideString& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string Shown(const std::optional<WideString>& path) {
  if (!path || path->empty()) return kNone;
  return ToUtf8(*path) + (Exists(*path) ? "" : " (missing)");
}

std::optional<WideString> Wide(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  return WidenFromCodePage(*text);
}

const char* Comparison(const std::string& version) {
  switch (StateOfVersion(MString(WideView(FromUtf8(version))))) {
    case InstalledState::Older: return "older";
    case InstalledState::Same: return "this build";
    case InstalledState::Newer: return "newer";
    default: return kNone;
  }
}

// Where the browsers of this kind find the player; the PPAPI kind is found by its inventory alone.
std::string RegisteredPath(uint32_t kind) {
  if (kind == product_kind::ActiveX) return Shown(ReadWideText(HKEY_LOCAL_MACHINE, kControlKey, L""));
  if (kind == product_kind::Plugin) return Shown(ReadWideText(HKEY_LOCAL_MACHINE, kPluginKey, L"Path"));
  return kNone;
}

std::string ServiceState(const wchar_t* name) {
  const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
  if (!manager) return "unknown";
  const ServiceHandle service(OpenServiceW(manager.Get(), name, SERVICE_QUERY_STATUS));
  if (!service) return "not registered";
  SERVICE_STATUS status = {};
  if (!QueryServiceStatus(service.Get(), &status)) return "unknown";
  return status.dwCurrentState == SERVICE_STOPPED ? "stopped" : "running";
}

std::string TaskState() {
  const ComInitializer com;
  ComPtr<ITaskService> service;
  ComPtr<ITaskFolder> folder;
  ComPtr<IRegisteredTask> task;
  VARIANT none;
  VariantInit(&none);
  if (FAILED(CoCreateInstance(__uuidof(TaskScheduler), nullptr, CLSCTX_INPROC_SERVER, __uuidof(ITaskService),
                              reinterpret_cast<void**>(service.GetAddressOf()))) ||
      FAILED(service->Connect(none, none, none, none)) ||
      FAILED(service->GetFolder(BString(L"\\").Get(), folder.GetAddressOf()))) {
    return "unknown";
  }
  return SUCCEEDED(folder->GetTask(BString(kNotifierTaskName).Get(), task.GetAddressOf())) ? "scheduled"
                                                                                           : "not scheduled";
}

std::string FirstOr(const std::vector<WideString>& values, const char* otherwise) {
  return values.empty() ? otherwise : ToUtf8(values.front());
}

TableRow ServiceRow(const Session& session, const char* label, const wchar_t* setting, const wchar_t* service) {
  const std::string file = FirstOr(SettingValues(session.host.GetSettings(), setting), "");
  const WideString path = PlayerDirectory() + FromUtf8(file);
  return {label, ServiceState(service), !file.empty() && Exists(path) ? ToUtf8(path) : kNone};
}

}  // namespace

std::vector<TableRow> PlayerRows() {
  std::vector<TableRow> rows = {{"player", "version", "is", "type", "file", "registered", "uninstaller", "listed"}};
  for (const uint32_t kind : {product_kind::ActiveX, product_kind::Plugin, product_kind::Pepper}) {
    const std::string key = GetProductKey(kind);
    const auto read = [&key](const char* name) { return ReadText(HKEY_LOCAL_MACHINE, key.c_str(), name); };
    const auto version = read("Version");
    const auto debugger = ReadNumber(HKEY_LOCAL_MACHINE, key.c_str(), "isScriptDebugger");
    const bool listed = OpenKey(HKEY_LOCAL_MACHINE, GetUninstallEntryKey(kind).c_str(), KEY_READ).IsValid();
    rows.push_back({std::string(NameOfKind(kind)), version.value_or(kNone), version ? Comparison(*version) : kNone,
                    !debugger        ? kNone
                    : *debugger == 0 ? "release"
                                     : "debugger",
                    Shown(Wide(read("PlayerPath"))), RegisteredPath(kind), Shown(Wide(read("UninstallerPath"))),
                    listed ? "yes" : "no"});
  }
  return rows;
}

std::vector<TableRow> MachineRows(const Session& session) {
  const auto safe = ReadNumber(HKEY_LOCAL_MACHINE, kSafeVersionsKey, "28.0");
  return {{"machine", "state", "file"},
          {"broker", ReadWideText(HKEY_LOCAL_MACHINE, kBrokerKey, L"") ? "registered" : "not registered",
           Shown(ReadWideText(HKEY_LOCAL_MACHINE, kBrokerKey, L""))},
          ServiceRow(session, "update service", L"Host.UpdateService", kUpdateServiceName),
          ServiceRow(session, "feedback service", L"Host.FeedbackService", kFeedbackServiceName),
          {"hourly check", TaskState()},
          {"lowest safe revision", safe ? std::to_string(*safe) : kNone},
          {"after the next restart", PendingOperations() == 0 ? "nothing to do" : "files to delete or rename"}};
}
