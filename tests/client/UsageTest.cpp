// What is wrong with a command line is told without a broker: here none is registered, so a command that tried to
// activate one would end with another code.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/BrokerProcess.h"
#include "tests/support/TestFiles.h"

namespace {

class Usage : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(broker_process::Register());
    ASSERT_EQ(broker_process::RunToEnd(Program(L"LumenHost.exe") + L" -unregister activex"), 0u);
  }
  static void TearDownTestSuite() { EXPECT_TRUE(broker_process::Register()); }

  static WideString Program(const wchar_t* name) {
    return L"\"" + broker_process::BuildFolder() + L"\\bin\\" + name + L"\"";
  }
  // The exit code of lumenctl, and what it says into `said`.
  static DWORD Run(const std::string& arguments, std::string& said) {
    return broker_process::RunToEnd(Program(L"lumenctl.exe") + L" " + FromUtf8(arguments), &said);
  }

  testing_files::CleanDirectory folder{L"C:\\lumen usage"};
};

TEST_F(Usage, EveryArgumentIsLookedAtBeforeTheBrokerIsActivated) {
  const struct {
    const char* arguments;
    DWORD code;
    const char* says;
  } rows[] = {
      {"nothing", 2, "no such command"},
      {"stat --what a", 2, "unknown option --what"},
      {"read a --chunk 0", 2, "--offset, --count and --chunk want numbers"},
      {"read a --offset 1 --count 2 --chunk 3", 3, "cannot be activated"},
      {"write a", 2, "exactly one of --text, --hex and --from is wanted"},
      {"write a --from \"C:\\none here\"", 2, "cannot read C:\\none here"},
      {"shortcut internet a b c --auth C:\\windows\\win.ini", 5, "--auth and --strings name files"},
      {"open-dialog All", 2, "filters come as a name and a pattern each"},
      {"save-dialog All *.* --owner 0x10a --flags 2", 3, "cannot be activated"},
      {"open-dialog -h", 0, "--multiple"},
  };
  for (const auto& row : rows) {
    std::string said;
    EXPECT_EQ(Run(row.arguments, said), row.code) << row.arguments;
    EXPECT_NE(said.find(row.says), std::string::npos) << row.arguments << ": " << said;
  }
}

TEST_F(Usage, AnAccountIsReadToItsEndBeforeItsFirstStep) {
  const WideString account = folder.Path() + L"\\a.account";
  const std::string run = "run \"" + ToUtf8(account) + "\"";
  std::string said;
  testing_files::WriteWhole(account, "S_OK a :: stat C:\\windows\nS_OK b :: read a --offset x\n");
  EXPECT_EQ(Run(run, said), 2u);
  EXPECT_NE(said.find("line 2: --offset, --count and --chunk want numbers"), std::string::npos) << said;
  testing_files::WriteWhole(account, "S_OK a :: stat C:\\windows\nS_OK b :: write a --from C:\\made-by-then\n");
  EXPECT_EQ(Run(run, said), 3u) << "a file to read may be the work of an earlier step";
}

}  // namespace
