// Downloads from a real server on loopback, which misbehaves on request.
#include "delivery/ProductDownload.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "tests/delivery/AddOnMaterial.h"
#include "tests/support/ImportHook.h"
#include "tests/support/WebServer.h"

namespace {

// One server for all tests here: it keeps nothing but the list of requests.
class Downloads : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    // Before anything asks for it: a process keeps the trusted authorities that it first saw.
    AddTrustedRoot(addon::MessageText("tls-authority.der"));
    server = new WebServer(addon::Folder(L"server"));
    ASSERT_TRUE(server->IsRunning());
  }
  static void TearDownTestSuite() {
    delete server;
    RemoveTrustedRoot(addon::MessageText("tls-authority.der"));
  }

  // Opens and pumps to the end, or until a read brings nothing; the bytes received, or nothing when a step failed.
  static std::optional<uint32_t> Pump(ProductDownload& download, const std::string& path,
                                      const std::string& origin = "http://get.corva.example") {
    if (!download.Open(WidenAscii(origin + path).c_str())) return std::nullopt;
    for (uint32_t before = UINT32_MAX; download.Received() != before;) {
      before = download.Received();
      if (!download.ReadOn()) return std::nullopt;
      EXPECT_LE(download.Received() - before, 65536u);
    }
    return download.Received();
  }

  static WebServer* server;
};
WebServer* Downloads::server = nullptr;

TEST_F(Downloads, AnswersGoodAndBad) {
  constexpr std::optional<uint32_t> kRefused;
  const struct {
    const char* path;
    std::optional<uint32_t> received;
    uint32_t total;
  } rows[] = {
      {"/status/200", 5, 5},
      {"/status/399", 5, 5},
      {"/status/400", kRefused, 0},
      {"/bare/10", kRefused, 0},  // no content length
      {"/claims/0/0", 0, 0},      // an answer without content is one
      {"/claims/200000/200000", 200000, 200000},
      {"/claims/100000/40000", 40000, 100000},  // the position stops moving
      {"/claims/40000/100000", 40000, 40000},   // and never passes the length
      {"/slow/20", 20000, 20000},
      {"/hangup", kRefused, 0},
  };
  for (const auto& row : rows) {
    ProductDownload download;
    EXPECT_EQ(Pump(download, row.path), row.received) << row.path;
    EXPECT_EQ(download.Total(), row.total) << row.path;
  }
  // Whether the broken connection is an error or an end is the platform's word; no byte counts that did not come.
  ProductDownload dropped;
  EXPECT_LE(Pump(dropped, "/reset/100000/50000").value_or(0), 50000u);
}

TEST_F(Downloads, TheRequestIsWhatServersKnow) {
  ProductDownload download;
  EXPECT_TRUE(Pump(download, "/files/digest.s"));
  ASSERT_FALSE(server->Requests().empty());
  EXPECT_EQ(server->Requests().back(), "GET http://get.corva.example/files/digest.s HTTP/1.0 agent=tidewater lumen");
  const size_t before = server->Requests().size();
  for (const char* const origin : {"http://corva.example", "http://get.other.example", "http://a.b.corva.example"}) {
    EXPECT_FALSE(Pump(download, "/files/digest.s", origin)) << origin;
  }
  EXPECT_EQ(server->Requests().size(), before) << "a foreign address is not even asked";
}

TEST_F(Downloads, SecureOnesNeedACertificateThatTheSystemTrusts) {
  ProductDownload download;
  const size_t before = server->Requests().size();
  EXPECT_FALSE(Pump(download, "/files/digest.s", "https://untrusted.corva.example"));
  EXPECT_EQ(server->Requests().size(), before) << "nothing is sent to it";
  EXPECT_TRUE(Pump(download, "/files/digest.s", "https://get.corva.example"));
  EXPECT_EQ(server->Requests().back(), "GET https://get.corva.example/files/digest.s HTTP/1.0 agent=tidewater lumen");
}

// Hooks at the platform's edge, which keep the order of things.
Lines g_events;

BOOL WINAPI CloseAndTell(HINTERNET handle) {
  DWORD kind = 0;
  DWORD size = sizeof(kind);
  InternetQueryOptionA(handle, INTERNET_OPTION_HANDLE_TYPE, &kind, &size);
  g_events.push_back("close " + std::to_string(kind));
  return Own<decltype(InternetCloseHandle)>(L"wininet.dll", "InternetCloseHandle")(handle);
}
BOOL WINAPI FailToRead(HINTERNET, void*, DWORD, DWORD*) {
  return FALSE;
}
void WINAPI TellDebugger(LPCSTR text) {
  g_events.push_back(text);
}
void* RefuseLargeBlocks(size_t count, size_t size) {
  if (count * size < 100000) return Own<void*(size_t, size_t)>(L"msvcrt.dll", "calloc")(count, size);
  g_events.push_back("refused " + std::to_string(count * size));
  return nullptr;
}

