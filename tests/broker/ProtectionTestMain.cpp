// The main of the protection tests. The broker binds srpapi.dll when it is loaded, so the stand-ins must be there
// before the process that tests begins: the first process puts them into the prefix, runs itself again, and takes them
// away.
#include <windows.h>

#include <gtest/gtest.h>
#include <shlwapi.h>

#include "engine/Registry.h"
#include "tests/support/StartProcess.h"
#include "tests/support/TestFiles.h"

namespace {

// Where the platform looks for what the stand-in beside this program is.
constexpr const wchar_t* kPlaces[] = {L"C:\\windows\\system32\\srpapi.dll", L"C:\\windows\\system32\\efswrt.dll",
                                      L"C:\\windows\\system32\\lumenfake.dll"};
const std::string kClasses = "Software\\Microsoft\\WindowsRuntime\\ActivatableClassId\\";
constexpr const char* kClassNames[] = {"Windows.Storage.StorageFile",
                                       "Windows.Security.EnterpriseData.FileProtectionManager",
                                       "Windows.Security.EnterpriseData.ProtectionPolicyManager",
                                       "Windows.Security.EnterpriseData.ProtectionPolicyAuditInfo"};
constexpr wchar_t kInner[] = L"LUMEN_STAND_INS";

void PutInPlace() {
  const WideString fake = testing_files::Beside(L"fake_enterprise.dll");
  for (const wchar_t* const place : kPlaces) CopyFileW(fake.c_str(), place, FALSE);
  for (const char* const name : kClassNames) {
    (void)WriteText(CreateKey(HKEY_LOCAL_MACHINE, (kClasses + name).c_str(), KEY_WRITE).Get(), "DllPath",
                    "C:\\windows\\system32\\lumenfake.dll");
  }
}

void TakeAway() {
  for (const char* const name : kClassNames) RegDeleteKeyA(HKEY_LOCAL_MACHINE, (kClasses + name).c_str());
  for (const wchar_t* const place : kPlaces) DeleteFileW(place);
}

// A copy below the program files, since the windows of this process are to be a trusted program's.
constexpr wchar_t kTrustedCopy[] = L"C:\\Program Files\\LumenProtectionTests.exe";

int RunInner() {
  SetEnvironmentVariableW(kInner, L"1");
  wchar_t own[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, own, MAX_PATH);
  CopyFileW(own, kTrustedCopy, FALSE);
  const KernelHandle process = StartProcess(L"\"" + WideString(kTrustedCopy) + L"\" " + PathGetArgsW(GetCommandLineW()),
                                            GetStdHandle(STD_OUTPUT_HANDLE));
  DWORD code = 1;
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
