// An add-on product as a vendor would make one: holds its mutex while it runs, and a message loop. Writes its command
// line to seen.txt beside itself, and does what the tests ask by named events.
#include "tests/support/TestFiles.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  const KernelHandle mutex(CreateMutexA(nullptr, FALSE, "HalcyonicsMutexGammademoaddon"));
  testing_files::WriteWhole(testing_files::Beside(L"seen.txt"), ToUtf8(GetCommandLineW()));
  // A test that wants to see it before it is idle holds it here.
  const KernelHandle started(OpenEventA(EVENT_MODIFY_STATE, FALSE, "LumenDemoAddOnStarted"));
  const KernelHandle go(OpenEventA(SYNCHRONIZE, FALSE, "LumenDemoAddOnGo"));
  if (started) SetEvent(started.Get());
  if (go) WaitForSingleObject(go.Get(), 30000);

  const KernelHandle stop(CreateEventA(nullptr, TRUE, FALSE, "LumenDemoAddOnStop"));
  const HANDLE waited = stop.Get();
  for (MSG message;;) {
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    if (MsgWaitForMultipleObjects(1, &waited, FALSE, 30000, QS_ALLINPUT) != WAIT_OBJECT_0 + 1) return 0;
  }
}
