// The add-on methods of a broker object. Runs under tests/support/web_server.py, which stands behind the vendor's name
// and misbehaves on request. A product's whole life is played by tools/account-addons.
#include <windows.h>

#include <gtest/gtest.h>
#include <wininet.h>

#include "broker/CoLumenBrokerServer.h"
#include "tests/delivery/AddOnMaterial.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RecordingHost.h"

namespace {

constexpr ULONG kUnset = 77;
const std::string kVendor = "http://get.corva.example";

// Hooks at the platform's edge, which keep the order of things.
std::string g_events;
const std::string kClosed = "request connection session ";

BOOL WINAPI CloseAndTell(HINTERNET handle) {
  DWORD kind = 0;
  DWORD size = sizeof(kind);
  InternetQueryOptionA(handle, INTERNET_OPTION_HANDLE_TYPE, &kind, &size);
  g_events += kind == INTERNET_HANDLE_TYPE_HTTP_REQUEST   ? "request "
              : kind == INTERNET_HANDLE_TYPE_CONNECT_HTTP ? "connection "
                                                          : "session ";
  return Own<decltype(InternetCloseHandle)>(L"wininet.dll", "InternetCloseHandle")(handle);
}
void WINAPI TellDebugger(LPCSTR text) {
  g_events += text;
}
void* RefuseLargeBlocks(size_t count, size_t size) {
  if (count * size < UINT32_MAX) return Own<void*(size_t, size_t)>(L"msvcrt.dll", "calloc")(count, size);
  g_events += "no memory ";
  return nullptr;
}

class AddOnMethods : public testing::Test {
 protected:
  void SetUp() override { host.downloadSettings = MString(addon::Folder(L"authority\\root.der").c_str()); }

  // The cookie, or 0.
  ULONG Open(const std::string& url) {
    ULONG cookie = kUnset;
    const HRESULT opened = broker->BrokerLMOpenDownload(BString(WidenAscii(url).c_str()).Get(), &cookie);
    EXPECT_EQ(opened, cookie == 0 ? E_FAIL : S_OK) << url;
    return cookie;
  }
  // Reads on until nothing comes; what came, and what was to come.
  std::pair<ULONG, ULONG> Pump(ULONG cookie) {
    ULONG position = 0, total = 0, before = 0;
    do {
      before = position;
      EXPECT_EQ(broker->BrokerLMUpdateDownload(cookie, &position, &total), S_OK);
      EXPECT_LE(position - before, 65536u);
    } while (position != before);
    return {position, total};
  }
  ULONG Close(ULONG cookie, const wchar_t* as) {
    ULONG result = kUnset;
    EXPECT_EQ(broker->BrokerLMCloseDownload(cookie, BString(as).Get(), &result), S_OK);
    EXPECT_EQ(broker->BrokerLMCloseDownload(cookie, nullptr, &result), E_INVALIDARG) << "the cookie is gone";
    return result;
  }

  ComInitializer apartment;
  RecordingHost host;
  const testing_files::CleanDirectory clean{addon::ProductsFolder()};
  ComPtr<ILumenBroker6> broker = Adopt<ILumenBroker6>(new CoLumenBrokerServer(&host));
  const ImportHook closing{GetModuleHandleW(nullptr), "InternetCloseHandle", CloseAndTell};
};

TEST_F(AddOnMethods, AnswersGoodAndBadAndWhatIsClosedAfterThem) {
  const ImportHook telling(GetModuleHandleW(nullptr), "OutputDebugStringA", TellDebugger);
  const ImportHook refusing(GetModuleHandleW(nullptr), "calloc", RefuseLargeBlocks);
  const struct {
    std::string url;
    bool good;
    std::pair<ULONG, ULONG> received = {};
    std::string events = kClosed;
  } rows[] = {
      {kVendor + "/status/399", true, {5, 5}},
      {kVendor + "/status/400", false},
      {kVendor + "/bare/10", false},            // no content length
      {kVendor + "/claims/0/0", true, {0, 0}},  // an answer without content is one
      {kVendor + "/claims/200000/200000", true, {200000, 200000}},
      {kVendor + "/claims/100000/40000", true, {40000, 100000}},  // the position stops moving
      {kVendor + "/claims/40000/100000", true, {40000, 40000}},   // and never passes the length
      {kVendor + "/slow/20", true, {20000, 20000}},
      {kVendor + "/claims/4294967295/10", false, {}, "no memory " + kClosed},
      {"https://untrusted.corva.example/", false, {}, "HttpSendRequestA fail" + kClosed},
      {"http://get.other.example/", false, {}, ""},                  // not even asked
      {kVendor + "/status/200\r\nX-More: 1\r\nX: ", false, {}, ""},  // a header of the client's own
  };
  for (const auto& row : rows) {
    g_events.clear();
    const ULONG cookie = Open(row.url);
    EXPECT_EQ(cookie != 0, row.good) << row.url;
    if (cookie != 0) {
      EXPECT_EQ(Pump(cookie), row.received) << row.url;
      EXPECT_EQ(Close(cookie, nullptr), 0u);
    }
    EXPECT_EQ(g_events, row.events) << row.url;
  }
}

TEST_F(AddOnMethods, WhatIsStoredIsTheWholeBufferReadOrNot) {
  const struct {
    const wchar_t* name;
    ULONG result;
    bool read = true;
  } rows[] = {{L"Demo.AddOn", 3}, {L"DIGEST#Demo.AddOn", 6}, {L"DemoAddOn", 0}, {L"DemoAddOn", 6, false}};
  for (const auto& row : rows) {
    const ULONG cookie = Open(kVendor + "/files/DemoAddOn.package");
    if (row.read) (void)Pump(cookie);
    EXPECT_EQ(Close(cookie, row.name), row.result) << ToUtf8(row.name);
  }
}

}  // namespace
