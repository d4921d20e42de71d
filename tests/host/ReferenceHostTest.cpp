// What the reference host answers from its settings, and how it keeps what is reported.
#include "host/ReferenceHost.h"

#include <gtest/gtest.h>

#include "engine/ProductKind.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Texts.h"

namespace {

constexpr wchar_t kFolder[] = L"C:\\LumenReferenceHost";

class Host : public testing::Test {
 protected:
  testing_files::CleanDirectory folder{kFolder};
  const WideString file = WideString(kFolder) + L"\\host.settings";
  ReferenceHost host{product_kind::Plugin};
};

TEST_F(Host, AnswersFromTheSettings) {
  testing_files::WriteWhole(file,
                            "\xEF\xBB\xBFHost { ActiveX a.ocx help.exe; Debugger yes; UpdateMode 0;"
                            " UpdateDialog { message \"two words\"; size 300 200; autoUpdateMode 1; }; };");
  ASSERT_TRUE(host.ReadSettings(file.c_str()));
  MString control;
  MString helper;
  host.GetBrowserPaths(&control, &helper);
  EXPECT_EQ(Text(control) + "|" + Text(helper), "a.ocx|help.exe");
  EXPECT_EQ(host.GetFlags(), host_flag::Plugin);
  EXPECT_EQ(host.SettingNumber(L"Host.UpdateMode", 3), 0u);
  SettingsTree data;
  ASSERT_TRUE(host.GetUpdateDialogData(&data));
  EXPECT_EQ(Text(FindSetting(&data, L"message")->values->name), "two words");
  EXPECT_EQ(Text(FindSetting(&data, L"size")->values->next->name), "200");
}

TEST_F(Host, KeepsReportsInMemoryAndInAFile) {
  const WideString path = WideString(kFolder) + L"\\host.log";
  ASSERT_TRUE(host.Log().OpenFile(path.c_str()));
  EXPECT_FALSE(host.IsRestartRequired());
  host.ReportMessage(0, 1, 1015, L"C:\\a 20");
  host.Tell(Severity::MustTell, ReportCode::SystemFileQueued, L"C:\\b");
  EXPECT_TRUE(host.IsRestartRequired());
  EXPECT_EQ(host.Log().Code(1), 1047u);
  EXPECT_EQ(host.Log().Severity(7), 0u) << "past the end";
  MString text;
  EXPECT_EQ(Text(*host.Log().Text(&text, 0)), "C:\\a 20");
  const std::string log = testing_files::ReadWhole(path);
  EXPECT_NE(log.find("Z\t1\t1015\tC:\\a 20\tA file could not be deleted: C:\\a 20\r\n"), std::string::npos) << log;
  EXPECT_EQ(Text(*host.Log().Format(&text, &host, 2, 1034, L"x", 0)),
            "The ActiveX control for Lumen Player could not be registered.");
}

}  // namespace
