// The notifier task against stand-ins of both schedulers: its sequences, and each step failing in its turn; then
// against the schedulers that the machine has.
#include "removal/NotifierTask.h"

#include <gtest/gtest.h>

#include "engine/ComSupport.h"
#include "tests/fakes/LateFunctions.h"
#include "tests/fakes/TaskFakes.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/TestFiles.h"

namespace {

using late_functions::g_machine;
using task_fakes::g_record;

std::string Named(const char* call) {
  return std::string(call) + " 'Corva Lumen Player PPAPI Notifier'";
}
constexpr uint32_t kSilent = 0;  // the failure is not reported
constexpr uint32_t kGoesOn = 1;  // the failure does not end the sequence

struct Step {
  std::string call;
  uint32_t code;
};
using Steps = std::vector<Step>;

struct Sequence {
  const char* name;
  bool vista, taskExists, removes;
  Steps steps;
  Lines success;  // reports besides 1106
};

Steps Joined(std::initializer_list<Steps> parts) {
  Steps all;
  for (const Steps& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Steps Opening(uint32_t com, uint32_t security, uint32_t service, uint32_t connection, uint32_t folder) {
  return {{"CoInitializeEx", com},
          {"CoInitializeSecurity 6 3", security},
          {"CoCreateInstance 1", service},
          {"ITaskService::Connect - - - -", connection},
          {"ITaskService::GetFolder '\\'", folder}};
}

const Steps kSettings = {{"ITaskDefinition::get_Settings", 1182},
                         {"ITaskSettings::put_StartWhenAvailable -1", kSilent},
                         {"ITaskSettings::put_Compatibility 2", 1183}};
const Steps kAction = {{"IActionCollection::Create 0", 1199},
                       {"IAction::QueryInterface", 1700},
                       {"IExecAction::put_Path 'C:\\tool.exe'", 1701},
                       {"IExecAction::put_Arguments '-check pepperplugin'", 1702}};
const std::string kRegister = Named("ITaskFolder::RegisterTaskDefinition") + " 6 3 'HOME\\ann' no password";

std::vector<Sequence> Sequences() {
  return {
      {"NewTask",
       true,
       false,
       false,
       Joined({Opening(1168, 1169, 1170, 1171, 1172),
               {{Named("ITaskFolder::GetTask"), kGoesOn}, {"ITaskService::NewTask 0", 1181}},
               kSettings,
               {{"ITaskSettings::put_DisallowStartIfOnBatteries 0", 1184},
                {"ITaskSettings::put_RunOnlyIfNetworkAvailable -1", 1185},
                {"ITaskDefinition::get_RegistrationInfo", 1186},
                {"IRegistrationInfo::put_Author 'Corva Systems Incorporated'", 1187},
                {"IRegistrationInfo::put_Description 'MISSING LOCALIZATION'", 1188},
                {"ITaskDefinition::get_Triggers", 1189},
                {"ITriggerCollection::Create 2", 1190},
                {"ITrigger::QueryInterface", 1191},
                {"ITrigger::put_Id 'NotificationTrigger'", 1192},
                {"ITrigger::put_StartBoundary '2000-01-01T00:57:00Z'", 1193},
                {"IDailyTrigger::put_DaysInterval 1", 1194},
                {"ITrigger::get_Repetition", 1195},
                {"IRepetitionPattern::put_Duration 'P1D'", 1196},
                {"IRepetitionPattern::put_Interval 'PT1H'", 1197},
                {"ITaskDefinition::get_Actions", 1198}},
               kAction,
               {{kRegister, 1703}}}),
       {"0 31"}},
      {"ExistingTask",
       true,
       true,
       false,
       Joined({Opening(1168, 1169, 1170, 1171, 1172),
               {{Named("ITaskFolder::GetTask"), kGoesOn},
                {"IRegisteredTask::get_Definition", 1173},
                {"ITaskDefinition::get_Triggers", 1174},
                {"ITriggerCollection::get_Count", 1175},
                {"ITriggerCollection::get_Item 1", 1177},
                {"ITrigger::get_Repetition", 1178},
                {"IRepetitionPattern::put_Interval 'PT1H'", 1179}},
               kSettings,
               {{"ITaskDefinition::get_Actions", 1198}, {"IActionCollection::Clear", 1198}},
               kAction,
               {{kRegister, 1759}}}),
       {"0 30"}},
      {"RemovedTask",
       true,
       true,
       true,
       Joined({Opening(1724, 1725, 1726, 1727, 1728), {{Named("ITaskFolder::DeleteTask"), kSilent}}}),
       {}},
      {"NewOldTask",
       false,
       false,
       false,
       {{"CoInitialize", 1704},
        {"CoCreateInstance 1", 1705},
        {Named("ITaskScheduler::Activate"), kGoesOn},
        {Named("ITaskScheduler::NewWorkItem"), 1707},
        {"ITask::SetAccountInformation 'HOME\\ann' null", 1716},
        {"ITask::SetCreator 'Corva Systems Incorporated'", 1717},
        {"ITask::SetComment 'MISSING LOCALIZATION'", 1718},
        {"ITask::SetApplicationName 'C:\\tool.exe'", 1719},
        {"ITask::SetFlags 9216", 1720},
        {"ITask::SetParameters '-check pepperplugin'", 1731},
        {"ITask::CreateTrigger", 1721},
        {"ITaskTrigger::SetTrigger 0 0 5 0 0 whole", 1722},
        {"ITask::QueryInterface", 1714},
        {"IPersistFile::Save null 1", 1715}},
       {"0 33"}},
      {"ExistingOldTask",
       false,
       true,
       false,
       {{"CoInitialize", 1704},
        {"CoCreateInstance 1", 1705},
        {Named("ITaskScheduler::Activate"), kGoesOn},
        {"ITask::GetTriggerCount", 1708},
        {"ITask::GetTrigger 0", 1709},
        {"ITaskTrigger::GetTrigger", 1710},
        {"ITaskTrigger::SetTrigger 1 0 42 60 1440 whole", 1757},
        {"ITask::SetApplicationName 'C:\\tool.exe'", 1719},
        {"ITask::SetParameters '-check pepperplugin'", 1731},
        {"ITask::SetAccountInformation 'HOME\\ann' null", 1713},
        {"ITask::SetFlags 9216", 1756},
        {"ITask::QueryInterface", 1711},
        {"IPersistFile::Save null 1", 1712}},
       {"0 32"}},
      {"RemovedOldTask",
       false,
       true,
       true,
       {{"CoInitialize", 1730}, {"CoCreateInstance 1", 1729}, {Named("ITaskScheduler::Delete"), kSilent}},
       {}},
  };
}

BOOL WINAPI OldSystem(OSVERSIONINFOEXW*, DWORD, DWORDLONG) {
  return FALSE;
}

const Lines kSessionReports = {"0 37 1", "1 39 3", "1 40 3", "1 36 3"};

class SequenceTest : public testing::TestWithParam<Sequence> {
 protected:
  SequenceTest() {
    if (!GetParam().vista) version.emplace(GetModuleHandleW(nullptr), "VerifyVersionInfoW", &OldSystem);
  }

  bool Run() {
    late_functions::FindLateFunctions();
    g_machine.sessions->push_back({3, WTSActive});
    g_machine.user = L"ann";
    g_machine.domain = L"HOME";
    g_machine.draws = {65, 127};  // 5 of six, 7 of ten; 5 of sixty
    g_record.calls.clear();
    g_record.taskExists = GetParam().taskExists;
    host.Forget();
    return GetParam().removes ? RemoveNotifierTask(&host)
                              : CreateNotifierTask(MString(L"C:\\tool.exe"), MString(L"-check pepperplugin"), &host);
  }

  void ExpectNothingHeld(const std::string& when) const {
    EXPECT_EQ(g_record.living, 0) << when;
    EXPECT_EQ(g_record.apartments, 0) << when;
    EXPECT_EQ(g_machine.allocations, 0) << when;
  }

  // What is reported besides the steps' own codes.
  [[nodiscard]] Lines Expected(const Lines& after) const {
    Lines all;
    if (!GetParam().removes) {
      all = kSessionReports;
      all.push_back("1 1106");
    }
    all.insert(all.end(), after.begin(), after.end());
    return all;
  }

  [[nodiscard]] Lines Calls(size_t count) const {
    Lines calls;
    for (size_t i = 0; i < count; ++i) calls.push_back(GetParam().steps[i].call);
    return calls;
  }

  ComInitializer apartment;  // before the stage, which takes the platform's calls over
  task_fakes::Stage stage;
  std::optional<ImportHook> version;
  RecordingHost host;
};

TEST_P(SequenceTest, RunsInOrder) {
  EXPECT_TRUE(Run());
  EXPECT_EQ(g_record.calls, Calls(GetParam().steps.size()));
  EXPECT_EQ(host.Reports(), Expected(GetParam().success));
  ExpectNothingHeld("in the end");
}

TEST_P(SequenceTest, StopsAtTheStepThatFailsAndReportsItsCode) {
  const Steps& steps = GetParam().steps;
  for (size_t i = 0; i < steps.size(); ++i) {
    if (steps[i].code == kGoesOn) continue;
    g_record.failAt = i;
    EXPECT_FALSE(Run()) << steps[i].call;
    EXPECT_EQ(g_record.calls, Calls(i + 1)) << steps[i].call;
    const Lines told =
        steps[i].code == kSilent ? Lines() : Lines{"1 " + std::to_string(steps[i].code) + " -2147418113"};
    EXPECT_EQ(host.Reports(), Expected(told)) << steps[i].call;
    ExpectNothingHeld(steps[i].call);
    const bool debugged = steps[i].call.find("StartWhenAvailable") != std::string::npos;
    EXPECT_EQ(std::exchange(g_record.debugOutput, ""), debugged ? "\nCannot put setting information: 8000ffff" : "");
  }
}

INSTANTIATE_TEST_SUITE_P(Tasks, SequenceTest, testing::ValuesIn(Sequences()),
                         [](const testing::TestParamInfo<Sequence>& row) { return row.param.name; });

// What the sequences above do not reach.
class Exceptions : public testing::Test {
 protected:
  Exceptions() { late_functions::FindLateFunctions(); }
  bool Create() { return CreateNotifierTask(MString(L"C:\\tool.exe"), MString(L""), &host); }
  void ExpectReported(const Lines& lines) const {
    const Lines reports = host.Reports();
    for (const std::string& line : lines) EXPECT_EQ(std::count(reports.begin(), reports.end(), line), 1) << line;
  }

  ComInitializer apartment;
  task_fakes::Stage stage;
  RecordingHost host;
};

TEST_F(Exceptions, SecurityThatIsSetAlreadyIsToldAndDoesNotStop) {
  g_record.failAt = 1;
  g_record.failure = RPC_E_TOO_LATE;
  EXPECT_TRUE(Create());
  g_record.calls.clear();
  EXPECT_TRUE(RemoveNotifierTask(&host));
  ExpectReported({"1 1169 -2147417831", "0 31", "1 1725 -2147417831"});
}

TEST_F(Exceptions, AnExistingTaskWithoutATriggerIsLeft) {
  g_record.taskExists = true;
  g_record.triggers = 0;
  EXPECT_FALSE(Create());
  ExpectReported({"1 1176 0"});
  EXPECT_EQ(g_record.calls.back(), "ITriggerCollection::get_Count");
}

TEST_F(Exceptions, WithoutRandomNumbersTheTaskStartsOnTheHour) {
  EXPECT_TRUE(Create());
  const std::string start = "ITrigger::put_StartBoundary '2000-01-01T00:00:00Z'";
  EXPECT_EQ(std::count(g_record.calls.begin(), g_record.calls.end(), start), 1);
  const ImportHook old(GetModuleHandleW(nullptr), "VerifyVersionInfoW", &OldSystem);
  EXPECT_FALSE(Create());
  ExpectReported({"1 1723 -2147467259"});
}

TEST_F(Exceptions, AnOldItemThatCannotBeActivatedIsReplaced) {
  const ImportHook old(GetModuleHandleW(nullptr), "VerifyVersionInfoW", &OldSystem);
  g_record.taskExists = true;
  g_record.failAt = 2;
  g_machine.draws = {7};
  EXPECT_TRUE(Create());
  ExpectReported({"1 1706 -2147418113", "0 33"});
}

TEST_F(Exceptions, NoTaskIsNoFailureOfRemoval) {
  EXPECT_TRUE(RemoveNotifierTask(&host));
  const ImportHook old(GetModuleHandleW(nullptr), "VerifyVersionInfoW", &OldSystem);
  EXPECT_TRUE(RemoveNotifierTask(&host));
  EXPECT_EQ(host.Reports(), Lines());
}

// The session whose user the task is registered for.
struct Logon {
  const char* name;
  late_functions::Machine machine;
  std::string userName;
  Lines reports;
};

late_functions::Machine Machine(std::optional<std::vector<late_functions::Session>> sessions, const WideString& user,
                                const WideString& domain, DWORD userError = 0, DWORD domainError = 0) {
  return {nullptr, std::move(sessions), user, domain, userError, domainError, 0, 0, {}};
}

std::vector<Logon> Logons() {
  const WideString longDomain(200, L'D'), userOf71(71, L'u'), userOf72(72, L'u');
  std::vector<Logon> rows = {
      {"NoLibrary", {}, "", {}},
      {"LastActiveSessionWins",
       Machine({{{1, WTSActive}, {2, WTSActive}, {4, WTSDisconnected}}}, L"ann", L"HOME"),
       "HOME\\ann",
       {"0 37 3", "1 39 1", "1 40 1", "1 39 2", "1 40 2", "1 39 4", "1 41 2", "1 36 2"}},
      {"FailedQuestionLeavesItsSession",
       Machine({{{1, WTSActive}, {7, std::nullopt}}}, L"ann", L"HOME"),
       "HOME\\ann",
       {"0 37 2", "1 39 1", "1 40 1", "1 1755 5", "1 36 7"}},
      {"NoActiveSession",
       Machine({{{9, WTSListen}}}, L"", L""),
       "",
       {"0 37 1", "1 39 9", "1 41 0", "1 36 0", "1 1747"}},
      {"NoList", Machine(std::nullopt, L"ann", L"HOME"), "HOME\\ann", {"1 1754 8", "1 36 0"}},
      {"UserNotRead", Machine({{}}, L"ann", L"HOME", 5), "", {"0 37 0", "1 36 0", "1 1752 5", "1 1747"}},
      {"DomainNotRead", Machine({{}}, L"ann", L"HOME", 0, 6), "ann", {"0 37 0", "1 36 0", "1 1753 6", "1 1746"}},
      {"NoDomain", Machine({{}}, L"ann", L""), "ann", {"0 37 0", "1 36 0", "1 1746"}},
      {"Both271", Machine({{}}, userOf71, longDomain), ToUtf8(longDomain + L"\\" + userOf71), {"0 37 0", "1 36 0"}},
      {"Both272", Machine({{}}, userOf72, longDomain), ToUtf8(userOf72), {"0 37 0", "1 36 0", "1 1746"}},
      {"User271", Machine({{}}, WideString(271, L'u'), L""), std::string(271, 'u'), {"0 37 0", "1 36 0", "1 1746"}},
      {"User272", Machine({{}}, WideString(272, L'u'), L""), "", {"0 37 0", "1 36 0", "1 1747"}},
  };
  rows[0].machine = Machine({{{1, WTSActive}}}, L"ann", L"HOME");
  rows[0].machine.missing = "WTSFreeMemory";
  return rows;
}

TEST(SessionUser, IsTheActiveOneAsFarAsItFits) {
  for (Logon& row : Logons()) {
    late_functions::FindLateFunctions();
    g_machine = row.machine;
    RecordingHost host;
    const NotifierTask task(MString(L"path"), MString(L"arguments"), &host);
    EXPECT_EQ(ToUtf8(task.userName), row.userName) << row.name;
    row.reports.push_back("1 1106");
    EXPECT_EQ(host.Reports(), row.reports) << row.name;
    EXPECT_EQ(g_machine.allocations, 0) << row.name;
    EXPECT_EQ(task.mode, NotifierTask::kTaskService);
  }
}

// What this platform's own schedulers make of it.
TEST(RealSchedulers, TheTaskServiceTakesTheStepsThatItHas) {
  late_functions::FindLateFunctions();
  g_machine.missing = "WTSFreeMemory";
  RecordingHost host;
  const bool created = CreateNotifierTask(MString(L"C:\\windows\\system32\\cmd.exe"), MString(L"/c"), &host);
  // The one here has no trigger ids; a whole service gets to the end.
  EXPECT_EQ(host.Reports(), created ? (Lines{"1 1106", "0 31"}) : (Lines{"1 1106", "1 1192 -2147467263"}));
  host.Forget();
  EXPECT_TRUE(RemoveNotifierTask(&host));
  EXPECT_EQ(host.Reports(), Lines());
}

TEST(RealSchedulers, TheOldSchedulerKeepsTheTaskInAFile) {
  late_functions::FindLateFunctions();
  g_machine.missing = "WTSFreeMemory";
  g_machine.draws = {17};
  const ImportHook old(GetModuleHandleW(nullptr), "VerifyVersionInfoW", &OldSystem);
  const WideString file = testing_files::Folder(CSIDL_WINDOWS) + L"\\Tasks\\Corva Lumen Player PPAPI Notifier.job";
  RecordingHost host;
  EXPECT_TRUE(RemoveNotifierTask(&host));
  EXPECT_TRUE(CreateNotifierTask(MString(L"C:\\windows\\system32\\cmd.exe"), MString(L"/c"), &host));
  EXPECT_TRUE(testing_files::Exists(file));
  EXPECT_TRUE(CreateNotifierTask(MString(L"C:\\windows\\system32\\cmd.exe"), MString(L"/d"), &host));
  EXPECT_EQ(host.Reports(), (Lines{"1 1106", "0 33", "1 1106", "0 32"}));
  EXPECT_TRUE(RemoveNotifierTask(&host));
  EXPECT_FALSE(testing_files::Exists(file));
}

}  // namespace