const std::string kRequest = "close " + std::to_string(INTERNET_HANDLE_TYPE_HTTP_REQUEST);
const std::string kConnection = "close " + std::to_string(INTERNET_HANDLE_TYPE_CONNECT_HTTP);
const std::string kSession = "close " + std::to_string(INTERNET_HANDLE_TYPE_INTERNET);

TEST_F(Downloads, WhatIsOpenedIsClosedFromTheInsideOut) {
  const HMODULE own = GetModuleHandleW(nullptr);
  const ImportHook closing(own, "InternetCloseHandle", CloseAndTell);
  const ImportHook telling(own, "OutputDebugStringA", TellDebugger);
  const ImportHook refusing(own, "calloc", RefuseLargeBlocks);
  const struct {
    const char* path;
    Lines events;
    const char* origin = "http://get.corva.example";
  } rows[] = {
      {"/status/404", {kRequest, kConnection, kSession}},
      {"/bare/1", {kRequest, kConnection, kSession}},
      {"/x", {"HttpSendRequestA fail", kRequest, kConnection, kSession}, "https://untrusted.corva.example"},
      {"/x", {}, "http://get.other.example"},
      {"/claims/4294967295/10", {"refused 4294967295", kRequest, kConnection, kSession}},
      {"/claims/70000/70000", {kRequest, kConnection, kSession}},
  };
  for (const auto& row : rows) {
    g_events.clear();
    {
      ProductDownload download;
      (void)Pump(download, row.path, row.origin);
    }
    EXPECT_EQ(g_events, row.events) << row.path;
  }
}

TEST_F(Downloads, AFailedReadIsTold) {
  const ImportHook reading(GetModuleHandleW(nullptr), "InternetReadFile", FailToRead);
  ProductDownload download;
  EXPECT_FALSE(download.ReadOn()) << "nothing is open";
  ASSERT_TRUE(download.Open(L"http://get.corva.example/status/200"));
  EXPECT_FALSE(download.ReadOn());
  EXPECT_EQ(download.Received(), 0u);
  download.Close();
  EXPECT_EQ(download.Store(L"Demo", nullptr), StoreResult::NoData);
}

TEST_F(Downloads, WhatIsStoredIsTheWholeBufferReadOrNot) {
  const testing_files::CleanDirectory clean(addon::ProductsFolder());
  const WideString anchor = addon::Folder(L"authority\\root.der");
  const WideString executable = addon::ProductFile(L"DemoAddOn", L"DemoAddOn.exe");
  ProductDownload download;
  ASSERT_TRUE(Pump(download, "/files/DemoAddOn.package"));
  EXPECT_EQ(download.Store(L"DemoAddOn", anchor.c_str()), StoreResult::Stored);
  EXPECT_EQ(download.Total(), 0u) << "storing closes";
  EXPECT_EQ(testing_files::ReadWhole(executable), testing_files::ReadWhole(addon::Folder(L"product\\DemoAddOn.exe")));

  ASSERT_TRUE(download.Open(L"http://get.corva.example/files/DemoAddOn.package"));
  ASSERT_TRUE(download.ReadOn());
  ASSERT_LT(download.Received(), download.Total());
  EXPECT_EQ(download.Store(L"DemoAddOn", anchor.c_str()), StoreResult::NotTrusted) << "closed early";
  EXPECT_FALSE(testing_files::Exists(executable));

  ASSERT_TRUE(download.Open(L"http://get.corva.example/claims/1000/0"));
  EXPECT_EQ(download.Store(L"DIGEST#DemoAddOn", anchor.c_str()), StoreResult::Stored) << "judged when it is used";
  EXPECT_EQ(testing_files::ReadWhole(addon::ProductFile(L"DemoAddOn", L"digest.s")), std::string(1000, '\0'));
  const struct {
    const wchar_t* name;
    StoreResult result;
  } rows[] = {
      {L"DIGEST#a.b", StoreResult::NotTrusted}, {L"DIGEST#", StoreResult::NotTrusted},
      {L"digest#ab", StoreResult::NotWritten},  {L"a.b", StoreResult::NotWritten},
      {L"", StoreResult::NotWritten},
  };
  for (const auto& row : rows) {
    ASSERT_TRUE(download.Open(L"http://get.corva.example/status/200"));
    EXPECT_EQ(download.Store(row.name, anchor.c_str()), row.result) << ToUtf8(row.name);
  }
}

}  // namespace
