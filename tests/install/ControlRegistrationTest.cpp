// The control registers itself, by a scripted entry point for the answers that a real one rarely gives.
#include "install/ControlRegistration.h"

#include <deque>

#include "tests/install/InstallFixture.h"
#include "tests/support/ImportHook.h"

namespace {

std::deque<HRESULT> g_answers;

HRESULT WINAPI AnswerNext() {
  const HRESULT answer = g_answers.empty() ? E_UNEXPECTED : g_answers.front();
  if (!g_answers.empty()) g_answers.pop_front();
  return answer;
}

FARPROC WINAPI FindScripted(HMODULE /*module*/, LPCSTR name) {
  const bool wanted = std::string_view(name) == "DllRegisterServer";
  return wanted ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&AnswerNext)) : nullptr;
}

}  // namespace

TEST_F(InstallFixture, RefusedRegistrationIsTriedOnceMoreAfterThePlayersStopped) {
  const MString control = Player("LumenPlayer.ocx");
  const std::string path = Text(control);
  struct {
    std::deque<HRESULT> answers;
    bool result;
    Lines reports;
  } const rows[] = {
      {{S_FALSE}, true, {}},
      {{E_FAIL, S_OK}, true, {"1 1032 " + path + " 80004005", "0 18"}},
      {{E_FAIL, E_ACCESSDENIED, S_OK}, false, {"1 1032 " + path + " 80004005", "0 18", "2 1032 " + path + " 80070005"}},
  };
  for (const auto& row : rows) {
    host.Forget();
    g_answers = row.answers;
    const ImportHook find(GetModuleHandleW(nullptr), "GetProcAddress", &FindScripted);
    EXPECT_EQ(RegisterControl(shim, control), row.result);
    EXPECT_EQ(host.Reports(), row.reports);
    EXPECT_EQ(g_answers.size(), row.answers.size() > 2 ? 1u : 0u) << "never a third time";
  }
}
