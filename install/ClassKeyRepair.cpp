// What is done to the keys of ClassKeys.h on a real system: deletion, and the repair of their access lists.
#include <windows.h>

#include <shlwapi.h>

#include "engine/WideText.h"
#include "install/AccessRepair.h"
#include "install/ClassKeys.h"

namespace {

constexpr std::string_view kMachineRoot = "MACHINE\\";

void DeleteVisited(const char* key, void* context) {
  const int32_t error = DeleteMachineKey(key).value_or(ERROR_SUCCESS);
  // Removal is also run on half-installed systems, so what is not there is as good as deleted.
  const bool gone = error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
  if (!gone) *static_cast<bool*>(context) = false;
}

void RepairVisited(const char* key, void* /*context*/) {
  const WideString wide = WidenAscii(key);
  // A key that does not exist, or whose list cannot be read, is passed over.
  (void)EnsureAccess(wide.c_str(), SecuredObject::RegistryKey, KnownAccount::Administrators, KEY_ALL_ACCESS);
  (void)EnsureAccess(wide.c_str(), SecuredObject::RegistryKey, KnownAccount::System, KEY_ALL_ACCESS);
  (void)EnsureAccess(wide.c_str(), SecuredObject::RegistryKey, KnownAccount::Users, KEY_READ);
}

}  // namespace

std::optional<int32_t> DeleteMachineKey(const char* key) {
  if (!std::string_view(key).starts_with(kMachineRoot)) return std::nullopt;
  return SHDeleteKeyA(HKEY_LOCAL_MACHINE, key + kMachineRoot.size());
}

bool DeleteClassKeys(ClassKeySelection selection) {
  bool all = true;
  if (selection == ClassKeySelection::Machine) {
    VisitClassKeys(ClassKeyFamily::MachineClasses, &DeleteVisited, &all);
  } else {
    VisitClassKeys(ClassKeyFamily::SecondControl, &DeleteVisited, &all);
    VisitClassKeys(ClassKeyFamily::ClassRoot, &DeleteVisited, &all);
  }
  return all;
}

void RepairClassKeyAccess() {
  for (const auto family : {ClassKeyFamily::MachineClasses, ClassKeyFamily::SecondControl, ClassKeyFamily::ClassRoot}) {
    VisitClassKeys(family, &RepairVisited, nullptr);
  }
}
