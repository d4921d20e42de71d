// The notifier task against stand-ins of both schedulers: its sequences, and each step failing in its turn; then
// against the schedulers that the machine has.
#include "removal/NotifierTask.h"

#include <gtest/gtest.h>

#include "tests/fakes/TaskFakes.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/RegistrySnapshot.h"
#include "tests/support/TestFiles.h"

namespace {

using late_functions::g_machine;
using task_fakes::g_record;

BOOL WINAPI OldSystem(OSVERSIONINFOEXW*, DWORD, DWORDLONG) {
  return FALSE;
}

class NotifierTaskTest : public testing::Test {
 protected:
  NotifierTaskTest() { late_functions::FindLateFunctions(); }
  bool Create(const wchar_t* path = L"C:\\tool.exe", const wchar_t* arguments = L"-check pepperplugin") {
    return CreateNotifierTask(MString(path), MString(arguments), &host);
  }
  void UseOldSystem() { version.emplace(GetModuleHandleW(nullptr), "VerifyVersionInfoW", &OldSystem); }
  // What was reported, and is forgotten, besides the search for the user.
  Lines TakeReports() {
    Lines reports = host.Reports();
    const auto found = std::find(reports.begin(), reports.end(), "1 1106");
    if (found != reports.end()) reports.erase(reports.begin(), found + 1);
    host.Forget();
    return reports;
  }

  std::optional<ImportHook> version;
  RecordingHost host;
};

class StagedTask : public NotifierTaskTest {
 protected:
  // One sequence from the beginning; its last call may be the failing one.
  bool Run(bool removes, std::optional<size_t> failing) {
    g_machine = late_functions::Machine();
    g_machine.sessions->push_back({3, WTSActive});
    g_machine.user = L"ann";
    g_machine.domain = L"HOME";
    g_machine.draws = {65, 127};  // 5 of six, 7 of ten; 5 of sixty
    g_record.calls.clear();
    g_record.failAt = failing;
    const bool result = removes ? RemoveNotifierTask(&host) : Create();
    EXPECT_EQ(g_record.living, 0);
    EXPECT_EQ(g_record.apartments, 0);
    EXPECT_EQ(g_machine.allocations, 0);
    return result;
  }
  task_fakes::Stage stage;
};

}  // namespace

TEST_F(StagedTask, StopsAtTheStepThatFailsAndReportsItsCode) {
  Lines lines;
  const auto add = [&](std::string line) {
    for (const std::string& report : TakeReports()) line += " => " + report;
    lines.push_back(line);
  };
  for (const bool old : {false, true}) {
    if (old) UseOldSystem();
    for (const char* const name : {"a new task", "an existing task", "a removed task"}) {
      g_record.taskExists = name != std::string("a new task");
      const bool removes = name == std::string("a removed task");
      EXPECT_TRUE(Run(removes, std::nullopt));
      add(std::string(name) + (old ? " of the old scheduler" : ""));
      const Lines all = g_record.calls;
      for (size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(all[i]);
        const bool goesOn = Run(removes, i);
        add((goesOn ? "  goes on: " : "  ") + all[i]);
        if (!goesOn) EXPECT_EQ(g_record.calls, Lines(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(i) + 1));
        const bool debugged = all[i].find("StartWhenAvailable") != std::string::npos;
        EXPECT_EQ(std::exchange(g_record.debugOutput, ""),
                  debugged ? "\nCannot put setting information: 8000ffff" : "");
      }
    }
  }
  ExpectGolden("notifier-task.txt", lines);
}

TEST_F(StagedTask, SecurityThatIsSetAlreadyIsToldAndDoesNotStop) {
  g_record.failure = RPC_E_TOO_LATE;
  EXPECT_TRUE(Run(false, 1));
  EXPECT_EQ(TakeReports(), (Lines{"1 1169 -2147417831", "0 31"}));
  EXPECT_TRUE(Run(true, 1)) << "nor does the task's absence";
  EXPECT_EQ(TakeReports(), Lines{"1 1725 -2147417831"});
}

TEST_F(StagedTask, NothingIsScheduledWithoutATriggerOrInTheOldWayWithoutARandomStart) {
  g_record.taskExists = true;
  g_record.triggers = 0;
  EXPECT_FALSE(Run(false, std::nullopt));
  EXPECT_EQ(TakeReports(), Lines{"1 1176 0"});
  g_record.taskExists = false;
  g_machine.draws.clear();
  UseOldSystem();
  EXPECT_FALSE(Create());
  EXPECT_EQ(TakeReports().back(), "1 1723 -2147467259");
}

