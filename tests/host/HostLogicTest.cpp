// What the host decides without the system: its command line and which report has which text.
#include <gtest/gtest.h>

#include "engine/ProductKind.h"
#include "engine/ReportCode.h"
#include "host/CommandLine.h"
#include "host/ReportTexts.h"

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
      {{"/embedding"}, HostCommand::Broker, 0, 0, ""},
      {{"-log", "a.log", "-unregister", "PepperPlugin"}, HostCommand::Unregister, Pepper, 0, "l"},
      {{"-install", "activex", "plugin", "-silent"}, HostCommand::Install, ActiveX | Plugin, 0, "s"},
      {{"-what-if", "-Uninstall", "plugin"}, HostCommand::Uninstall, Plugin, 0, "w"},
      {{"-install", "plugin", "-console"}, HostCommand::Install, Plugin, 0, ""},
      {{"-status", "-language", "PT-br"}, HostCommand::Status, 0, 1046, ""},
      {{"-gallery", "29", "-log", "a.log"}, HostCommand::Gallery, 0, 29, "l"},
  };
  for (const auto& row : rows) {
    const HostCommandLine line = ParseHostCommandLine(row.words);
    SCOPED_TRACE(testing::PrintToString(row.words));
    EXPECT_EQ(line.error, "");
    EXPECT_EQ(line.command, row.command);
    EXPECT_EQ(line.kinds, row.kinds);
    EXPECT_EQ(line.language, row.language);
    const std::string marks = std::string(line.silent ? "s" : "") + (line.whatIf ? "w" : "") +
                              (line.InWindow() ? "W" : "") + (line.logFile == "a.log" ? "l" : line.logFile);
    EXPECT_EQ(marks, row.marks);
  }
  const std::vector<std::string> refused[] = {{"-install", "plugin", "nonsense"},
                                              {"-check", "plugin", "activex"},
                                              {"-status", "-silent"},
                                              {"-silent"},
                                              {"-language"},
                                              {"-install", "plugin", "-language", "1053"}};
  for (const auto& words : refused) EXPECT_NE(ParseHostCommandLine(words).error, "") << testing::PrintToString(words);
}

TEST(ReportTexts, OnlyWhatTheUserMustBeToldOfHasATextOfTheWindow) {
  uint32_t known = 0;
  for (uint32_t code = 1; code <= static_cast<uint32_t>(ReportCode::PlayerNotRemoved); ++code) {
    if (TextOfCode(code) != nullptr) ++known;
    EXPECT_EQ(StringIdOf(1, code), 54u) << code;
    EXPECT_NE(HostText(StringIdOf(2, code)), nullptr) << code;
  }
  EXPECT_EQ(known, 125u);
  EXPECT_EQ(ToUtf8(Meaning(1, 1015, L"C:\\a 20").View()), "A file could not be deleted: C:\\a 20");
}

}  // namespace
