// What registration leaves in the registry, in which order it does so, and what it does when the registry refuses.
#include "broker/BrokerRegistration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "engine/DllHelpers.h"
#include "engine/Handles.h"
#include "engine/Registry.h"
#include "tests/support/ImportHook.h"

namespace {

const std::string kClass = "Software\\Classes\\CLSID\\{B019E3BF-E7E5-453C-A2E4-D2C18CA0866F}";
const std::string kTypeLibrary = "Software\\Classes\\TypeLib\\{FAB3E735-69C7-453B-A446-B6823C6DF1C9}";
const std::string kInterface = "Software\\Classes\\Interface\\{299817DA-1FAC-4CE2-8F48-A108237013BD}";
const std::string kPolicy =
    "Software\\Microsoft\\Internet Explorer\\Low Rights\\ElevationPolicy\\{FAF199D2-BFA7-4394-A4DE-044A08E59B32}";

// What reached the registry since the last Clear, and which write is to fail (0: none).
struct Recorder {
  std::vector<std::string> writes;  // key | name | data
  std::map<HKEY, std::string> open;
  size_t failingWrite = 0;

  static Recorder& Get() {
    static Recorder recorder;
    return recorder;
  }
};

// The function that a recording one stands in for, by way of the system's own module.
template <class Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"advapi32.dll"), name)));
}

LONG WINAPI RecordCreate(HKEY root, LPCSTR path, DWORD reserved, LPSTR type, DWORD options, REGSAM rights,
                         LPSECURITY_ATTRIBUTES security, PHKEY key, LPDWORD disposition) {
  EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
  EXPECT_EQ(rights, 0xF003Fu);
  static auto* const create = Real<decltype(RecordCreate)>("RegCreateKeyExA");
  const LONG error = create(root, path, reserved, type, options, rights, security, key, disposition);
  if (error == ERROR_SUCCESS) Recorder::Get().open[*key] = path;
  return error;
}

LONG WINAPI RecordSet(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD bytes) {
  Recorder& recorder = Recorder::Get();
  std::string text = recorder.open[key] + " | " + name + " | ";
  if (type == REG_DWORD) {
    EXPECT_EQ(bytes, 4u);
    text += "DWORD " + std::to_string(*reinterpret_cast<const DWORD*>(data));
  } else {
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(data[bytes - 1], 0) << "the terminator is stored";
    text += std::string(reinterpret_cast<const char*>(data), bytes - 1);
  }
  recorder.writes.push_back(text);
  if (recorder.writes.size() == recorder.failingWrite) return ERROR_ACCESS_DENIED;
  static auto* const set = Real<decltype(RecordSet)>("RegSetValueExA");
  return set(key, name, reserved, type, data, bytes);
}

LONG WINAPI RecordClose(HKEY key) {
  Recorder::Get().open.erase(key);
  static auto* const close = Real<decltype(RecordClose)>("RegCloseKey");
  return close(key);
}

bool KeyExists(const std::string& path) {
  return OpenKey(HKEY_LOCAL_MACHINE, path.c_str(), KEY_READ).IsValid();
}

std::string Text(const std::string& path, const char* name) {
  return ReadText(HKEY_LOCAL_MACHINE, path.c_str(), name).value_or("(none)");
}

class BrokerRegistration : public testing::Test {
 protected:
  void SetUp() override {
    WriteBrokerRegistration(nullptr, false);
    Recorder::Get() = {};
  }
  void TearDown() override { WriteBrokerRegistration(nullptr, false); }

  // Registers with the registry's functions recorded.
  static void Record(const char* path, size_t failingWrite = 0) {
    const HMODULE self = GetModuleHandleW(nullptr);
    const ImportHook create(self, "RegCreateKeyExA", RecordCreate);
    const ImportHook set(self, "RegSetValueExA", RecordSet);
    const ImportHook close(self, "RegCloseKey", RecordClose);
    Recorder::Get() = {};
    Recorder::Get().failingWrite = failingWrite;
    WriteBrokerRegistration(path, true);
  }
};

