// The print dialog of the broker's own process, worked by the hand of a user, and its device context drawn on from
// here.
#include <windows.h>

#include <commdlg.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/BrokerProcess.h"
#include "tests/support/ByteArray.h"
#include "tests/support/DialogDriver.h"
#include "tests/support/TestDesktop.h"
#include "tests/support/TestPrinter.h"

namespace {

TestDesktop* g_desktop = nullptr;
[[maybe_unused]] const auto* const g_registered =
    testing::AddGlobalTestEnvironment(g_desktop = new TestDesktop);  // owned by googletest

class PrintDialog : public BrokerProcessTest {
 protected:
  static void SetUpTestSuite() {
    BrokerProcessTest::SetUpTestSuite();
    ASSERT_EQ(test_printer::Install(WidenAscii(LUMEN_SOURCE_DIR "/tests/data/test-printer.ppd"), L"/dev/null"), 0u);
  }
  // Shows the dialog and presses `button`, or takes the default printer without it when that is 0.
  HRESULT Choose(int button) {
    if (button == 0) {
      flags |= PD_RETURNDEFAULT;
      return broker->BrokerPrintDialog(0, &from, &to, &flags, &dc);
    }
    DialogDriver user(g_desktop->Handle(), [button](DialogDriver& driver) { driver.Press(button); });
    const HRESULT result = broker->BrokerPrintDialog(0, &from, &to, &flags, &dc);
    EXPECT_TRUE(user.Finish()) << "the dialog did not come or lacks the button";
    return result;
  }
  ULONG Capability(ULONG index) {
    ULONG value = 0;
    EXPECT_EQ(broker->BrokerGetDeviceCaps(dc, index, &value), S_OK);
    return value;
  }

  ULONG from = 2;
  ULONG to = 7;
  ULONG flags = PD_RETURNDC | PD_ALLPAGES;
  ULONG dc = 0;
};

TEST_F(PrintDialog, ChoiceGivesADeviceContextOfThePrinter) {
  ASSERT_EQ(Choose(IDOK), S_OK);
  EXPECT_NE(dc, 0u);
  EXPECT_EQ(from, 2u);
  EXPECT_EQ(to, 7u);
  EXPECT_EQ(Capability(TECHNOLOGY), static_cast<ULONG>(DT_RASPRINTER));
  EXPECT_EQ(Capability(LOGPIXELSX), 300u);
  ULONG gone = 0;
  EXPECT_EQ(broker->BrokerDeleteDC(dc, &gone), S_OK);
  EXPECT_EQ(gone, 1u);
  EXPECT_EQ(broker->BrokerDeleteDC(dc, &gone), S_OK) << "the result is in the argument";
  EXPECT_EQ(gone, 0u);
}

TEST_F(PrintDialog, CancelLeavesTheArgumentsAlone) {
  EXPECT_EQ(Choose(IDCANCEL), E_FAIL);
  EXPECT_EQ(dc, 0u);
  EXPECT_EQ(from, 2u);
  EXPECT_EQ(flags, static_cast<ULONG>(PD_RETURNDC | PD_ALLPAGES));
}

TEST_F(PrintDialog, StructuresAndRefusalsTravelBetweenProcesses) {
  ASSERT_EQ(Choose(0), S_OK);
  VARIANT metrics = {};
  ASSERT_EQ(broker->BrokerGetTextMetrics(dc, &metrics), S_OK);
  ASSERT_EQ(metrics.vt, VT_ARRAY | VT_UI1);
  EXPECT_EQ(ByteArray(metrics.parray).Text().size(), 60u);
  ULONG done = 1, width = 0, height = 0;
  const ByteArray text({"a\0b\0\0\0", 6});
  EXPECT_EQ(broker->BrokerGetTextExtentPoint32W(dc, text.Get(), 8193, &width, &height), E_INVALIDARG);
  EXPECT_EQ(broker->BrokerGetTextExtentPoint32W(dc, text.Get(), 3, &width, &height), E_FAIL);
  EXPECT_EQ(broker->BrokerGetTextExtentPoint32W(dc, text.Get(), 2, &width, &height), S_OK);
  EXPECT_GT(width, 0u);
  EXPECT_EQ(broker->BrokerAddRectangle(dc, nullptr, 0), E_FAIL);
  EXPECT_EQ(broker->BrokerStartPage(0), E_FAIL);
  EXPECT_EQ(broker->BrokerDeleteDC(dc, &done), S_OK);
}

}  // namespace
