// The broker as a process of its own, as clients meet it: registered by the built host, started by COM, watched by its
// process handle. Tests that use this hold the CTest resource lock `broker`, since a prefix has one registration.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <tlhelp32.h>

#include <memory>

#include "LumenBroker.h"
#include "engine/ComSupport.h"
#include "engine/Handles.h"
#include "engine/WideText.h"
#include "tests/support/ImportHook.h"
#include "tests/support/StartProcess.h"
#include "tests/support/TestFiles.h"

namespace broker_process {

constexpr DWORD kPatience = 30000;  // milliseconds; far more than anything here needs

// The folder of the build, without a trailing separator: bin, tests and results lie in it.
[[nodiscard]] inline WideString BuildFolder() {
  const WideString tests = testing_files::Beside(L"");
  return tests.substr(0, tests.find_last_of(L'\\', tests.size() - 2));
}
// Runs a command line to its end; its exit code, or STILL_ACTIVE when it could not be started or did not end.
[[nodiscard]] inline DWORD RunToEnd(const WideString& commandLine) {
  const KernelHandle process = StartProcess(commandLine);
  DWORD exitCode = STILL_ACTIVE;
  if (process && WaitForSingleObject(process.Get(), kPatience) == WAIT_OBJECT_0) {
    GetExitCodeProcess(process.Get(), &exitCode);
  }
  return exitCode;
}
// Registers bin\LumenHost.exe as an installer does, and the proxy that Wine needs. Once a process is enough.
[[nodiscard]] inline bool Register() {
  // In this order: the product names the platform's marshaller, and the proxy takes its place.
  if (RunToEnd(L"\"" + BuildFolder() + L"\\bin\\LumenHost.exe\" -register activex") != 0) return false;
  const WideString proxy = BuildFolder() + L"\\tests\\LumenBrokerProxy.dll";
  const LibraryHandle library(LoadLibraryW(proxy.c_str()));
  auto* const enter = Own<HRESULT WINAPI()>(proxy.c_str(), "DllRegisterServer");
  return enter != nullptr && SUCCEEDED(enter());
}
// What a client calls. E_FAIL and the like come back as COM gave them, with `broker` null.
[[nodiscard]] inline HRESULT Activate(ComPtr<ILumenBroker6>& broker) {
  return CoCreateInstance(CLSID_LumenBrokerImp6, nullptr, CLSCTX_LOCAL_SERVER, IID_ILumenBroker6,
                          reinterpret_cast<void**>(broker.ReleaseAndGetAddressOf()));
}
// The running server, with rights to wait for it and to ask about it; invalid when none runs.
[[nodiscard]] inline KernelHandle FindServer() {
  const KernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32W entry = {};
  entry.dwSize = sizeof(entry);
  for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more; more = Process32NextW(snapshot.Get(), &entry)) {
    if (lstrcmpiW(entry.szExeFile, L"LumenHost.exe") != 0) continue;
    return KernelHandle(
        OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION | PROCESS_DUP_HANDLE, FALSE, entry.th32ProcessID));
  }
  return {};
}
// Waits for the server's own end. False when it is still there after kPatience.
[[nodiscard]] inline bool EndsByItself(const KernelHandle& server) {
  return WaitForSingleObject(server.Get(), kPatience) == WAIT_OBJECT_0;
}

// Ends a server that something still holds, by the message that its last release would post. Never terminate it:
// Wine's activation service goes on handing out a class object that was not withdrawn.
inline void TellToQuit(const KernelHandle& server) {
  const DWORD id = GetProcessId(server.Get());
  const KernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entry = {};
  entry.dwSize = sizeof(entry);
  // Only the thread of the message loop takes it; the platform's own threads in there read no messages.
  for (BOOL more = Thread32First(snapshot.Get(), &entry); more; more = Thread32Next(snapshot.Get(), &entry)) {
    if (entry.th32OwnerProcessID == id) PostThreadMessageW(entry.th32ThreadID, WM_QUIT, 0, 0);
  }
}

}  // namespace broker_process

// A test with one client and its server. At the test's end the client's reference goes, and the server must end by
// itself with exit code 0.
class BrokerProcessTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_TRUE(broker_process::Register()); }
  void SetUp() override {
    const KernelHandle earlier = broker_process::FindServer();
    ASSERT_TRUE(!earlier || broker_process::EndsByItself(earlier)) << "a server of an earlier test is still there";
    ASSERT_EQ(broker_process::Activate(broker), S_OK);
    server = broker_process::FindServer();
    ASSERT_TRUE(server);
  }
  void TearDown() override {
    broker.Reset();
    if (!server) return;
    const bool ended = broker_process::EndsByItself(server);
    EXPECT_TRUE(ended) << "the last release did not end the server";
    if (!ended) {
      broker_process::TellToQuit(server);  // so that one failure does not fail the tests behind it
      EXPECT_TRUE(broker_process::EndsByItself(server));
    }
    DWORD exitCode = STILL_ACTIVE;
    GetExitCodeProcess(server.Get(), &exitCode);
    EXPECT_EQ(exitCode, 0u);
  }

  ComInitializer apartment;
  ComPtr<ILumenBroker6> broker;
  KernelHandle server;
};

// The same with one apartment for the whole suite: the shell's operations and COM's own end do not go together under
// Wine.
class BrokerSuiteTest : public BrokerProcessTest {
 protected:
  static void SetUpTestSuite() {
    BrokerProcessTest::SetUpTestSuite();
    suiteApartment = std::make_unique<ComInitializer>();
  }
  static void TearDownTestSuite() { suiteApartment.reset(); }

  inline static std::unique_ptr<ComInitializer> suiteApartment;
};
