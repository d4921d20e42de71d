// The main of the protection tests. The broker binds srpapi.dll when it is loaded, so the stand-ins must be there
// before the process that tests begins: the first process puts them into the prefix, runs itself again, and takes them
// away.
#include <windows.h>

#include <gtest/gtest.h>

#include <iterator>

#include "engine/Handles.h"
#include "engine/WideText.h"

namespace {

struct Place {
  const wchar_t* from;
  const wchar_t* to;
};
constexpr Place kPlaces[] = {{L"fake_srpapi.dll", L"C:\\windows\\system32\\srpapi.dll"},
                             {L"fake_efswrt.dll", L"C:\\windows\\system32\\efswrt.dll"},
                             {L"fake_enterprisedatafake.dll", L"C:\\windows\\system32\\lumenfake.dll"}};
constexpr wchar_t kClasses[] = L"Software\\Microsoft\\WindowsRuntime\\ActivatableClassId\\";
constexpr const wchar_t* kClassNames[] = {L"Windows.Storage.StorageFile",
                                          L"Windows.Security.EnterpriseData.FileProtectionManager",
                                          L"Windows.Security.EnterpriseData.ProtectionPolicyManager",
                                          L"Windows.Security.EnterpriseData.ProtectionPolicyAuditInfo"};
constexpr wchar_t kInner[] = L"LUMEN_STAND_INS";

WideString OwnFolder() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const WideString own(path);
  return own.substr(0, own.rfind(L'\\') + 1);
}

void PutInPlace() {
  for (const Place& place : kPlaces) CopyFileW((OwnFolder() + place.from).c_str(), place.to, FALSE);
  for (const wchar_t* const name : kClassNames) {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, (WideString(kClasses) + name).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                    nullptr);
    const RegistryKey owned(key);
    const WideView path = kPlaces[2].to;
    RegSetValueExW(key, L"DllPath", 0, REG_SZ, reinterpret_cast<const BYTE*>(path.data()),
                   static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t)));
  }
}

void TakeAway() {
  for (const wchar_t* const name : kClassNames)
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, (WideString(kClasses) + name).c_str());
  for (const Place& place : kPlaces) DeleteFileW(place.to);
}

// A copy below the program files, since the windows of this process are to be a trusted program's.
constexpr wchar_t kTrustedCopy[] = L"C:\\Program Files\\LumenProtectionTests.exe";

int RunInner() {
  SetEnvironmentVariableW(kInner, L"1");
  wchar_t own[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, own, MAX_PATH);
  CopyFileW(own, kTrustedCopy, FALSE);
  WideString command(GetCommandLineW());
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION child = {};
  DWORD code = 1;
  if (!CreateProcessW(kTrustedCopy, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &child))
    return 1;
  const KernelHandle process(child.hProcess);
  const KernelHandle thread(child.hThread);
  WaitForSingleObject(process.Get(), INFINITE);
  GetExitCodeProcess(process.Get(), &code);
  DeleteFileW(kTrustedCopy);
  return static_cast<int>(code);
}

}  // namespace

int main(int argc, char** argv) {
  if (GetEnvironmentVariableW(kInner, nullptr, 0) == 0) {
    PutInPlace();
    const int code = RunInner();
    TakeAway();
    return code;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
