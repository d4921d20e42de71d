// The shim's operations that take an installed kind away. Removal is also run on half-installed systems: each step goes
// on whatever became of the ones before, and the results are joined.
#include <windows.h>

#include <optional>

#include "broker/BrokerRegistration.h"
#include "engine/HostCallbacks.h"
#include "engine/InstallEngine.h"
#include "engine/LumenBrokerShim.h"
#include "engine/ProductIds.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "engine/Reporting.h"
#include "install/ClassKeys.h"
#include "install/ControlRegistration.h"
#include "install/FileProtection.h"
#include "install/FileReplacement.h"
#include "install/Inventory.h"
#include "install/Registration.h"
#include "removal/MaintenanceCommands.h"
#include "removal/NotifierTask.h"
#include "removal/UninstallEntries.h"

namespace {

constexpr uint32_t kOsClassWithOwnFiles = 3;  // from here on the control and the two system files are the system's
constexpr char kBrokerClass[] = "Software\\Classes\\CLSID\\" LUMEN_BROKER_CLASS_ID_6;
constexpr wchar_t kControlServer[] = L"Software\\Classes\\CLSID\\" LUMEN_CONTROL_CLASS_ID L"\\InprocServer32";

// Where the control says it is; nothing when it is not registered.
std::optional<MString> RegisteredControlPath() {
  const std::optional<WideString> path = ReadWideText(HKEY_LOCAL_MACHINE, kControlServer, nullptr);
  if (!path || path->empty()) return std::nullopt;
  return MString(WideView(*path));
}

std::optional<MString> RegisteredServerPath() {
  char path[MAX_PATH] = {};
  if (!FindBrokerServerPath(path, sizeof(path))) return std::nullopt;
  return MString(WideView(WidenFromCodePage(path)));
}

// True when the broker's class has gone.
bool RemoveBrokerRegistration() {
  WriteBrokerRegistration(nullptr, false);
  return !OpenKey(HKEY_LOCAL_MACHINE, kBrokerClass, KEY_READ).IsValid();
}

// The joined result of one removal, and its reports.
class Removal {
 public:
  explicit Removal(HostCallbacks* host) : host_(host) {}
  void Fail(ReportCode code) {
    Report(host_, Severity::Survived, code);
    succeeded_ = false;
  }
  void Check(bool step, ReportCode code) {
    if (!step) Fail(code);
  }
  [[nodiscard]] bool Succeeded() const { return succeeded_; }

