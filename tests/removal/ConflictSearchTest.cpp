// The judgement about conflicts, on processes in memory.
#include "removal/ConflictSearch.h"

#include <gtest/gtest.h>

#include <numeric>

#include "tests/support/Texts.h"

namespace {

constexpr uint32_t kActiveX = 8, kPlugin = 16, kPepper = 32768, kAll = kActiveX | kPlugin | kPepper;

struct Process {
  const wchar_t* name;  // null: cannot be read
  const wchar_t* path = L"";
  std::vector<MString> files = {};
};

// Ids count from 100.
class MemoryProcesses final : public ProcessList {
 public:
  explicit MemoryProcesses(std::vector<Process> all) : all_(std::move(all)) {}

  std::optional<std::vector<uint32_t>> List() override {
    if (fails) return std::nullopt;
    std::vector<uint32_t> ids(all_.size());
    std::iota(ids.begin(), ids.end(), 100);
    return ids;
  }
  std::optional<ProcessIdentity> Identify(uint32_t id) override {
    const Process& process = all_[id - 100];
    if (process.name == nullptr) return std::nullopt;
    return ProcessIdentity{MString(process.name), MString(process.path)};
  }
  std::vector<MString> LoadedFiles(uint32_t id) override {
    scanned.push_back(id);
    return all_[id - 100].files;
  }
  void End(uint32_t id) override { ended.push_back(id); }

  bool fails = false;
  std::vector<uint32_t> scanned, ended;

 private:
  std::vector<Process> all_;
};

constexpr wchar_t kControl[] = L"C:\\sys\\Lumen64.ocx";
constexpr wchar_t kPluginFile[] = L"C:\\sys\\NPLumen.dll";
constexpr wchar_t kPepperFile[] = L"C:\\sys\\PepLumen.dll";

// A machine on which all kinds are installed under the names that this run would install, in other case.
struct Machine {
  SettingsTree settings;
  ConflictQuestion question = {
      kAll,
      {ConflictKind{kPlugin, L"nplumen.DLL", true, kPluginFile}, ConflictKind{kActiveX, L"LUMEN64.ocx", true, kControl},
       ConflictKind{kPepper, L"PepLumen.dll", true, kPepperFile}},
      L"Helper64.exe",
      L"C:\\payload.exe",
      &settings,
      false,
      true,
      0};

  explicit Machine(const wchar_t* text = L"") { ParseSettings(&settings, MString(text)); }
  // "key=shown" for each conflict; "(null)" when there is no list.
  Lines Search(MemoryProcesses& processes) {
    const auto found = SearchConflicts(question, processes);
    if (found == nullptr) return {"(null)"};
    Lines lines;
    for (const auto* node = found->Head(); node != nullptr; node = node->next) {
      lines.push_back(Text(node->key) + "=" + Text(node->value));
    }
    return lines;
  }
};

}  // namespace