TEST_F(BrokerRegistration, WritesSeventeenValuesInOrder) {
  Record("C:\\Program Files\\Corva/Lumen\\Host.exe");
  const std::string path = "C:\\Program Files\\Corva/Lumen\\Host.exe";
  const std::vector<std::string> expected = {
      kClass + " |  | LumenBroker",
      kClass + "\\LocalServer32 |  | " + path,
      kClass + "\\TypeLib |  | {FAB3E735-69C7-453B-A446-B6823C6DF1C9}",
      kClass + " | LocalizedString | @" + path + ",-101",
      kClass + "\\Elevation | Enabled | DWORD 1",
      kInterface + " |  | ILumenBroker6",
      kInterface + "\\ProxyStubClsid32 |  | {00020424-0000-0000-C000-000000000046}",
      kInterface + "\\TypeLib |  | {FAB3E735-69C7-453B-A446-B6823C6DF1C9}",
      kInterface + "\\TypeLib | Version | 1.0",
      kTypeLibrary + " |  | ",
      kTypeLibrary + "\\1.0 |  | LumenBroker",
      kTypeLibrary + "\\1.0\\FLAGS |  | 0",
      kTypeLibrary + "\\1.0\\HELPDIR |  | " + path,
      kTypeLibrary + "\\1.0\\0\\win32 |  | " + path,
      kPolicy + " | Policy | DWORD 3",
      kPolicy + " | AppPath | C:\\Program Files\\Corva/Lumen",
      kPolicy + " | AppName | Host.exe",
  };
  EXPECT_EQ(Recorder::Get().writes, expected);
  EXPECT_TRUE(Recorder::Get().open.empty()) << "every key is closed";
}

TEST_F(BrokerRegistration, ElevationPolicyIsCutAtTheLastSeparatorOfEitherKind) {
  struct {
    const char* path;
    const char* directory;
    const char* file;
  } const rows[] = {{"C:\\a\\b.exe", "C:\\a", "b.exe"}, {"C:/a/b.exe", "C:/a", "b.exe"},
                    {"C:\\a/b.exe", "C:\\a", "b.exe"},  {"\\b.exe", "", "b.exe"},
                    {"C:\\a\\", "C:\\a", ""},           {"b.exe", "b.exe", "b.exe"}};
  for (const auto& row : rows) {
    WriteBrokerRegistration(row.path, true);
    EXPECT_EQ(Text(kPolicy, "AppPath"), row.directory) << row.path;
    EXPECT_EQ(Text(kPolicy, "AppName"), row.file) << row.path;
  }
}

TEST_F(BrokerRegistration, ReadBackHoldsFiveHundredAndTwelveBytes) {
  struct {
    size_t length;
    const char* file;
  } const rows[] = {{511, "old"}, {512, "host.exe"}, {1500, "host.exe"}};
  for (const auto& row : rows) {
    WriteBrokerRegistration(("C:\\" + std::string(row.length - 7, 'd') + "\\old").c_str(), true);
    Record("C:\\new\\host.exe", 2);
    EXPECT_EQ(Text(kClass + "\\LocalServer32", "").size(), row.length);
    EXPECT_EQ(Text(kPolicy, "AppName"), row.file) << row.length;
  }
}

TEST_F(BrokerRegistration, OnlyHashAndOneCharacterMakeANumber) {
  WriteBrokerRegistration("#5", true);
  EXPECT_EQ(ReadNumber(HKEY_LOCAL_MACHINE, (kClass + "\\LocalServer32").c_str(), ""), 5u);
  for (const char* const text : {"#12", "#", "5#"}) {
    WriteBrokerRegistration(text, true);
    EXPECT_EQ(Text(kClass + "\\LocalServer32", ""), text);
  }
}