 private:
  HostCallbacks* host_;
  bool succeeded_ = true;
};

struct InstalledPaths {
  bool known = false;  // the inventory had both
  MString player{L""};
  MString uninstaller{L""};
};

// From the inventory, or where it says nothing from what the system was told at registration.
InstalledPaths FindInstalledPaths(HostCallbacks* host, uint32_t kind, Removal& removal) {
  InstalledPaths paths;
  paths.known = ReadPlayerPaths(host, kind, &paths.player, &paths.uninstaller);
  if (paths.known) return paths;
  removal.Fail(ReportCode::InstalledPathsNotRead);
  if (kind == product_kind::ActiveX) {
    paths.player = RegisteredControlPath().value_or(paths.player);
    paths.uninstaller = RegisteredServerPath().value_or(paths.uninstaller);
  } else if (kind == product_kind::Plugin) {
    paths.player = ReadPluginPath(host).value_or(paths.player);
  }
  return paths;
}

void RemoveInstalledFiles(LumenBrokerShim* shim, uint32_t kind, const InstalledPaths& paths, Removal& removal) {
  removal.Check(!paths.player.IsEmpty(), ReportCode::PlayerPathUnknown);
  if (!paths.player.IsEmpty()) ReplaceFile(shim, paths.player, kind);
  removal.Check(!paths.uninstaller.IsEmpty(), ReportCode::UninstallerPathUnknown);
  if (paths.uninstaller.IsEmpty()) return;
  ReplaceFile(shim, paths.uninstaller, kind);
  if (kind != product_kind::ActiveX) return;
  MString module = paths.uninstaller;
  (void)module.CutTail(".");
  module.Append(MString(L".dll"));
  ReplaceFile(shim, module, kind);
}

MString Joined(const MString& directory, const MString& name) {
  MString path = directory;
  path.AppendPath(L'\\', name);
  return path;
}

// The two files that older systems keep in their own directory. The settings manager's fate is nobody's concern: it is
// removed whether or not the applet was, and does not count.
void RemoveSystemFiles(HostCallbacks* host, const MString& directory, Removal& removal) {
  MString applet;
  MString settingsManager;
  host->GetControlPanelAppletName(&applet);
  host->GetSettingsManagerFileName(&settingsManager);
  const MString path = Joined(directory, applet);
  if (!RemoveSystemFile(host, path)) {
    removal.Fail(ReportCode::SystemFileNotRemoved);
    const FileLock lock = TestFileLocked(host, kTestLock, path);
    if (lock == FileLock::Locked) Report(host, Severity::MustTell, ReportCode::SystemFileNotRemoved, path);
    if (lock == FileLock::LockedAndEmpty) {
      ScheduleDeleteAtReboot(host, path);
      Report(host, Severity::MustTell, ReportCode::SystemFileQueued, path);
    }
  }
  (void)RemoveSystemFile(host, Joined(directory, settingsManager));
}

void RemoveServices(HostCallbacks* host, MString playerPath, bool setNotify, Removal& removal) {
  (void)playerPath.CutTail("\\");
  MString update;
  MString feedback;
  host->GetUpdateServiceFileName(&update);
  host->GetFeedbackServiceFileName(&feedback);
  const MString updatePath = Joined(playerPath, update);
  removal.Check(RemoveFeedbackService(host, Joined(playerPath, feedback), updatePath),
                ReportCode::FeedbackServiceNotRemoved);
  removal.Check(RemoveUpdateServiceFile(host, updatePath, setNotify), ReportCode::UpdateServiceNotRemoved);
}

// The control's and the broker's registration, and the class keys of earlier generations.
bool UninstallActiveX(LumenBrokerShim* shim, const MString& file, uint8_t removeSafeVersions) {
  shim->UnregisterActiveXControl(removeSafeVersions, file);
  if (const std::optional<MString> server = RegisteredServerPath()) ProtectFile(*server, false);
  const bool brokerRemoved = RemoveBrokerRegistration();
  return DeleteClassKeys(ClassKeySelection::Machine) && brokerRemoved;
}

}  // namespace

bool LumenBrokerShim::UninstallProduct(uint32_t kind, MString file, uint8_t removeSafeVersions) noexcept {
  bool result = true;
  if (kind == product_kind::ActiveX) result = UninstallActiveX(this, file, removeSafeVersions);
  if (kind == product_kind::Plugin) result = DeletePluginRegistry(host);
  if (engine != nullptr) CleanUpUninstallEntries(*engine, kind);
  return result;
}

bool LumenBrokerShim::RemoveProductKind(uint32_t kind, MString directory, uint8_t removeSafeVersions,
                                        uint8_t setNotify) noexcept {
  Removal removal(host);
  const InstalledPaths paths = FindInstalledPaths(host, kind, removal);
  // What stays of the registration does no harm once the files have gone, so this result does not count.
  (void)UninstallProduct(kind, directory, removeSafeVersions);
  RemoveInstalledFiles(this, kind, paths, removal);
  if (paths.known) removal.Check(DeleteProductKey(host, kind), ReportCode::ProductKeyNotDeleted);
  removal.Check(CleanRegistry(host, kind), ReportCode::RegistryNotCleaned);
  if (host->GetOsClass() < kOsClassWithOwnFiles) RemoveSystemFiles(host, directory, removal);
  RemoveServices(host, paths.player, setNotify != 0, removal);
  if (kind == product_kind::Pepper) RemoveNotifierTask(host);
  return removal.Succeeded();
}

bool LumenBrokerShim::UnregisterActiveXControl(uint8_t removeSafeVersions, MString /*ignored*/) noexcept {
  const std::optional<MString> path = RegisteredControlPath();
  if (path) {
    ProtectFile(*path, false);
    UnregisterControl(*path);
  }
  if (removeSafeVersions != 0) DeleteSafeVersions(host);
  return path.has_value();
}

// The name is older than the act: what a refused registration or deletion needs is access to the class keys.
bool LumenBrokerShim::StopPlayers() noexcept {
  Report(host, Severity::Information, ReportCode::PlayersStopping);
  RepairClassKeyAccess();
  return true;
}
