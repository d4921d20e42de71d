// The print dialog of the broker's own process, worked by the hand of a user, and its device context.
#include <windows.h>

#include <commdlg.h>
#include <gtest/gtest.h>

#include "tests/support/BrokerProcess.h"
#include "tests/support/DialogDriver.h"
#include "tests/support/TestDesktop.h"
#include "tests/support/TestPrinter.h"

namespace {

TestDesktop* g_desktop = nullptr;
[[maybe_unused]] const auto* const g_registered =
    testing::AddGlobalTestEnvironment(g_desktop = new TestDesktop);  // owned by googletest

using PrintDialog = BrokerProcessTest;

TEST_F(PrintDialog, ChoiceGivesADeviceContextOfThePrinterAndCancelNothing) {
  ASSERT_EQ(test_printer::Install(WidenAscii(LUMEN_SOURCE_DIR "/tests/data/test-printer.ppd"), L"/dev/null"), 0u);
  ULONG from = 2, to = 7, flags = PD_RETURNDC | PD_ALLPAGES, dc = 0, value = 0;
  for (const int button : {IDCANCEL, IDOK}) {
    DialogDriver user(g_desktop->Handle(), [button](DialogDriver& driver) { driver.Press(button); });
    EXPECT_EQ(broker->BrokerPrintDialog(0, &from, &to, &flags, &dc), button == IDOK ? S_OK : E_FAIL);
    EXPECT_TRUE(user.Finish()) << "the dialog did not come or lacks the button";
    EXPECT_EQ(from, 2u);
    EXPECT_EQ(to, 7u);
    EXPECT_EQ(dc != 0, button == IDOK);
  }
  EXPECT_EQ(broker->BrokerGetDeviceCaps(dc, TECHNOLOGY, &value), S_OK);
  EXPECT_EQ(value, static_cast<ULONG>(DT_RASPRINTER));
  for (const ULONG gone : {1u, 0u}) {
    EXPECT_EQ(broker->BrokerDeleteDC(dc, &value), S_OK) << "the result is in the argument";
    EXPECT_EQ(value, gone);
  }
}

}  // namespace
