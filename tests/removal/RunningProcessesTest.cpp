// Real processes with real loaded files.
#include "removal/RunningProcesses.h"

#include <shlobj.h>

#include <algorithm>
#include <memory>

#include "removal/BrowserProcesses.h"
#include "tests/removal/StartedProgram.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/StartedAsUser.h"

namespace {

const HMODULE kSelf = GetModuleHandleW(nullptr);
constexpr wchar_t kFolder[] = L"C:\\process-test";

// The platform's listing, in which the test program's own process stands at a chosen place.
size_t g_place = 0;
DWORD g_reportedBytes = 0;
bool g_listingFails = false;
BOOL WINAPI Enumerate(DWORD* ids, DWORD size, DWORD* bytes) {
  EXPECT_EQ(size, 1024u);
  if (g_place < size / sizeof(DWORD)) ids[g_place] = GetCurrentProcessId();
  *bytes = g_reportedBytes;
  return !g_listingFails;
}
bool g_hasFunction = true;
auto* const g_find = Own<decltype(GetProcAddress)>(L"kernel32.dll", "GetProcAddress");
FARPROC WINAPI Find(HMODULE library, LPCSTR name) {
  if (std::string_view(name) != "EnumProcesses") return g_find(library, name);
  return g_hasFunction ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Enumerate)) : nullptr;
}

BOOL WINAPI FolderOf(HWND /*owner*/, LPWSTR path, int folder, BOOL /*create*/) {
  const WideString wanted = WideString(kFolder) + (folder == 42 ? L"\\32" : folder == 38 ? L"\\64" : L"\\no");
  std::copy(wanted.c_str(), wanted.c_str() + wanted.size() + 1, path);
  return TRUE;
}

}  // namespace

TEST(RunningProcesses, FindsARealOneWithItsNameItsPathAndItsFiles) {
  const testing_files::CleanDirectory folder(kFolder);
  const WideString library = WideString(kFolder) + L"\\Sample64.ocx";
  ASSERT_TRUE(CopyFileW(testing_files::Beside(L"fake_srpapi.dll").c_str(), library.c_str(), FALSE));
  const StartedProgram program(WideString(kFolder) + L"\\FireFox.exe", library);
  RunningProcesses processes;
  const auto ids = processes.List();
  ASSERT_TRUE(ids.has_value());
  EXPECT_EQ(std::count(ids->begin(), ids->end(), program.Id()), 1);
  const auto identity = processes.Identify(program.Id());
  ASSERT_TRUE(identity.has_value());
  EXPECT_EQ(Text(identity->name) + Text(identity->path), "FireFox.exeC:\\process-test\\FireFox.exe");
  const auto files = processes.LoadedFiles(program.Id());
  EXPECT_EQ(Text(files.front()), "C:\\process-test\\FireFox.exe");
  EXPECT_TRUE(std::any_of(files.begin(), files.end(),
                          [](const MString& file) { return Text(file) == "C:\\process-test\\Sample64.ocx"; }));
  processes.End(program.Id());
  EXPECT_EQ(program.ExitCode(), 0u);
}

TEST(RunningProcesses, WhoTellsNothingHasNoNameAndWhoHidesItsModulesThatOfItsImage) {
  RunningProcesses processes;
  EXPECT_FALSE(processes.Identify(0xFFFFFFF0).has_value());
  EXPECT_TRUE(processes.LoadedFiles(0xFFFFFFF0).empty());
  processes.End(0xFFFFFFF0);
  const ImportHook modules(
      kSelf, "K32EnumProcessModules", +[](HANDLE, HMODULE*, DWORD bytes, DWORD*) -> BOOL { return bytes != 8; });
  const ProcessIdentity own = IdentityOf(GetCurrentProcess());
  EXPECT_EQ(Text(own.name), "removal_tests.exe");
  EXPECT_TRUE(Text(own.path).ends_with("\\removal_tests.exe")) << Text(own.path);
}

TEST(RunningProcesses, OnlyTheFirst256AreLookedAt) {
  struct Row {
    const char* why;
    size_t place;
    DWORD bytes;
    size_t count;
    bool seen;
  };
  const Row rows[] = {
      {"the next one", 256, 1024, 256, false},
      {"what the platform says it would have had room for", 255, 4096, 256, true},
      {"behind what was filled in", 10, 40, 10, false},
      {"a size that is no whole number of ids", 0, 7, 1, true},
  };
  const ImportHook find(kSelf, "GetProcAddress", &Find);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    g_place = row.place;
    g_reportedBytes = row.bytes;
    const auto ids = RunningProcesses().List().value();
    EXPECT_EQ(ids.size(), row.count);
    EXPECT_EQ(std::count(ids.begin(), ids.end(), GetCurrentProcessId()), row.seen ? 1 : 0);
  }
  g_listingFails = true;
  EXPECT_FALSE(RunningProcesses().List().has_value());
  g_hasFunction = false;
  EXPECT_TRUE(RunningProcesses().List().value().empty()) << "a platform without the function has no processes";
  const ImportHook directory(
      kSelf, "GetSystemDirectoryW", +[](LPWSTR, UINT) -> UINT { return 0; });
  EXPECT_FALSE(RunningProcesses().List().has_value());
}

TEST(IsBrowserWindow, TrustsTheBrowsersAlone) {
  const testing_files::CleanDirectory folder(kFolder);
  const ImportHook folders(kSelf, "SHGetSpecialFolderPathW", &FolderOf);
  const std::pair<const wchar_t*, bool> rows[] = {
      {L"\\64\\Internet Explorer\\IEXPLORE.exe", true},
      {L"\\32\\internet explorer\\iexplore.exe", true},
      {L"\\64\\Internet Explorer\\iexplore2.exe", false},
      {L"\\Internet Explorer\\iexplore.exe", false},
      {L"\\MicrosoftEdge.exe", true},
      {L"\\microsoftedgecp.exe", true},
      {L"\\Spartan.exe", true},
      {L"\\spartan_edge.EXE", true},
      {L"\\msedge.exe", false},
  };
  for (const auto& [path, trusted] : rows) {
    const StartedProgram program(WideString(kFolder) + path, L"window");
    ASSERT_NE(program.Window(), nullptr) << ToUtf8(path);
    EXPECT_EQ(IsBrowserWindow(program.Window()), trusted) << ToUtf8(path);
  }
  EXPECT_FALSE(IsBrowserWindow(nullptr));
  EXPECT_FALSE(IsBrowserWindow(reinterpret_cast<HWND>(0x7FFF0)));
}

TEST(RefreshIEElevation, StartsTheUtilityForEachBrowserProcessOfTheExactName) {
  const testing_files::CleanDirectory folder(kFolder);
  std::vector<std::unique_ptr<StartedProgram>> programs;
  for (const wchar_t* const path : {L"\\a\\iexplore.exe", L"\\b\\iexplore.exe", L"\\ieuser.exe", L"\\IExplore.exe"}) {
    programs.push_back(std::make_unique<StartedProgram>(kFolder + WideString(path)));
  }
  const ImportHook start(kSelf, "CreateProcessAsUserW", &started_as_user::Start);
  RecordingHost host;
  for (const size_t length : {20, 300}) {
    host.utilityPath = MString(WideView(WideString(length, L'u')));
    started_as_user::g_lines.clear();
    RefreshIEElevationInSessions(&host);
    const std::string line = "\"" + std::string(length, 'u') + "\" -refreshIEElevationPolicies";
    EXPECT_EQ(started_as_user::g_lines, Lines(3, line.substr(0, 259))) << "there is room for 260 characters";
  }
}
