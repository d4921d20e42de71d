// A real service for tests, which stops as its one argument says:
//   at-once   within the control handler
//   released  goes to "stop pending" and stops when the test sets the event
//   never     takes the control and does nothing about it
//   refuses   accepts no stop control
// Setting the event ends each of them.
#include <windows.h>

#include <string_view>

#include "tests/fakes/StoppableService.h"

namespace {

SERVICE_STATUS_HANDLE g_handle = nullptr;
HANDLE g_release = nullptr;
std::wstring_view g_mode;

void Tell(DWORD state) {
  SERVICE_STATUS status = {};
  status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
  status.dwCurrentState = state;
  status.dwControlsAccepted = g_mode == L"refuses" ? 0 : SERVICE_ACCEPT_STOP;
  SetServiceStatus(g_handle, &status);
}

DWORD WINAPI Handle(DWORD control, DWORD /*type*/, void* /*data*/, void* /*context*/) {
  if (control != SERVICE_CONTROL_STOP || g_mode == L"never") return NO_ERROR;
  if (g_mode == L"released") {
    Tell(SERVICE_STOP_PENDING);
  } else {
    Tell(SERVICE_STOPPED);
    SetEvent(g_release);
  }
  return NO_ERROR;
}

void WINAPI Serve(DWORD /*count*/, wchar_t** /*arguments*/) {
  g_handle = RegisterServiceCtrlHandlerExW(kStoppableService, &Handle, nullptr);
  Tell(SERVICE_RUNNING);
  WaitForSingleObject(g_release, INFINITE);
  Tell(SERVICE_STOPPED);
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  g_mode = count > 1 ? arguments[1] : L"";
  g_release = CreateEventW(nullptr, TRUE, FALSE, kStoppableServiceRelease);
  wchar_t name[] = L"LumenStoppable";
  const SERVICE_TABLE_ENTRYW table[] = {{name, &Serve}, {nullptr, nullptr}};
  return StartServiceCtrlDispatcherW(table) ? 0 : 1;
}
