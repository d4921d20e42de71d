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
    uint32_t kinds, language;
    const char* marks;  // s: silent, w: what-if, W: in a window, l: with a log
  } rows[] = {
      {{}, HostCommand::Install, 0, 0, "W"},
      {{"-log", "a.log"}, HostCommand::Install, 0, 0, "Wl"},
      {{"/embedding"}, HostCommand::Broker, 0, 0, ""},
      {{"-log", "a.log", "-unregister", "PepperPlugin"}, HostCommand::Unregister, Pepper, 0, "l"},
      {{"-install", "activex", "plugin", "-silent"}, HostCommand::Install, ActiveX | Plugin, 0, "s"},
      {{"-what-if", "-Uninstall", "plugin"}, HostCommand::Uninstall, Plugin, 0, "w"},
      {{"-install", "plugin", "-console"}, HostCommand::Install, Plugin, 0, ""},
      {{"-status", "-language", "PT-br"}, HostCommand::Status, 0, 1046, ""},
      {{"-gallery", "-log", "a.log"}, HostCommand::Gallery, 0, 0, "l"},
      {{"-gallery", "29", "-log", "a.log"}, HostCommand::Gallery, 0, 29, "l"},
  };
  for (const auto& row : rows) {
    const HostCommandLine line = ParseHostCommandLine(row.words);
    const std::string shown = testing::PrintToString(row.words);
    EXPECT_EQ(line.error, "") << shown;
    EXPECT_EQ(line.command, row.command) << shown;
    EXPECT_EQ(line.kinds, row.kinds) << shown;
    EXPECT_EQ(line.language, row.language) << shown;
    EXPECT_EQ(line.logFile, std::string(row.marks).ends_with('l') ? "a.log" : "") << shown;
    const std::string marks = std::string(line.silent ? "s" : "") + (line.whatIf ? "w" : "") +
                              (line.InWindow() ? "W" : "") + (line.logFile.empty() ? "" : "l");
    EXPECT_EQ(marks, row.marks) << shown;
  }
  const std::vector<std::string> refused[] = {
      {"-install"},
      {"-install", "plugin", "nonsense"},
      {"-check", "plugin", "activex"},
      {"-status", "-silent"},
      {"-silent"},
      {"-register", "plugin", "-help"},
      {"-log"},
      {"embedding"},
      {"-"},
      {"-language"},
      {"-install", "plugin", "-language", "1053"},
      {"-gallery", "klingon"},
  };
  for (const auto& words : refused) EXPECT_NE(ParseHostCommandLine(words).error, "") << testing::PrintToString(words);
}

TEST(Languages, EveryUserGetsTheTableThatIsNearest) {
  const struct {
    uint32_t locale, table;
    const char* who;
  } rows[] = {{3079, 1031, "Austria"},   {1053, 29, "Sweden"},      {2070, 1046, "Portugal"},
              {4100, 2052, "Singapore"}, {3076, 1028, "Hong Kong"}, {1035, 1033, "Finland"}};
  for (const auto& row : rows) EXPECT_EQ(TableForUser(row.locale), row.table) << row.who;
  EXPECT_EQ(LocaleOfTable(29), 1053u);
}

std::string Shown(uint32_t severity, uint32_t code) {
  const uint32_t id = StringIdOf(severity, code);
  return ToUtf8(FillIn(MString(HostText(id)), id, code, MString(L"x")).View());
}

TEST(ReportTexts, ACodeWithoutATextOfItsOwnTakesThatOfItsSeverity) {
  EXPECT_EQ(Shown(0, 5555), "Generic info '5555'.  No further information is available.");
  EXPECT_EQ(Shown(2, 5555), "Error '5555'.  No further information is available.");
  EXPECT_EQ(Shown(3, 5555), "Fatal error '5555'.  No further information is available.");
  EXPECT_EQ(Shown(2, 0), "No error information is available.");
  EXPECT_EQ(ToUtf8(Meaning(1, 5555, L"x").View()), "Warning '5555'.  No further information is available.");
}

TEST(ReportTexts, OnlyWhatTheUserMustBeToldOfHasATextOfTheWindow) {
  uint32_t known = 0;
  for (uint32_t code = 1; code <= static_cast<uint32_t>(ReportCode::PlayerNotRemoved); ++code) {
    if (TextOfCode(code) != nullptr) ++known;
    EXPECT_EQ(StringIdOf(1, code), 54u) << code;
    EXPECT_NE(HostText(StringIdOf(2, code)), nullptr) << code;
  }
  EXPECT_EQ(known, 125u);
  EXPECT_EQ(StringIdOf(2, 1032), 64u);
  EXPECT_EQ(StringIdOf(2, 1048), 65u);
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
  } rows[] = {{L"see <a href='/x'>this</a>.", "see this."},
              {L"one.<br/><br/>two", "one.\ntwo"},
              {L"open.<br/<br/>Please", "open.\nPlease"},
              {L"a <b", "a "}};
  for (const auto& row : rows) EXPECT_EQ(ToUtf8(WithoutMarks(row.text)), row.plain);
}

TEST(ConsoleText, ProgressIsFullOnlyAtTheEnd) {
  const struct {
    uint64_t done, total;
    const char* percent;
    int filled;
  } rows[] = {{0, 10, "  0%", 0},
              {999, 1000, " 99%", 29},
              {0, 0, "100%", 30},
              {20, 10, "100%", 30},
              {UINT64_MAX - 1, UINT64_MAX, " 99%", 29}};
  for (const auto& row : rows) {
    const std::string line = ProgressLine(row.done, row.total, "x");
    EXPECT_NE(line.find(row.percent), std::string::npos) << line;
    EXPECT_EQ(std::count(line.begin(), line.end(), '#'), row.filled) << line;
  }
}

TEST(StatusTable, ColumnsAreAsWideAsTheirWidestCell) {
  EXPECT_EQ(FormatTable({{"a", "wide one", "c"}, {"lång", "x"}, {"", "", "z"}}),
            "a     wide one  c\n----  --------  -\nlång  x\n                z\n");
}

}  // namespace
