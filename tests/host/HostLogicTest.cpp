// What the host decides without the system: its command line, the files of a kind, texts, tables.
#include <gtest/gtest.h>

#include "engine/ProductKind.h"
#include "engine/ReportCode.h"
#include "host/CommandLine.h"
#include "host/ConsoleText.h"
#include "host/Languages.h"
#include "host/PayloadList.h"
#include "host/ReportTexts.h"
#include "host/StatusTable.h"

namespace {

using namespace product_kind;

TEST(HostCommandLine, UnderstandsWhatComAndPeopleWrite) {
  const struct {
    std::vector<std::string> words;
    HostCommand command;
    uint32_t kinds;
    const char* marks;  // s: silent, w: what-if, W: in a window
    const char* log;
    bool understood;
  } rows[] = {
      {{}, HostCommand::Install, 0, "W", "", true},
      {{"-log", "a.log"}, HostCommand::Install, 0, "W", "a.log", true},
      {{"-Embedding"}, HostCommand::Broker, 0, "", "", true},
      {{"/embedding"}, HostCommand::Broker, 0, "", "", true},
      {{"-register", "ActiveX"}, HostCommand::Register, ActiveX, "", "", true},
      {{"-log", "a.log", "-unregister", "pepperplugin"}, HostCommand::Unregister, Pepper, "", "a.log", true},
      {{"-install", "activex", "plugin", "pepperplugin", "-silent"},
       HostCommand::Install,
       ActiveX | Plugin | Pepper,
       "s",
       "",
       true},
      {{"-what-if", "-Uninstall", "plugin", "-log", "b"}, HostCommand::Uninstall, Plugin, "w", "b", true},
      {{"-maintain", "activex"}, HostCommand::Maintain, ActiveX, "W", "", true},
      {{"-install", "plugin", "-console"}, HostCommand::Install, Plugin, "", "", true},
      {{"-update", "plugin", "-silent", "-what-if"}, HostCommand::Update, Plugin, "sw", "", true},
      {{"-check", "pepperplugin"}, HostCommand::Check, Pepper, "", "", true},
      {{"-conflicts", "activex", "activex"}, HostCommand::Conflicts, ActiveX, "", "", true},
      {{"-refreshIEElevationPolicies"}, HostCommand::RefreshPolicies, 0, "", "", true},
      {{"-status"}, HostCommand::Status, 0, "", "", true},
      {{"-help"}, HostCommand::Help, 0, "", "", true},
      {{"-install"}, HostCommand::Help, 0, "", "", false},
      {{"-install", "plugin", "nonsense"}, HostCommand::Help, 0, "", "", false},
      {{"-check", "plugin", "activex"}, HostCommand::Help, 0, "", "", false},
      {{"-status", "-silent"}, HostCommand::Help, 0, "", "", false},
      {{"-silent"}, HostCommand::Help, 0, "", "", false},
      {{"-register", "plugin", "-help"}, HostCommand::Help, 0, "", "", false},
      {{"-log"}, HostCommand::Help, 0, "", "", false},
      {{"embedding"}, HostCommand::Help, 0, "", "", false},
      {{"-what"}, HostCommand::Help, 0, "", "", false},
      {{"-"}, HostCommand::Help, 0, "", "", false},
  };
  for (const auto& row : rows) {
    const HostCommandLine line = ParseHostCommandLine(row.words);
    const std::string shown = testing::PrintToString(row.words);
    EXPECT_EQ(line.error.empty(), row.understood) << shown << ": " << line.error;
    if (!row.understood) continue;
    EXPECT_EQ(line.command, row.command) << shown;
    EXPECT_EQ(line.kinds, row.kinds) << shown;
    EXPECT_EQ(std::string(line.silent ? "s" : "") + (line.whatIf ? "w" : "") + (line.InWindow() ? "W" : ""), row.marks)
        << shown;
    EXPECT_EQ(line.logFile, row.log) << shown;
  }
}

TEST(HostCommandLine, TheLanguageIsATagOrANumberOfATable) {
  const struct {
    const char* word;
    uint32_t language;  // 0: not understood
  } rows[] = {{"de", 1031}, {"1031", 1031}, {"PT-br", 1046}, {"29", 29}, {"1053", 0}, {"xx", 0}, {"", 0}};
  for (const auto& row : rows) {
    const HostCommandLine line = ParseHostCommandLine({"-install", "plugin", "-language", row.word});
    EXPECT_EQ(line.error.empty(), row.language != 0) << row.word;
    EXPECT_EQ(line.language, row.language) << row.word;
  }
  EXPECT_FALSE(ParseHostCommandLine({"-language"}).error.empty());
}

TEST(Languages, EveryUserGetsTheTableThatIsNearest) {
  const struct {
    uint32_t locale, table;
    const char* who;
  } rows[] = {{1031, 1031, "Germany"},   {3079, 1031, "Austria"}, {1053, 29, "Sweden"},      {2070, 1046, "Portugal"},
              {2058, 3082, "Mexico"},    {2052, 2052, "China"},   {4100, 2052, "Singapore"}, {1028, 1028, "Taiwan"},
              {3076, 1028, "Hong Kong"}, {5124, 1028, "Macao"},   {1035, 1033, "Finland"},   {0, 1033, "nobody"}};
  for (const auto& row : rows) EXPECT_EQ(TableForUser(row.locale), row.table) << row.who;
  EXPECT_EQ(LocaleOfTable(29), 1053u);
  EXPECT_EQ(LocaleOfTable(1042), 1042u);
}

TEST(HostCommandLine, TheHelpNamesEveryCommandOnce) {
  const std::string help = HostUsage();
  for (const char* const word : {"-install KIND...", "-uninstall KIND...", "-maintain KIND ", "-update KIND ",
                                 "-check KIND ", "-conflicts KIND...", "-status ", "-Embedding ", "-help "}) {
    const size_t at = help.find(std::string("  ") + word);
    EXPECT_NE(at, std::string::npos) << word;
    EXPECT_EQ(help.find(std::string("\n  ") + word, at), std::string::npos) << word;
  }
}

std::string Shown(uint32_t severity, uint32_t code) {
  const uint32_t id = StringIdOf(severity, code);
  return ToUtf8(FillIn(MString(HostText(id)), id, code, MString(L"x")).View());
}

TEST(ReportTexts, ACodeWithoutATextOfItsOwnTakesThatOfItsSeverity) {
  EXPECT_EQ(Shown(0, 5555), "Generic info '5555'.  No further information is available.");
  EXPECT_EQ(Shown(1, 5555), "Warning '5555'.  No further information is available.");
  EXPECT_EQ(Shown(2, 5555), "Error '5555'.  No further information is available.");
  EXPECT_EQ(Shown(3, 5555), "Fatal error '5555'.  No further information is available.");
  EXPECT_EQ(Shown(2, 0), "No error information is available.");
  EXPECT_EQ(ToUtf8(Meaning(1, 5555, L"x").View()), "Warning '5555'.  No further information is available.");
}

TEST(ReportTexts, OnlyWhatTheUserMustBeToldOfHasATextOfTheWindow) {
  const struct {
    ReportCode code;
    uint32_t id;
  } rows[] = {{ReportCode::InstallRefusedByVersionInMode1, 60},
              {ReportCode::InstallRefusedByReleaseType, 78},
              {ReportCode::InstallRefusedByVersion, 79},
              {ReportCode::FileNotDeleted, 62},
              {ReportCode::RegisterServerFailed, 64},
              {ReportCode::ControlNotLoaded, 64},
              {ReportCode::RegisterServerMissing, 64},
              {ReportCode::SystemFileNotRemoved, 65},
              {ReportCode::SystemFileQueued, 74},
              {ReportCode::InstallerBlocked, 65},
              {ReportCode::InstallerNeedsRestart, 73},
              {ReportCode::AdministratorWanted, 57},
              {ReportCode::AnotherInstallerActive, 59},
              {ReportCode::PayloadMissing, 58},
              {ReportCode::PayloadNotPermitted, 62},
              {ReportCode::PayloadNotInstalled, 63},
              {ReportCode::PlayerInUse, 61}};
  for (const auto& row : rows) {
    const auto code = static_cast<uint32_t>(row.code);
    EXPECT_EQ(StringIdOf(2, code), row.id) << code;
    EXPECT_EQ(StringIdOf(1, code), 54u) << code;
    EXPECT_NE(HostText(row.id), nullptr) << row.id;
  }
}

TEST(ReportTexts, EveryCodeIsASentence) {
  const uint32_t last = static_cast<uint32_t>(ReportCode::PlayerNotRemoved);
  uint32_t known = 0;
  for (uint32_t code = 0; code <= last; ++code) {
    if (TextOfCode(code) == nullptr) continue;
    ++known;
    const std::string text = ToUtf8(TextOfCode(code));
    EXPECT_TRUE(text.ends_with(".") || text.ends_with("^")) << text;
  }
  EXPECT_EQ(known, 125u);
  EXPECT_EQ(ToUtf8(Meaning(1, 1015, L"C:\\a 20").View()), "A file could not be deleted: C:\\a 20");
}

TEST(ReportTexts, ALogLineIsFiveFieldsWhateverAFileIsCalled) {
  EXPECT_EQ(ToUtf8(LogLine(L"T", 2, 1046, L"C:\\a\tb\nc")),
            "T\t2\t1046\tC:\\a b c\tA file in use is empty: C:\\a b c\r\n");
}

std::string Names(const std::vector<PayloadFile>& files) {
  std::string names;
  for (const PayloadFile& file : files) {
    names += ToUtf8(file.name) + "/" + std::to_string(static_cast<int>(file.source)) + (file.optional ? "? " : " ");
  }
  return names;
}

TEST(PayloadList, AKindIsItsPlayerItsUninstallerAndItsExtras) {
  SettingsTree settings;
  EXPECT_EQ(UpdateServiceName(&settings), WideString()) << "a host may have none";
  ParseSettings(&settings, MString(L"Host { ActiveX a.ocx help.exe; Plugin p.dll; UpdateService u.exe;"
                                   L" FeedbackService f.exe; Uninstaller { ActiveX un.exe; };"
                                   L" ExtraFiles { ActiveX help.exe read.txt; }; };"));
  EXPECT_EQ(Names(FilesOfKind(&settings, ActiveX)), "a.ocx/0 un.exe/1 un.dll/2 un.settings/3 help.exe/0? read.txt/0? ");
  EXPECT_EQ(Names(FilesOfKind(&settings, Plugin)), "p.dll/0 ");
  EXPECT_EQ(Names(FilesOfKind(&settings, Pepper)), "");
  EXPECT_EQ(UpdateServiceName(&settings), L"u.exe");
  EXPECT_EQ(Names(ServiceFiles(&settings, false)), "u.exe/0? ");
  EXPECT_EQ(Names(ServiceFiles(&settings, true)), "u.exe/0? f.exe/0? ");
}

TEST(ConsoleText, MarksGoAndLineBreaksStay) {
  const struct {
    const wchar_t* text;
    const char* plain;
  } rows[] = {{L"plain", "plain"},
              {L"see <a href='/x'>this</a>.", "see this."},
              {L"one.<br/><br/>two", "one.\ntwo"},
              {L"open.<br/<br/>Please", "open.\nPlease"},
              {L"a <b", "a "},
              {L"", ""}};
  for (const auto& row : rows) EXPECT_EQ(ToUtf8(WithoutMarks(row.text)), row.plain);
}

TEST(ConsoleText, ProgressIsFullOnlyAtTheEnd) {
  const struct {
    uint64_t done, total;
    const char* percent;
    int filled;
  } rows[] = {
      {0, 10, "  0%", 0},   {5, 10, " 50%", 15}, {999, 1000, " 99%", 29}, {500, 1000, " 50%", 15},
      {10, 10, "100%", 30}, {0, 0, "100%", 30},  {20, 10, "100%", 30},    {UINT64_MAX - 1, UINT64_MAX, " 99%", 29}};
  for (const auto& row : rows) {
    const std::string line = ProgressLine(row.done, row.total, "x");
    EXPECT_NE(line.find(row.percent), std::string::npos) << line;
    EXPECT_EQ(std::count(line.begin(), line.end(), '#'), row.filled) << line;
  }
}

TEST(StatusTable, ColumnsAreAsWideAsTheirWidestCell) {
  EXPECT_EQ(FormatTable({{"a", "wide one", "c"}, {"lång", "x"}, {"", "", "z"}}),
            "a     wide one  c\n----  --------  -\nlång  x\n                z\n");
  EXPECT_EQ(FormatTable({}), "");
}

}  // namespace
