// The judgement about conflicts, on processes in memory.
#include "removal/ConflictSearch.h"

#include <gtest/gtest.h>

#include <numeric>
#include <sstream>

#include "tests/support/Texts.h"

namespace {

constexpr uint32_t kActiveX = 8, kPlugin = 16, kPepper = 32768, kAll = kActiveX | kPlugin | kPepper;
constexpr wchar_t kControl[] = L"C:\\sys\\Lumen64.ocx";
constexpr wchar_t kPluginFile[] = L"C:\\sys\\NPLumen.dll";
constexpr wchar_t kPepperFile[] = L"C:\\sys\\PepLumen.dll";

MString Wide(const std::string& text) {
  return MString(WideView(FromUtf8(text)));
}

// Written as names with blanks between. A name has a ":" behind it and the file that the process has loaded: (C)ontrol,
// (N)PAPI plug-in, or the control's path in (o)ther case. "?" cannot be read, and "*" has no name. Ids count from 100.
class MemoryProcesses final : public ProcessList {
 public:
  explicit MemoryProcesses(const char* text) {
    std::istringstream words(text);
    for (std::string word; words >> word;) all_.push_back(word == "*" ? "" : word);
  }

  std::optional<std::vector<uint32_t>> List() override {
    std::vector<uint32_t> ids(all_.size());
    std::iota(ids.begin(), ids.end(), 100);
    return ids;
  }
  std::optional<ProcessIdentity> Identify(uint32_t id) override {
    const std::string name = all_[id - 100].substr(0, all_[id - 100].find(':'));
    if (name == "?") return std::nullopt;
    return ProcessIdentity{Wide(name), Wide("C:\\" + std::to_string(id) + name)};
  }
  std::vector<MString> LoadedFiles(uint32_t id) override {
    switch (all_[id - 100].back()) {
      case 'C': return {L"C:\\v.exe", kControl};
      case 'N': return {L"", kPluginFile};
      case 'o': return {L"c:\\sys\\lumen64.ocx"};
      default: return {};
    }
  }
  void End(uint32_t id) override { ended.push_back(id); }

  std::vector<uint32_t> ended;

 private:
  Lines all_;
};

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

  explicit Machine(const wchar_t* text) { ParseSettings(&settings, MString(text)); }
  // "key=shown" and a blank for each conflict.
  std::string Search(MemoryProcesses& processes) {
    const auto found = SearchConflicts(question, processes);
    std::string text;
    for (const auto* node = found->Head(); node != nullptr; node = node->next) {
      text += Text(node->key) + "=" + Text(node->value) + " ";
    }
    return text;
  }
};

}  // namespace

TEST(ConflictSearch, AProcessIsNamedByItsSettingOrByItsLoadedFile) {
  struct Row {
    const wchar_t* settings;
    const char* processes;
    const char* found;
  };
  const Row rows[] = {
      {L"PluginConflicts { fox \"The Fox\" Other; }", "FOX.exe", "fox=The Fox "},
      {L"ActiveXConflicts { fox; }", "Fox.exe", "fox=fox "},
      {L"PepperConflicts { fox; }; FriendlyProcessNames { fox Fuchs; }", "Fox.exe", "fox=Fuchs "},
      {L"ActiveXConflicts { fox A; }; PluginConflicts { fox P; }; PepperConflicts { fox X; }", "fox", "fox=P "},
      {L"", "Viewer.EXE:C", "viewer=viewer "},
      {L"FriendlyProcessNames { viewer; }", "viewer:N", "viewer=viewer "},
      {L"", "viewer.exe:o", ""},
      {L"PluginConflicts { fox; }", "fox.exe FOX.EXE", "fox=fox "},
      {L"ConflictsToIgnore { fox; }; PluginConflicts { fox; }", "fox.exe:C", ""},
      // Ignored by the beginning of its name, which is no name to be known by.
      {L"ConflictsToIgnore { fo; }; PluginConflicts { fo; ca; dog; }", "fox.exe cat.exe dog.exe", "dog=dog "},
      {L"PluginConflicts { a { b Nested; } }", "a.b.exe", "a.b=Nested "},
      {L"PluginConflicts { fox; }", "? * fox", "fox=fox "},
  };
  for (const Row& row : rows) {
    MemoryProcesses processes(row.processes);
    EXPECT_EQ(Machine(row.settings).Search(processes), row.found);
  }
}

