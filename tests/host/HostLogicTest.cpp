#include <gtest/gtest.h>

#include "host/CommandLine.h"
#include "host/ReportTexts.h"

namespace {

TEST(HostCommandLine, UnderstandsWhatComAndPeopleWrite) {
  const struct {
    std::vector<std::string> words;
    HostCommand command;
    const char* kind;
    const char* log;
    bool understood;
  } rows[] = {
      {{}, HostCommand::Help, "", "", true},
      {{"-Embedding"}, HostCommand::Broker, "", "", true},
      {{"/embedding"}, HostCommand::Broker, "", "", true},
      {{"-register", "ActiveX"}, HostCommand::Register, "activex", "", true},
      {{"-log", "a.log", "-unregister", "pepperplugin"}, HostCommand::Unregister, "pepperplugin", "a.log", true},
      {{"-refreshIEElevationPolicies"}, HostCommand::RefreshPolicies, "", "", true},
      {{"-help"}, HostCommand::Help, "", "", true},
      {{"-register"}, HostCommand::Register, "", "", false},
      {{"-register", "flash"}, HostCommand::Register, "", "", false},
      {{"-register", "plugin", "-help"}, HostCommand::Help, "plugin", "", false},
      {{"-log"}, HostCommand::Help, "", "", false},
      {{"embedding"}, HostCommand::Help, "", "", false},
      {{"-what"}, HostCommand::Help, "", "", false},
      {{"-"}, HostCommand::Help, "", "", false},
  };
  for (const auto& row : rows) {
    const HostCommandLine line = ParseHostCommandLine(row.words);
    const std::string shown = row.words.empty() ? "(empty)" : row.words[0];
    EXPECT_EQ(line.error.empty(), row.understood) << shown << ": " << line.error;
    if (!row.understood) continue;
    EXPECT_EQ(line.command, row.command) << shown;
    EXPECT_EQ(line.kind, row.kind) << shown;
    EXPECT_EQ(line.logFile, row.log) << shown;
  }
}

std::string Shown(uint32_t severity, uint32_t code, const wchar_t* text) {
  const uint32_t id = StringIdOf(severity, code);
  return ToUtf8(FillIn(MString(EnglishText(id)), id, code, MString(text)).View());
}

TEST(ReportTexts, ACodeWithoutATextOfItsOwnTakesThatOfItsSeverity) {
  EXPECT_EQ(Shown(0, 18, L"x"), "Generic info '18'.  No further information is available.");
  EXPECT_EQ(Shown(1, 1113, L"x"), "Warning '1113'.  No further information is available.");
  EXPECT_EQ(Shown(2, 1113, L"x"), "Error '1113'.  No further information is available.");
  EXPECT_EQ(Shown(3, 1113, L"x"), "Fatal error '1113'.  No further information is available.");
  EXPECT_EQ(Shown(2, 0, L"x"), "No error information is available.");
  EXPECT_EQ(Shown(2, 1034, L"C:\\a.ocx 7F"), "The control could not be registered: C:\\a.ocx 7F");
  EXPECT_EQ(Shown(1, 1032, L"x"), "Warning '1032'.  No further information is available.");
}

TEST(ReportTexts, ALogLineIsFourFields) {
  EXPECT_EQ(ToUtf8(LogLine(MString(L"T"), 2, 1047, MString(L"C:\\a b")).View()), "T\t2\t1047\tC:\\a b\r\n");
}

}  // namespace
