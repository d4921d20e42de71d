#include "install/FileReplacement.h"

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/MStringList.h"
#include "engine/ProductKind.h"
#include "engine/Reporting.h"
#include "engine/SystemPaths.h"
#include "engine/SystemVersion.h"
#include "install/ExtraFiles.h"
#include "install/Inventory.h"
#include "install/Registration.h"
#include "install/ReportedRegistry.h"

namespace {

constexpr wchar_t kSessionManagerKey[] = L"SYSTEM\\CurrentControlSet\\Control\\Session Manager";
constexpr wchar_t kExtendedPropertiesKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Control Panel\\Extended Properties\\";
// Where the control panel keeps an applet's category, now and before Windows 6.0.
constexpr wchar_t kCategory[] = L"System.ControlPanel.Category";
constexpr wchar_t kOldCategory[] = L"{2CA4F306-B280-4ab2-B5E1-1DFA3583F046}";

DWORD DeleteOnce(const MString& path) {
  return DeleteFileW(path.Data()) ? ERROR_SUCCESS : GetLastError();
}

void ReportNotDeleted(HostCallbacks* host, const MString& path, DWORD error) {
  Report(host, Severity::Survived, ReportCode::FileNotDeleted, PathAndError(path, error));
}

// Whether `path` ends with an entry of the list; a host names its files without their directory.
bool IsFreshPart(const MStringList& files, const MString& path) {
  for (const auto* file = files.Head(); file != nullptr; file = file->next) {
    if (path.EndsWith(file->key)) return true;
  }
  return false;
}

// Every kind is asked for, so that the log tells which ones are not installed.
bool IsAnyKindInstalled(HostCallbacks* host) {
  bool found = false;
  for (const uint32_t kind : {product_kind::ActiveX, product_kind::Plugin, product_kind::Pepper}) {
    MString playerPath;
    MString uninstallerPath;
    if (ReadPlayerPaths(host, kind, &playerPath, &uninstallerPath)) found = true;
  }
  return found;
}

bool ForgetAppletCategory(HostCallbacks* host) {
  MString key(kExtendedPropertiesKey);
  key.Append(IsVistaOrLater() ? kCategory : kOldCategory);
  MString applet;
  host->GetControlPanelAppletName(&applet);
  MString name(WideView(GetSystem32Path().value_or(WideString())));
  name.Append(L"\\");
  name.Append(applet);
  return DeleteRegistryValue(host, HKEY_LOCAL_MACHINE, key, name);
}

}  // namespace

FileHandle OpenByMode(const MString& path, FileMode mode) {
  DWORD access = GENERIC_READ | GENERIC_WRITE;
  if (mode == FileMode::Append || mode == FileMode::Write) access = GENERIC_WRITE;
  if (mode == FileMode::Read) access = GENERIC_READ;
  const bool mustExist = mode == FileMode::Write || mode == FileMode::Read;
  FileHandle file(CreateFileW(path.Data(), access, FILE_SHARE_READ, nullptr, mustExist ? OPEN_EXISTING : OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
  if (file && mode == FileMode::Append) SetFilePointer(file.Get(), 0, nullptr, FILE_END);
  return file;
}

bool FileExists(const MString& path) {
  return OpenByMode(path, FileMode::Read).IsValid() || GetLastError() == ERROR_ACCESS_DENIED;
}

uint32_t ReplaceFile(LumenBrokerShim* shim, const MString& path, uint32_t kind) {
  if (!FileExists(path)) return ERROR_SUCCESS;
  DWORD error = DeleteOnce(path);
  if (error == ERROR_SUCCESS) return ERROR_SUCCESS;
  // A file that has gone meanwhile is left at that.
  if (error != ERROR_FILE_NOT_FOUND) {
    ReportNotDeleted(shim->host, path, error);
    if (kind == product_kind::ActiveX) shim->StopPlayers();
    SetFileAttributesW(path.Data(), 0);
    error = DeleteOnce(path);
  }
  if (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION) {
    const MStringList* const fresh = ExtraFilesOf(shim, kind);
    if (fresh == nullptr || !IsFreshPart(*fresh, path)) ScheduleDeleteAtReboot(shim->host, path);
  }
  // Queued or not, the file is still there: the caller is told so, and the log has both lines.
  if (error != ERROR_SUCCESS) ReportNotDeleted(shim->host, path, error);
  return error;
}

void ScheduleDeleteAtReboot(HostCallbacks* host, const MString& path) {
  (void)WriteRegistryNumber(host, HKEY_LOCAL_MACHINE, kSessionManagerKey, L"AllowProtectedRenames", 1);
  if (MoveFileExW(path.Data(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT)) return;
  Report(host, Severity::Survived, ReportCode::RebootDeleteNotQueued,
         PathAndError(path, GetLastError(), ErrorRadix::Decimal));
}

FileLock TestFileLocked(HostCallbacks* host, uint32_t flags, const MString& path) {
  Report(host, Severity::Information, ReportCode::FileLockTested, path);
  if ((flags & kTestLock) == 0 || !FileExists(path)) return FileLock::Free;
  if (OpenByMode(path, FileMode::Write)) return FileLock::Free;
  const FileHandle file = OpenByMode(path, FileMode::Read);
  if (!file) return FileLock::Free;
  LARGE_INTEGER size = {};
  if (GetFileSizeEx(file.Get(), &size) && size.QuadPart > 0) return FileLock::Locked;
  Report(host, Severity::Survived, ReportCode::LockedFileEmpty, path);
  return FileLock::LockedAndEmpty;
}

bool RemoveSystemFile(HostCallbacks* host, const MString& path) {
  if (IsAnyKindInstalled(host)) return true;
  const bool gone = !FileExists(path) || DeleteFileW(path.Data());
  if (path.EndsWith(L".exe")) {
    MString name = path.TailFrom("\\");
    (void)name.Take(1);
    DeleteImageExecutionKey(host, name.IsEmpty() ? path : name);
  }
  return gone && ForgetAppletCategory(host);
}
