#include "tests/support/BrokerProcess.h"

#include <tlhelp32.h>

#include <string>

#include "tests/support/ImportHook.h"
#include "tests/support/StartProcess.h"
#include "tests/support/TestFiles.h"

namespace broker_process {

namespace {

WideString Quoted(const WideString& text) {
  return L"\"" + text + L"\"";
}

}  // namespace

WideString BuildFolder() {
  const WideString tests = testing_files::Beside(L"");
  return tests.substr(0, tests.find_last_of(L'\\', tests.size() - 2));
}

DWORD RunToEnd(const WideString& commandLine, std::string* said) {
  const WideString file = testing_files::Beside(L"said") + WidenAscii(std::to_string(GetCurrentProcessId()));
  FileHandle output;
  if (said != nullptr) {
    SECURITY_ATTRIBUTES inherit = {sizeof(inherit), nullptr, TRUE};
    output.Reset(CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS, 0, nullptr));
  }
  const KernelHandle process = StartProcess(commandLine, output.Get());
  DWORD exitCode = STILL_ACTIVE;
  if (process && WaitForSingleObject(process.Get(), kPatience) == WAIT_OBJECT_0) {
    GetExitCodeProcess(process.Get(), &exitCode);
  }
  if (said != nullptr) {
    output.Reset();
    *said = testing_files::ReadWhole(file);
    DeleteFileW(file.c_str());
  }
  return exitCode;
}

bool Register() {
  // In this order: the product names the platform's marshaller, and the proxy takes its place.
  if (RunToEnd(Quoted(BuildFolder() + L"\\bin\\LumenHost.exe") + L" -register activex") != 0) return false;
  const WideString proxy = BuildFolder() + L"\\tests\\LumenBrokerProxy.dll";
  const LibraryHandle library(LoadLibraryW(proxy.c_str()));
  auto* const enter = Own<HRESULT WINAPI()>(proxy.c_str(), "DllRegisterServer");
  return enter != nullptr && SUCCEEDED(enter());
}

HRESULT Activate(ComPtr<ILumenBroker6>& broker) {
  return CoCreateInstance(CLSID_LumenBrokerImp6, nullptr, CLSCTX_LOCAL_SERVER, IID_ILumenBroker6,
                          reinterpret_cast<void**>(broker.ReleaseAndGetAddressOf()));
}

KernelHandle FindServer() {
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

bool EndsByItself(const KernelHandle& server) {
  return WaitForSingleObject(server.Get(), kPatience) == WAIT_OBJECT_0;
}

void TellToQuit(const KernelHandle& server) {
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

void BrokerProcessTest::SetUp() {
  const KernelHandle earlier = broker_process::FindServer();
  ASSERT_TRUE(!earlier || broker_process::EndsByItself(earlier)) << "a server of an earlier test is still there";
  ASSERT_EQ(broker_process::Activate(broker), S_OK);
  server = broker_process::FindServer();
  ASSERT_TRUE(server);
}

void BrokerProcessTest::TearDown() {
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
