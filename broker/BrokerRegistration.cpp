#include "broker/BrokerRegistration.h"

#include <cstring>
#include <new>
#include <optional>
#include <string>

#include "engine/DllHelpers.h"
#include "engine/Handles.h"
#include "engine/ProductIds.h"
#include "engine/Registry.h"

namespace {

constexpr char kClass[] = "Software\\Classes\\CLSID\\" LUMEN_BROKER_CLASS_ID_6;
constexpr char kInterface[] = "Software\\Classes\\Interface\\" LUMEN_BROKER_INTERFACE_ID_6;
constexpr char kTypeLibrary[] = "Software\\Classes\\TypeLib\\" LUMEN_BROKER_LIBRARY_ID;
constexpr char kElevationPolicy[] =
    "Software\\Microsoft\\Internet Explorer\\Low Rights\\ElevationPolicy\\" LUMEN_BROKER_ELEVATION_POLICY_ID;

constexpr REGSAM kAllRights = 0xF003F;
constexpr size_t kKeyBytes = 1024;
constexpr DWORD kReadBackBytes = 512;

// One value. A "%" in the data stands for the server's path.
struct Row {
  const char* key;
  const char* below;
  const char* name;
  const char* data;
};
constexpr Row kRows[] = {
    {kClass, "", "", "LumenBroker"},
    {kClass, "LocalServer32", "", "%"},
    {kClass, "TypeLib", "", LUMEN_BROKER_LIBRARY_ID},
    {kClass, "", "LocalizedString", "@%,-101"},
    {kClass, "Elevation", "Enabled", "#1"},
    {kInterface, "", "", "ILumenBroker6"},
    {kInterface, "ProxyStubClsid32", "", AUTOMATION_MARSHALLER_ID},
    {kInterface, "TypeLib", "", LUMEN_BROKER_LIBRARY_ID},
    {kInterface, "TypeLib", "Version", "1.0"},
    {kTypeLibrary, "", "", ""},
    {kTypeLibrary, "1.0", "", "LumenBroker"},
    {kTypeLibrary, "1.0\\FLAGS", "", "0"},
    {kTypeLibrary, "1.0\\HELPDIR", "", "%"},
    {kTypeLibrary, "1.0\\0\\win32", "", "%"},
};

// Data of "#" and one more character is a number, that character less "0"; any other data is text, "#12" included. What
// fails is passed over in silence. After a failed write the key stays open for the life of the process: a small leak of
// long standing, kept on purpose.
void SetRegistryValue(const char* key, const char* below, const char* name, const std::string& data, HKEY root) {
  std::string path = key;
  if (below[0] != 0) path += std::string("\\") + below;
  if (path.size() >= kKeyBytes) return;  // the longest key there is room for
  RegistryKey opened = CreateKey(root, path.c_str(), kAllRights);
  if (!opened) return;
  LONG error = ERROR_SUCCESS;
  if (data.size() == 2 && data[0] == '#') {
    error = WriteNumber(opened.Get(), name, static_cast<uint32_t>(data[1] - '0'));
  } else {
    error = WriteText(opened.Get(), name, data);
  }
  if (error != ERROR_SUCCESS) (void)opened.Release();
}

std::string WithPath(std::string data, const char* serverPath) {
  const size_t at = data.find('%');
  return at == std::string::npos ? data : data.replace(at, 1, serverPath);
}

// The default value of a class's LocalServer32; nothing when it has none.
std::optional<std::string> ReadServerPath(const char* classId) {
  const std::string path = std::string("Software\\Classes\\CLSID\\") + classId + "\\LocalServer32";
  return ReadText(HKEY_LOCAL_MACHINE, path.c_str(), "");
}

// What protected mode compares with is what COM will start, so the value just written is read back.
void WriteElevationPolicy(const char* serverPath) {
  std::optional<std::string> written = ReadServerPath(LUMEN_BROKER_CLASS_ID_6);
  if (!written || written->size() >= kReadBackBytes) written = serverPath;
  const size_t slash = written->find_last_of("/\\");
  // Without a separator the whole path stands for both.
  const bool cut = slash != std::string::npos;
  SetRegistryValue(kElevationPolicy, "", "Policy", "#3", HKEY_LOCAL_MACHINE);
  SetRegistryValue(kElevationPolicy, "", "AppPath", cut ? written->substr(0, slash) : *written, HKEY_LOCAL_MACHINE);
  SetRegistryValue(kElevationPolicy, "", "AppName", cut ? written->substr(slash + 1) : *written, HKEY_LOCAL_MACHINE);
}

}  // namespace

void WriteBrokerRegistration(const char* serverPath, bool install) try {
  if (!install) {
    for (const char* key : {kClass, kTypeLibrary, kInterface, kElevationPolicy}) {
      (void)DeleteKeyTree(HKEY_LOCAL_MACHINE, WidenAscii(key).c_str());
    }
    return;
  }
  if (serverPath == nullptr) return;
  for (const Row& row : kRows) {
    SetRegistryValue(row.key, row.below, row.name, WithPath(row.data, serverPath), HKEY_LOCAL_MACHINE);
  }
  WriteElevationPolicy(serverPath);
} catch (const std::bad_alloc&) {
  // As silent as every other failure here.
}

bool FindBrokerServerPath(char* buffer, size_t size) {
  if (buffer == nullptr || size == 0) return false;
  for (const char* classId : {LUMEN_BROKER_CLASS_ID_6, LUMEN_BROKER_CLASS_ID_5, LUMEN_BROKER_CLASS_ID_4,
                              LUMEN_BROKER_CLASS_ID_3, LUMEN_BROKER_CLASS_ID_2, LUMEN_BROKER_CLASS_ID_1}) {
    const std::optional<std::string> path = ReadServerPath(classId);
    if (!path || path->size() >= size) continue;  // a path cut short would name another program
    std::memcpy(buffer, path->c_str(), path->size() + 1);
    return true;
  }
  return false;
}