// "1+ 4- 7?": an active session, one that is not, one whose state cannot be asked. "!": they cannot be listed.
std::optional<std::vector<late_functions::Session>> Sessions(std::string_view text) {
  if (text == "!") return std::nullopt;
  std::vector<late_functions::Session> sessions;
  for (size_t i = 0; i < text.size(); i += 3) {
    sessions.push_back({static_cast<DWORD>(text[i] - '0'), text[i + 1] == '+' ? WTSActive : WTSDisconnected});
    if (text[i + 1] == '?') sessions.back().state.reset();
  }
  return sessions;
}

TEST_F(NotifierTaskTest, IsTheActiveUsersAsFarAsTheNameFits) {
  struct Row {
    const char* sessions;
    WideString user, domain;
    DWORD userError, domainError;
    std::string userName, reports;
  };
  const WideString d200(200, L'D'), u71(71, L'u'), u72(72, L'u'), u271(271, L'u'), u272(272, L'u');
  const Row rows[] = {
      {"1+ 2+ 4-", L"a", L"H", 0, 0, "H\\a", "0 37 3, 1 39 1, 1 40 1, 1 39 2, 1 40 2, 1 39 4, 1 41 2, 1 36 2"},
      // A failed question leaves its session in place.
      {"1+ 7?", L"a", L"H", 0, 0, "H\\a", "0 37 2, 1 39 1, 1 40 1, 1 1755 5, 1 36 7"},
      {"9-", L"", L"", 0, 0, "", "0 37 1, 1 39 9, 1 41 0, 1 36 0, 1 1747"},
      {"!", L"a", L"H", 0, 0, "H\\a", "1 1754 8, 1 36 0"},
      {"", L"a", L"H", 5, 0, "", "0 37 0, 1 36 0, 1 1752 5, 1 1747"},
      {"", L"a", L"H", 0, 6, "a", "0 37 0, 1 36 0, 1 1753 6, 1 1746"},
      {"", u71, d200, 0, 0, ToUtf8(d200 + L"\\" + u71), "0 37 0, 1 36 0"},
      {"", u72, d200, 0, 0, ToUtf8(u72), "0 37 0, 1 36 0, 1 1746"},
      {"", u271, L"", 0, 0, ToUtf8(u271), "0 37 0, 1 36 0, 1 1746"},
      {"", u272, L"", 0, 0, "", "0 37 0, 1 36 0, 1 1747"},
  };
  for (const Row& row : rows) {
    g_machine = {nullptr, Sessions(row.sessions), row.user, row.domain, row.userError, row.domainError, 0, {}};
    host.Forget();
    const NotifierTask task(MString(L"path"), MString(L"arguments"), &host);
    EXPECT_EQ(ToUtf8(task.userName), row.userName);
    std::string reports;
    for (const std::string& report : host.Reports()) reports += report + ", ";
    EXPECT_EQ(reports, row.reports + ", 1 1106, ");
    EXPECT_EQ(g_machine.allocations, 0);
  }
}

// What this platform's own schedulers make of it, for a user that nobody can tell.
TEST_F(NotifierTaskTest, TheRealTaskServiceTakesTheStepsThatItHas) {
  g_machine.missing = "WTSFreeMemory";
  const bool created = Create(L"C:\\windows\\system32\\cmd.exe", L"/c");
  // The one here has no trigger ids; a whole service gets to the end.
  EXPECT_EQ(host.Reports(), created ? (Lines{"1 1106", "0 31"}) : (Lines{"1 1106", "1 1192 -2147467263"}));
  host.Forget();
  EXPECT_TRUE(RemoveNotifierTask(&host));
  EXPECT_EQ(host.Reports(), Lines());
}

TEST_F(NotifierTaskTest, TheRealOldSchedulerKeepsTheTaskInAFile) {
  g_machine.missing = "WTSFreeMemory";
  g_machine.draws = {17};
  UseOldSystem();
  const WideString file = testing_files::Folder(CSIDL_WINDOWS) + L"\\Tasks\\Corva Lumen Player PPAPI Notifier.job";
  for (const char* const code : {"0 33", "0 32"}) {
    EXPECT_TRUE(Create(L"C:\\windows\\system32\\cmd.exe", L"/c"));
    EXPECT_EQ(TakeReports(), Lines{code});
  }
  EXPECT_TRUE(testing_files::Exists(file));
  EXPECT_TRUE(RemoveNotifierTask(&host));
  EXPECT_FALSE(testing_files::Exists(file));
}
