// The add-on methods of a broker object, with a real server behind the vendor's name. A product's whole life is played
// by tools/account-addons.
#include <windows.h>

#include <gtest/gtest.h>

#include "broker/CoLumenBrokerServer.h"
#include "tests/delivery/AddOnMaterial.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/WebServer.h"

namespace {

constexpr ULONG kUnset = 77;

class AddOnMethods : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    server = new WebServer(addon::Folder(L"server"));
    ASSERT_TRUE(server->IsRunning());
  }
  static void TearDownTestSuite() { delete server; }
  void SetUp() override { host.downloadSettings = MString(addon::Folder(L"authority\\root.der").c_str()); }

  ULONG Open(const std::string& path) {
    ULONG cookie = kUnset;
    const BString url((L"http://get.corva.example" + WidenAscii(path)).c_str());
    EXPECT_EQ(broker->BrokerLMOpenDownload(url.Get(), &cookie), S_OK) << path;
    return cookie;
  }
  void Pump(ULONG cookie) {
    for (ULONG position = 0, length = 1; position != length;) {
      const ULONG before = position;
      ASSERT_EQ(broker->BrokerLMUpdateDownload(cookie, &position, &length), S_OK);
      ASSERT_TRUE(position > before || position == length) << "the position stands still";
    }
  }
  ULONG Close(ULONG cookie, const wchar_t* as) {
    ULONG result = kUnset;
    const BString wide(as);
    EXPECT_EQ(broker->BrokerLMCloseDownload(cookie, wide.Get(), &result), S_OK);
    return result;
  }
  ULONG Store(const std::string& path, const wchar_t* as) {
    const ULONG cookie = Open(path);
    Pump(cookie);
    return Close(cookie, as);
  }

  static WebServer* server;
  ComInitializer apartment;
  RecordingHost host;
  const testing_files::CleanDirectory clean{addon::ProductsFolder()};
  const BString name{L"DemoAddOn"};
  ComPtr<ILumenBroker6> broker = Adopt<ILumenBroker6>(new CoLumenBrokerServer(&host));
};
WebServer* AddOnMethods::server = nullptr;

TEST_F(AddOnMethods, ArgumentsAndCookies) {
  ULONG a = kUnset, b = kUnset;
  const BString url(L"http://get.corva.example/status/200");
  EXPECT_EQ(broker->BrokerLMOpenDownload(nullptr, &a), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerLMOpenDownload(url.Get(), nullptr), E_INVALIDARG);
  EXPECT_EQ(a, kUnset);
  for (const wchar_t* const bad : {L"http://get.corva.example/status/400", L"http://get.other.example/"}) {
    const BString refused(bad);
    a = kUnset;
    EXPECT_EQ(broker->BrokerLMOpenDownload(refused.Get(), &a), E_FAIL) << ToUtf8(bad);
    EXPECT_EQ(a, 0u);
    EXPECT_EQ(broker->BrokerLMUpdateDownload(1, &a, &b), E_INVALIDARG) << "no cookie is left";
  }

  const ULONG cookie = Open("/status/200");
  EXPECT_EQ(cookie, 3u) << "the two before took a number each";
  EXPECT_EQ(broker->BrokerLMUpdateDownload(cookie, nullptr, &b), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerLMUpdateDownload(cookie, &a, nullptr), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerLMCloseDownload(cookie, nullptr, nullptr), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerLMUpdateDownload(cookie, &a, &b), S_OK) << "still open";
  EXPECT_EQ(a, 5u);
  EXPECT_EQ(b, 5u);
  EXPECT_EQ(Close(cookie, nullptr), 0u) << "abandoned";
  EXPECT_EQ(broker->BrokerLMUpdateDownload(cookie, &a, &b), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerLMCloseDownload(cookie, nullptr, &a), E_INVALIDARG);

  ULONG file = 0;
  testing_files::MakeDirectories(testing_files::PlayerDirectory());
  const BString path((testing_files::PlayerDirectory() + L"\\a.sol").c_str());
  ASSERT_EQ(broker->BrokerCreateFile(path.Get(), 0, 1, &file), S_OK);
  EXPECT_EQ(broker->BrokerLMUpdateDownload(file, &a, &b), E_INVALIDARG) << "a file is no download";
  EXPECT_EQ(broker->BrokerLMCloseDownload(file, nullptr, &a), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerCloseHandle(file), S_OK);

  EXPECT_EQ(broker->BrokerLMLaunch(nullptr, nullptr), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerLMIsRunning(nullptr), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerLMGetVersion(nullptr, &a, &b), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerLMGetVersion(name.Get(), nullptr, &b), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerLMGetVersion(name.Get(), &a, nullptr), E_INVALIDARG);
  const ComPtr<ILumenBroker6> hostless = Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr));
  EXPECT_EQ(hostless->BrokerLMGetVersion(name.Get(), &a, &b), E_FAIL) << "nobody names an anchor";
}

TEST_F(AddOnMethods, ResultsOfStoring) {
  EXPECT_EQ(Store("/files/DemoAddOn.package", L"Demo.AddOn"), 3u);
  EXPECT_EQ(Store("/files/DemoAddOn.package", L"DIGEST#Demo.AddOn"), 6u);
  EXPECT_EQ(Close(Open("/files/DemoAddOn.package"), L"DemoAddOn"), 6u) << "closed before it was read";
  EXPECT_FALSE(testing_files::Exists(addon::ProductFile(L"DemoAddOn", L"DemoAddOn.exe")));
}

int g_closed = 0;
BOOL WINAPI CountClosed(void* handle) {
  ++g_closed;
  static auto* const close = reinterpret_cast<BOOL(WINAPI*)(void*)>(
      reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"wininet.dll"), "InternetCloseHandle")));
  return close(handle);
}

BOOL WINAPI FailToRead(void*, void*, DWORD, DWORD*) {
  return FALSE;
}

TEST_F(AddOnMethods, AFailedReadLeavesTheDownloadOpen) {
  const ULONG cookie = Open("/claims/100000/100000");
  ULONG position = kUnset, length = kUnset;
  {
    const ImportHook hook(GetModuleHandleW(nullptr), "InternetReadFile", FailToRead);
    EXPECT_EQ(broker->BrokerLMUpdateDownload(cookie, &position, &length), E_FAIL);
    EXPECT_EQ(position, kUnset);
  }
  Pump(cookie);
  EXPECT_EQ(Close(cookie, nullptr), 0u);
}

TEST_F(AddOnMethods, AnObjectsEndEndsItsDownloads) {
  const ImportHook hook(GetModuleHandleW(nullptr), "InternetCloseHandle", CountClosed);
  g_closed = 0;
  EXPECT_EQ(Open("/claims/100000/100000"), 1u);
  EXPECT_EQ(Open("/slow/10"), 2u);
  broker.Reset();
  EXPECT_EQ(g_closed, 6);
}

}  // namespace