TEST(ConflictSearch, AProcessIsNamedByItsSettingOrByItsLoadedFile) {
  struct Row {
    const char* why;
    const wchar_t* settings;
    std::vector<Process> processes;
    Lines found;
  };
  const Row rows[] = {
      {"known, with a name to show", L"PluginConflicts { fox \"The Fox\" Other; }", {{L"FOX.exe"}}, {"fox=The Fox"}},
      {"known without a name", L"ActiveXConflicts { fox; }", {{L"Fox.exe"}}, {"fox=fox"}},
      {"known without a name, but with a friendly one",
       L"PepperConflicts { fox; }; FriendlyProcessNames { fox Fuchs; }",
       {{L"Fox.exe"}},
       {"fox=Fuchs"}},
      {"known for all kinds: the plug-in's name counts",
       L"ActiveXConflicts { fox A; }; PluginConflicts { fox P; }; PepperConflicts { fox X; }",
       {{L"fox.exe"}},
       {"fox=P"}},
      {"unknown, with the control loaded", L"", {{L"Viewer.EXE", L"", {L"C:\\v.exe", kControl}}}, {"viewer=viewer"}},
      {"a friendly name without a value",
       L"FriendlyProcessNames { viewer; }",
       {{L"viewer", L"", {kPluginFile}}},
       {"viewer=viewer"}},
      {"a loaded path in other case is another file", L"", {{L"viewer.exe", L"", {L"c:\\sys\\lumen64.ocx"}}}, {}},
      {"two processes of one name", L"PluginConflicts { fox; }", {{L"fox.exe"}, {L"FOX.EXE"}}, {"fox=fox"}},
      {"ignored, though known and loaded",
       L"ConflictsToIgnore { fox; }; PluginConflicts { fox; }",
       {{L"fox.exe", L"", {kControl}}},
       {}},
      {"ignored by the beginning of its name, which is no name to be known by",
       L"ConflictsToIgnore { fo; }; PluginConflicts { fo; ca; dog; }",
       {{L"fox.exe"}, {L"cat.exe"}, {L"dog.exe"}},
       {"dog=dog"}},
      {"only the last extension is cut", L"PluginConflicts { a { b Nested; } }", {{L"a.b.exe"}}, {"a.b=Nested"}},
      {"who cannot be read is nobody", L"PluginConflicts { fox; }", {{nullptr}, {L""}, {L"fox"}}, {"fox=fox"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    MemoryProcesses processes(row.processes);
    EXPECT_EQ(Machine(row.settings).Search(processes), row.found);
  }
}

TEST(ConflictSearch, AKindIsLookedAtOnlyWhenItMatters) {
  struct Row {
    const char* why;
    uint32_t kinds;
    bool installed, sameName, restart, optional;
    uint32_t source;
    bool found;
  };
  const Row rows[] = {
      {"optional, and the new file takes the old one's place", kPlugin, true, true, false, true, 0, true},
      {"optional, and the new file stands beside the old one", kPlugin, true, false, false, true, 0, false},
      {"the same with a restart due", kPlugin, true, false, true, true, 0, true},
      {"the same from forced source 8", kPlugin, true, false, false, true, 8, true},
      {"the same from forced source 10", kPlugin, true, false, false, true, 10, true},
      {"the same from source 9", kPlugin, true, false, false, true, 9, false},
      {"optional, not installed", kPlugin, false, false, false, true, 0, false},
      {"forced, not installed: known programs count", kPlugin, false, false, false, true, 8, true},
      {"not optional: the name does not matter", kPlugin, true, false, false, false, 0, true},
      {"not optional and not installed: restart and source do not matter", kPlugin, false, true, true, false, 8, false},
      {"another kind's run", kActiveX, true, true, true, false, 8, false},
      {"no kind's run", 0, true, true, true, false, 8, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    Machine machine(L"PluginConflicts { fox; }");
    machine.question.kinds = row.kinds;
    ConflictKind& plugin = machine.question.product[0];
    plugin.isInstalled = row.installed;
    plugin.installedPath = row.installed ? MString(kPluginFile) : MString(L"");
    if (!row.sameName) plugin.newFile = MString(L"NPLumen_28.dll");
    machine.question.isRestartRequired = row.restart;
    machine.question.isOptional = row.optional;
    machine.question.installSource = row.source;
    // By the loaded file the answer is the same as by the name, but that nobody has loaded what is not installed.
    MemoryProcesses processes({{L"fox.exe"}, {L"viewer.exe", L"", {L"", kPluginFile}}});
    const Lines both = {"fox=fox", "viewer=viewer"};
    EXPECT_EQ(machine.Search(processes), Lines(both.begin(), both.begin() + (row.found ? row.installed ? 2 : 1 : 0)));
  }
}

TEST(ConflictSearch, TheHelperIsEndedUnlessItsBrowserStandsInTheWay) {
  const Process helper = {L"helper64.EXE", L"C:\\sys\\Helper64.exe"};
  const Process explorer = {L"iexplore.exe"}, preview = {L"iepreview.exe"}, fox = {L"fox.exe"};
  constexpr wchar_t kKnown[] = L"ActiveXConflicts { iexplore; iepreview; fox; }";
  struct Row {
    const char* why;
    const wchar_t* settings;
    uint32_t kinds;
    std::vector<Process> processes;
    std::vector<uint32_t> ended;
  };
  const Row rows[] = {
      {"beside other conflicts", kKnown, kActiveX, {fox, helper}, {101}},
      {"of two the last", L"", kActiveX, {helper, helper}, {101}},
      {"the browser is a conflict", kKnown, kActiveX, {helper, explorer}, {}},
      {"so is the preview", kKnown, kActiveX, {helper, preview}, {}},
      {"the browser runs, and is none", L"", kActiveX, {helper, explorer}, {100}},
      {"no kind's run", L"", 0, {helper}, {}},
      {"an ignored helper is not seen", L"ConflictsToIgnore { helper64; }", kActiveX, {helper}, {}},
      {"a helper that is a conflict itself", L"ActiveXConflicts { helper64; }", kActiveX, {helper}, {100}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    Machine machine(row.settings);
    machine.question.kinds = row.kinds;
    MemoryProcesses processes(row.processes);
    machine.Search(processes);
    EXPECT_EQ(processes.ended, row.ended);
  }
  Machine nameless;
  nameless.question.helperName = MString(L"");
  MemoryProcesses processes({{L".exe"}});
  nameless.Search(processes);
  EXPECT_TRUE(processes.ended.empty());
}

TEST(ConflictSearch, ModulesAreReadOnlyOfProcessesThatNoSettingKnows) {
  MemoryProcesses processes({{L"fox.exe"}, {L"cat.exe"}, {L"cow.exe"}});
  Machine machine(L"PluginConflicts { fox; }; ConflictsToIgnore { cow; }");
  machine.Search(processes);
  EXPECT_EQ(processes.scanned, std::vector<uint32_t>{101});
  processes.fails = true;
  EXPECT_EQ(machine.Search(processes), Lines{"(null)"}) << "which is not an empty list";
}

TEST(FindRunningBrowser, GivesThePathOfTheLastOne) {
  MemoryProcesses none({{L"notes.exe", L"C:\\n"}, {nullptr}, {L"firefox", L"C:\\f"}});
  EXPECT_EQ(Text(FindRunningBrowser(none)), "");
  none.fails = true;
  EXPECT_EQ(Text(FindRunningBrowser(none)), "firefox.exe");
  for (const wchar_t* const name : {L"Firefox.exe", L"CHROME.EXE", L"safari.exe", L"opera.exe", L"netscape.exe",
                                    L"mozilla.exe", L"SeaMonkey.exe"}) {
    MemoryProcesses processes({{L"firefox.exe", L"C:\\first"}, {name, L"C:\\last"}, {L"notes.exe", L"C:\\n"}});
    EXPECT_EQ(Text(FindRunningBrowser(processes)), "C:\\last") << ToUtf8(name);
  }
}