TEST_F(BrokerRegistration, FailedWriteIsSilentLeavesItsKeyOpenAndStopsNothing) {
  Record("C:\\a\\b.exe");
  const size_t count = Recorder::Get().writes.size();
  for (size_t failing = 1; failing <= count; ++failing) {
    WriteBrokerRegistration(nullptr, false);
    Record("C:\\a\\b.exe", failing);
    EXPECT_EQ(Recorder::Get().writes.size(), count) << failing;
    ASSERT_EQ(Recorder::Get().open.size(), 1u) << failing;
    RegistryKey(Recorder::Get().open.begin()->first).Reset();
  }
}

TEST_F(BrokerRegistration, RemovalTakesFourKeysWholeAndNoNeighbour) {
  const std::string neighbour = "Software\\Classes\\CLSID\\{A483C63A-CDBC-426E-BF93-872502E8144E}";
  WriteBrokerRegistration("C:\\a\\b.exe", true);
  (void)CreateKey(HKEY_LOCAL_MACHINE, (kClass + "\\Foreign\\Deep").c_str(), KEY_WRITE);
  (void)CreateKey(HKEY_LOCAL_MACHINE, neighbour.c_str(), KEY_WRITE);
  for (const std::string& key : {kClass, kTypeLibrary, kInterface, kPolicy}) EXPECT_TRUE(KeyExists(key)) << key;
  WriteBrokerRegistration("not looked at", false);
  for (const std::string& key : {kClass, kTypeLibrary, kInterface, kPolicy}) EXPECT_FALSE(KeyExists(key)) << key;
  EXPECT_TRUE(KeyExists(neighbour));
  EXPECT_EQ(RegDeleteKeyA(HKEY_LOCAL_MACHINE, neighbour.c_str()), ERROR_SUCCESS);
}

const char* const kClassIds[] = {"{B019E3BF-E7E5-453C-A2E4-D2C18CA0866F}", "{73C9DFA0-750D-11E1-B0C4-0800200C9A66}",
                                 "{A483C63A-CDBC-426E-BF93-872502E8144E}", "{19114156-8E9A-4D4E-9EE9-17A0E48D3BBB}",
                                 "{0BE09CC1-42E0-11DD-AE16-0800200C9A66}", "{D4304BCF-B8E9-4B35-BEA0-DC5B522670C2}"};

std::string ServerKey(const char* classId) {
  return std::string("Software\\Classes\\CLSID\\") + classId + "\\LocalServer32";
}

void RemoveAllGenerations() {
  for (const char* const classId : kClassIds) {
    (void)DeleteKeyTree(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\CLSID\\" + WidenAscii(classId)).c_str());
  }
}

class BrokerServerPath : public testing::Test {
 protected:
  void SetUp() override { RemoveAllGenerations(); }
  void TearDown() override { RemoveAllGenerations(); }

  static void Install(const char* classId, const std::string& path) {
    const RegistryKey key = CreateKey(HKEY_LOCAL_MACHINE, ServerKey(classId).c_str(), KEY_WRITE);
    ASSERT_EQ(WriteText(key.Get(), "", path), ERROR_SUCCESS);
  }
  static std::string Find(size_t size = 260) {
    std::string buffer(size + 1, '?');
    if (!FindBrokerServerPath(buffer.data(), size)) return "(none)";
    EXPECT_EQ(buffer[size], '?') << "written past the buffer";
    return buffer.substr(0, buffer.find('\0'));
  }
};

TEST_F(BrokerServerPath, NewestGenerationWins) {
  EXPECT_EQ(Find(), "(none)");
  for (size_t i = std::size(kClassIds); i-- > 0;) {
    Install(kClassIds[i], kClassIds[i]);
    EXPECT_EQ(Find(), kClassIds[i]);
  }
}

TEST_F(BrokerServerPath, PathIsGivenWholeOrNotAtAll) {
  Install(kClassIds[0], "C:\\nine.x");
  EXPECT_EQ(Find(10), "C:\\nine.x");
  EXPECT_EQ(Find(9), "(none)");
  Install(kClassIds[5], "C:\\a");
  EXPECT_EQ(Find(9), "C:\\a");
}

}  // namespace
