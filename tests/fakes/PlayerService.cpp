// Stands in for the player's update and feedback services, whichever its file is named after ("...Feedback..." or not).
//   without arguments  a service, which stops at once when told to
//   late, never        a service that only says that it will stop, or does not even that; its event ends it
//   -install, -setSilentAutoUpdate, -setNotifyAutoUpdate
//                      registers itself with the service manager and starts; as "late" or "never" with that ahead
//   -uninstall         takes itself off the service manager
// With a file <its path>.codes it does nothing, and gives the exit code that the file has for the switch ("-switch 7",
// one a line), else 0.
#include "tests/fakes/PlayerService.h"

#include <windows.h>

#include <fstream>
#include <string>
#include <utility>

#include "engine/Handles.h"
#include "removal/ServiceRunner.h"

namespace {

SERVICE_STATUS_HANDLE g_handle = nullptr;
KernelHandle g_stop;
bool g_feedback = false;
std::string g_word;

const wchar_t* Name() {
  return g_feedback ? kFeedbackServiceName : kUpdateServiceName;
}

void Tell(DWORD state) {
  SERVICE_STATUS status = {};
  status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
  status.dwCurrentState = state;
  status.dwControlsAccepted = SERVICE_ACCEPT_STOP;
  SetServiceStatus(g_handle, &status);
}

DWORD WINAPI Handle(DWORD control, DWORD /*type*/, void* /*data*/, void* /*context*/) {
  if (control != SERVICE_CONTROL_STOP || g_word == "never") return NO_ERROR;
  Tell(g_word == "late" ? SERVICE_STOP_PENDING : SERVICE_STOPPED);
  if (g_word != "late") SetEvent(g_stop.Get());
  return NO_ERROR;
}

void WINAPI Serve(DWORD /*count*/, wchar_t** /*arguments*/) {
  g_handle = RegisterServiceCtrlHandlerExW(Name(), &Handle, nullptr);
  Tell(SERVICE_RUNNING);
  WaitForSingleObject(g_stop.Get(), INFINITE);
  Tell(SERVICE_STOPPED);
}

bool Dispatch() {
  g_stop.Reset(CreateEventW(nullptr, TRUE, FALSE, (kPlayerServiceEnd + WideString(Name())).c_str()));
  wchar_t name[] = L"";
  const SERVICE_TABLE_ENTRYW table[] = {{name, &Serve}, {nullptr, nullptr}};
  return StartServiceCtrlDispatcherW(table);
}

bool Install(const WideString& path, const std::string& mode) {
  const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
  const WideString command = L"\"" + path + L"\" " + WidenAscii(mode);
  ServiceHandle service(
      CreateServiceW(manager.Get(), Name(), g_feedback ? kFeedbackServiceDisplayName : kUpdateServiceDisplayName,
                     SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                     command.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
  if (!service) service.Reset(OpenServiceW(manager.Get(), Name(), SERVICE_ALL_ACCESS));
  return service && (StartServiceW(service.Get(), 0, nullptr) || GetLastError() == ERROR_SERVICE_ALREADY_RUNNING);
}

// Ends when the service's process has, since whoever asked deletes the file next.
void Uninstall() {
  const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
  const ServiceHandle service(OpenServiceW(manager.Get(), Name(), SERVICE_ALL_ACCESS));
  if (!service) return;
  SERVICE_STATUS_PROCESS running = {};
  DWORD needed = 0;
  QueryServiceStatusEx(service.Get(), SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&running), sizeof(running),
                       &needed);
  const KernelHandle process(OpenProcess(SYNCHRONIZE, FALSE, running.dwProcessId));
  SERVICE_STATUS status = {};
  const bool stopped = ControlService(service.Get(), SERVICE_CONTROL_STOP, &status);
  DeleteService(service.Get());
  if (stopped && process) WaitForSingleObject(process.Get(), 20000);
}

int Scripted(std::ifstream codes) {
  std::string known;
  for (int code = 0; codes >> known >> code;) {
    if (known == g_word) return code;
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  wchar_t own[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, own, MAX_PATH);
  const std::string path = NarrowToCodePage(own);
  g_feedback = path.find("Feedback") != std::string::npos;
  if (count > 1) g_word = arguments[count - 1];
  if (!g_word.starts_with('-')) return Dispatch() ? 0 : 1;
  if (std::ifstream codes(path + ".codes"); codes) return Scripted(std::move(codes));
  const bool installs = g_word == "-install" || g_word == "-setSilentAutoUpdate" || g_word == "-setNotifyAutoUpdate";
  // The word ahead may be a part of the program's own path, which comes unquoted.
  const std::string ahead = count > 2 ? arguments[count - 2] : "";
  if (installs && !Install(own, ahead == "late" || ahead == "never" ? ahead : "")) return 1;
  if (g_word == "-uninstall") Uninstall();
  return 0;
}
