#include "tests/support/BrokerProcess.h"

#include <tlhelp32.h>

#include <iterator>
#include <string>

#include "tests/support/StartProcess.h"
#include "tests/support/TestFiles.h"

namespace broker_process {

namespace {

constexpr wchar_t kServerName[] = L"LumenHost.exe";

WideString Quoted(const WideString& text) {
  return L"\"" + text + L"\"";
}

bool RegisterProxy() {
  const LibraryHandle proxy(LoadLibraryW((BuildFolder() + L"\\tests\\LumenBrokerProxy.dll").c_str()));
  if (!proxy) return false;
  using RegisterFunction = HRESULT WINAPI();
  auto* const registerServer =
      reinterpret_cast<RegisterFunction*>(reinterpret_cast<void*>(GetProcAddress(proxy.Get(), "DllRegisterServer")));
  return registerServer != nullptr && SUCCEEDED(registerServer());
}

}  // namespace

WideString BuildFolder() {
  wchar_t path[1040] = {};
  const DWORD length = GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)));
  const WideString own(path, length);
  const size_t tests = own.find_last_of(L'\\');
  return own.substr(0, own.find_last_of(L'\\', tests - 1));
}

DWORD RunToEnd(const WideString& commandLine, std::string* said) {
  wchar_t temp[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, temp);
  const WideString file = temp + WidenAscii("said" + std::to_string(GetCurrentProcessId()));
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
  return RunToEnd(Quoted(BuildFolder() + L"\\bin\\LumenHost.exe") + L" -register activex") == 0 && RegisterProxy();
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
    if (lstrcmpiW(entry.szExeFile, kServerName) != 0) continue;
    return KernelHandle(
        OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION | PROCESS_DUP_HANDLE, FALSE, entry.th32ProcessID));
  }
  return {};
}

bool EndsByItself(const KernelHandle& server) {
  return WaitForSingleObject(server.Get(), kPatience) == WAIT_OBJECT_0;
}

void TellToQuit(const KernelHandle& server, WPARAM exitCode) {
  const DWORD id = GetProcessId(server.Get());
  const KernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entry = {};
  entry.dwSize = sizeof(entry);
  // Only the thread of the message loop takes it; the platform's own threads in there read no messages.
  for (BOOL more = Thread32First(snapshot.Get(), &entry); more; more = Thread32Next(snapshot.Get(), &entry)) {
    if (entry.th32OwnerProcessID == id) PostThreadMessageW(entry.th32ThreadID, WM_QUIT, exitCode, 0);
  }
}

Client::Client(const WideString& file) {
  static int count = 0;
  const std::string name = "LumenClient" + std::to_string(GetCurrentProcessId()) + "n" + std::to_string(++count);
  const KernelHandle ready(CreateEventA(nullptr, TRUE, FALSE, (name + "ready").c_str()));
  go.Reset(CreateEventA(nullptr, TRUE, FALSE, (name + "go").c_str()));
  process = StartProcess(Quoted(BuildFolder() + L"\\tests\\BrokerClient.exe") + L" " + WidenAscii(name) + L" " +
                         Quoted(file));
  const HANDLE either[] = {ready.Get(), process.Get()};
  holding = process && WaitForMultipleObjects(2, either, FALSE, kPatience) == WAIT_OBJECT_0;
}

DWORD Client::Finish() {
  SetEvent(go.Get());
  DWORD exitCode = STILL_ACTIVE;
  if (WaitForSingleObject(process.Get(), kPatience) == WAIT_OBJECT_0) GetExitCodeProcess(process.Get(), &exitCode);
  return exitCode;
}

void Client::Kill() {
  if (!process) return;
  TerminateProcess(process.Get(), 1);
  WaitForSingleObject(process.Get(), kPatience);
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
