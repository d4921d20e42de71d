// Per-user preferences and small services of the machine. All thin; what matters is the keys, the codes and the order
// in which the pending version is blanked and removed.
#include <windows.h>

#include <dinput.h>

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

RegistryKey OpenPreferences(REGSAM rights) {
  RegistryKey key;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, kPlayerKey, 0, rights, key.Receive()) != ERROR_SUCCESS) return {};
  return key;
}
