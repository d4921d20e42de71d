// The order in which registration writes, what it does when the registry refuses, and how a server's path is found.
// What registration leaves in the registry is in the golden texts of the installation's tests.
#include "broker/BrokerRegistration.h"

#include <gtest/gtest.h>

#include <string>

#include "engine/DllHelpers.h"
#include "engine/Registry.h"
#include "tests/support/ImportHook.h"
#include "tests/support/PlatformCounts.h"

namespace {

std::string g_writes;  // NAME=TEXT or NAME#NUMBER, each with a bar behind it
size_t g_writeCount = 0, g_failingWrite = 0;

LONG WINAPI RecordSet(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD bytes) {
  const std::string text =
      type == REG_SZ ? "=" + std::string(reinterpret_cast<const char*>(data), bytes - 1) : "#" + std::to_string(*data);
  g_writes += name + text + "|";
  if (++g_writeCount == g_failingWrite) return ERROR_ACCESS_DENIED;
  return Own<decltype(RecordSet)>(L"advapi32.dll", "RegSetValueExA")(key, name, reserved, type, data, bytes);
}

// Registers with the writes recorded; the one of the number given, from 1, fails.
std::string Record(const char* path, size_t failingWrite = 0) {
  const ImportHook set(GetModuleHandleW(nullptr), "RegSetValueExA", RecordSet);
  g_writes.clear();
  g_writeCount = 0;
  g_failingWrite = failingWrite;
  WriteBrokerRegistration(path, true);
  return g_writes;
}

class BrokerRegistration : public testing::Test {
 protected:
  BrokerRegistration() { WriteBrokerRegistration(nullptr, false); }
  ~BrokerRegistration() override { WriteBrokerRegistration(nullptr, false); }
};

TEST_F(BrokerRegistration, WritesSeventeenValuesInOrderAndAFailureStopsNone) {
  const std::string path = "C:\\Program Files\\Corva/Lumen\\Host.exe";
  const std::string expected =
      "=LumenBroker|=" + path + "|={FAB3E735-69C7-453B-A446-B6823C6DF1C9}|LocalizedString=@" + path +
      ",-101|Enabled#1|=ILumenBroker6|={00020424-0000-0000-C000-000000000046}|={FAB3E735-69C7-453B-A446-B6823C6DF1C9}|"
      "Version=1.0|=|=LumenBroker|=0|=" +
      path + "|=" + path + "|Policy#3|AppPath=C:\\Program Files\\Corva/Lumen|AppName=Host.exe|";
  EXPECT_EQ(Record(path.c_str()), expected);
  EXPECT_EQ(g_writeCount, 17u);
  for (size_t failing = 1; failing <= 17; ++failing) {
    const DWORD before = counts::KernelHandles();
    Record(path.c_str(), failing);
    EXPECT_EQ(g_writeCount, 17u) << failing;
    EXPECT_EQ(counts::KernelHandles(), before + 1) << "its key is left open, as is documented";
  }
}

TEST_F(BrokerRegistration, TheNewestServerIsFoundWholeOrNotAtAll) {
  const char* const generations[] = {
      "{B019E3BF-E7E5-453C-A2E4-D2C18CA0866F}", "{73C9DFA0-750D-11E1-B0C4-0800200C9A66}",
      "{A483C63A-CDBC-426E-BF93-872502E8144E}", "{19114156-8E9A-4D4E-9EE9-17A0E48D3BBB}",
      "{0BE09CC1-42E0-11DD-AE16-0800200C9A66}", "{D4304BCF-B8E9-4B35-BEA0-DC5B522670C2}"};
  char found[40] = {};
  EXPECT_FALSE(FindBrokerServerPath(found, sizeof(found)));
  for (size_t i = std::size(generations); i-- > 0;) {
    const std::string key = std::string("Software\\Classes\\CLSID\\") + generations[i] + "\\LocalServer32";
    ASSERT_EQ(WriteText(CreateKey(HKEY_LOCAL_MACHINE, key.c_str(), KEY_WRITE).Get(), "", generations[i]), 0);
    EXPECT_TRUE(FindBrokerServerPath(found, 39));
    EXPECT_STREQ(found, generations[i]);
  }
  EXPECT_FALSE(FindBrokerServerPath(found, 38)) << "no room for the terminator";
  for (const char* const id : generations) {
    (void)DeleteKeyTree(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\CLSID\\" + WidenAscii(id)).c_str());
  }
}

}  // namespace