TEST(ConflictSearch, AKindIsLookedAtOnlyWhenItMatters) {
  struct Row {
    const char* why;
    uint32_t kinds;
    std::string_view is;  // (i)nstalled, of the (s)ame name, (r)estart due, check (o)ptional
    uint32_t source;
    bool found;
  };
  const Row rows[] = {
      {"the new file takes the old one's place", kPlugin, "iso", 0, true},
      {"the new file stands beside the old one", kPlugin, "io", 0, false},
      {"the same with a restart due", kPlugin, "iro", 0, true},
      {"the same from forced source 8", kPlugin, "io", 8, true},
      {"the same from source 9", kPlugin, "io", 9, false},
      {"the same from forced source 10", kPlugin, "io", 10, true},
      {"not installed", kPlugin, "o", 0, false},
      {"forced, not installed: known programs count", kPlugin, "o", 8, true},
      {"not optional: the name does not matter", kPlugin, "i", 0, true},
      {"not optional and not installed: restart and source do not matter", kPlugin, "sr", 8, false},
      {"another kind's run", kActiveX, "isr", 8, false},
      {"no kind's run", 0, "isr", 8, false},
  };
  for (const Row& row : rows) {
    const auto is = [&row](char what) { return row.is.find(what) != std::string_view::npos; };
    Machine machine(L"PluginConflicts { fox; }");
    machine.question.kinds = row.kinds;
    ConflictKind& plugin = machine.question.product[0];
    plugin.isInstalled = is('i');
    if (!is('i')) plugin.installedPath = MString(L"");
    if (!is('s')) plugin.newFile = MString(L"NPLumen_28.dll");
    machine.question.isRestartRequired = is('r');
    machine.question.isOptional = is('o');
    machine.question.installSource = row.source;
    // By the loaded file the answer is the same as by the name, but that nobody has loaded what is not installed.
    MemoryProcesses processes("fox.exe viewer.exe:N");
    EXPECT_EQ(machine.Search(processes), !row.found ? "" : is('i') ? "fox=fox viewer=viewer " : "fox=fox ") << row.why;
  }
}

TEST(ConflictSearch, TheHelperIsEndedUnlessItsBrowserStandsInTheWay) {
  constexpr wchar_t kKnown[] = L"ActiveXConflicts { iexplore; iepreview; fox; }";
  struct Row {
    const char* why;
    const wchar_t* settings;
    uint32_t kinds;
    const char* processes;
    std::vector<uint32_t> ended;
    const wchar_t* helper = L"Helper64.exe";
  };
  const Row rows[] = {
      {"beside other conflicts", kKnown, kActiveX, "fox.exe helper64.EXE", {101}},
      {"of two the last", L"", kActiveX, "helper64.exe helper64.exe", {101}},
      {"the browser is a conflict", kKnown, kActiveX, "helper64.exe iexplore.exe", {}},
      {"so is the preview", kKnown, kActiveX, "helper64.exe iepreview.exe", {}},
      {"the browser runs, and is none", L"", kActiveX, "helper64.exe iexplore.exe", {100}},
      {"no kind's run", L"", 0, "helper64.exe", {}},
      {"an ignored helper is not seen", L"ConflictsToIgnore { helper64; }", kActiveX, "helper64.exe", {}},
      {"a helper that is a conflict itself", L"ActiveXConflicts { helper64; }", kActiveX, "helper64.exe", {100}},
      {"no helper is named", L"", kActiveX, ".exe", {}, L""},
  };
  for (const Row& row : rows) {
    Machine machine(row.settings);
    machine.question.kinds = row.kinds;
    machine.question.helperName = MString(row.helper);
    MemoryProcesses processes(row.processes);
    machine.Search(processes);
    EXPECT_EQ(processes.ended, row.ended) << row.why;
  }
}

TEST(FindRunningBrowser, GivesThePathOfTheLastOne) {
  MemoryProcesses none("notes.exe ? firefox");
  EXPECT_EQ(Text(FindRunningBrowser(none)), "");
  for (const char* const name :
       {"Firefox.exe", "CHROME.EXE", "safari.exe", "opera.exe", "netscape.exe", "mozilla.exe", "SeaMonkey.exe"}) {
    MemoryProcesses processes((std::string("firefox.exe ") + name + " notes.exe").c_str());
    EXPECT_EQ(Text(FindRunningBrowser(processes)), std::string("C:\\101") + name);
  }
}
