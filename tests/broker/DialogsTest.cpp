// The file dialogs through the real server, on a real screen, worked by the hand of a user; and whose windows may own
// them.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "broker/DialogOwner.h"
#include "tests/support/BrokerProcess.h"
#include "tests/support/ByteArray.h"
#include "tests/support/DialogDriver.h"
#include "tests/support/FilterText.h"
#include "tests/support/OwnerProcess.h"
#include "tests/support/TestDesktop.h"

namespace {

using namespace testing_files;  // NOLINT(google-build-using-namespace): a test's own vocabulary

constexpr HRESULT kCancelled = static_cast<HRESULT>(0x800704C7);
constexpr ULONG kMultiple = FOS_ALLOWMULTISELECT;
TestDesktop* g_desktop = nullptr;
[[maybe_unused]] const auto* const g_registered =
    testing::AddGlobalTestEnvironment(g_desktop = new TestDesktop);  // owned by googletest

WideString Trusted(const wchar_t* name) {
  return testing_files::Folder(CSIDL_PROGRAM_FILES) + L"\\Lumen Owner Test\\" + name;
}

TEST(DialogOwner, ByTheProgramThatOwnsTheWindow) {
  const struct {
    const char* why;
    WideString image;
    bool allowed;
  } rows[] = {
      {"an installed program", Trusted(L"player.exe"), true},
      {"the folder of 32-bit programs",
       testing_files::Folder(CSIDL_PROGRAM_FILESX86) + L"\\Lumen Owner Test\\player.exe", true},
      {"a folder beside it", testing_files::Folder(CSIDL_PROGRAM_FILES) + L" Too\\player.exe", false},
      {"anywhere else", L"C:\\lumen-owner\\player.exe", false},
      {"a browser's name anywhere", L"C:\\lumen-owner\\MicrosoftEdge.exe", true},
      {"its content process", L"C:\\lumen-owner\\microsoftedgecp.exe", true},
      {"its early name", L"C:\\lumen-owner\\SPARTAN.EXE", true},
      {"its other early name", L"C:\\lumen-owner\\spartan_edge.exe", true},
      {"a name that ends like one", L"C:\\lumen-owner\\notspartan.exe", false},
      {"a folder named like one", L"C:\\spartan.exe\\player.exe", false},
  };
  for (const auto& row : rows) {
    OwnerProcess owner(row.image);
    ASSERT_NE(owner.Window(), nullptr) << row.why;
    EXPECT_EQ(IsDialogOwnerAllowed(owner.Window()), row.allowed) << row.why;
    EXPECT_EQ(IsDialogOwnerAllowed(ToWindow(owner.Value())), row.allowed) << row.why;
    const HWND window = owner.Window();
    owner.End();
    EXPECT_FALSE(IsDialogOwnerAllowed(window)) << row.why << ", gone";
  }
  EXPECT_FALSE(IsDialogOwnerAllowed(nullptr));
  EXPECT_EQ(ToWindow(0x80010002u), reinterpret_cast<HWND>(static_cast<intptr_t>(-0x7FFEFFFE)));
}

class Dialogs : public BrokerSuiteTest {
 protected:
  void SetUp() override {
    BrokerProcessTest::SetUp();
    ASSERT_NE(owner.Window(), nullptr);
    for (const wchar_t* const name : {L"one.txt", L"two.txt", L"three.bin"}) WriteWhole(In(name), "content");
  }
  [[nodiscard]] WideString In(const wchar_t* name) const { return directory.Path() + L"\\" + name; }

  // Calls for an open dialog while `act` is its user. The entries joined by "|".
  HRESULT Open(const DialogDriver::Act& act, std::string& chosen, ULONG flags = 0) {
    DialogDriver user(g_desktop->Handle(), act);
    VARIANT entries;
    VariantInit(&entries);
    const HRESULT result = broker->BrokerOpenDialog(owner.Value(), 0, 0, nullptr, flags, &entries);
    EXPECT_TRUE(user.Finish()) << "the dialog did not come or lacks what a user works it by";
    chosen = TakeEntries(entries);
    return result;
  }
  HRESULT Save(const DialogDriver::Act& act, ULONG& cookie, BString& path, const wchar_t* initial = L"",
               ULONG flags = 0) {
    DialogDriver user(g_desktop->Handle(), act);
    const HRESULT result = broker->BrokerSaveDialog2(owner.Value(), const_cast<wchar_t*>(initial), 0, 0, nullptr, flags,
                                                     &cookie, path.Receive());
    EXPECT_TRUE(user.Finish()) << "the dialog did not come or lacks what a user works it by";
    return result;
  }
  static DialogDriver::Act Choose(const WideString& name) {
    return [name](DialogDriver& user) {
      user.Type(DialogDriver::kFileName, name);
      user.Press(IDOK);
    };
  }
  static void Cancel(DialogDriver& user) { user.Press(IDCANCEL); }

  OwnerProcess owner{Trusted(L"player.exe")};
  CleanDirectory directory{L"C:\\lumen dialogs"};
};

TEST_F(Dialogs, OpenGivesNoneOneOrSeveral) {
  std::string chosen;
  EXPECT_EQ(Open(Choose(In(L"two.txt")), chosen, kMultiple), S_OK) << "one of possibly several is one all the same";
  EXPECT_EQ(chosen, ToUtf8(In(L"two.txt")));
  EXPECT_EQ(Open(Choose(L"\"" + In(L"one.txt") + L"\" \"" + In(L"three.bin") + L"\""), chosen, kMultiple), S_OK);
  EXPECT_EQ(chosen, "C:\\lumen dialogs\\|one.txt|three.bin");
  EXPECT_EQ(Open(Cancel, chosen), kCancelled);
  EXPECT_EQ(chosen, "(empty)");
  const auto pressFirst = [](DialogDriver& user) {
    user.Type(DialogDriver::kFileName, L"");
    user.Press(IDOK);
    user.Press(IDCANCEL);
  };
  EXPECT_EQ(Open(pressFirst, chosen), kCancelled) << "nothing typed is no choice; the dialog stays";
}

// Every row of refusals has its twin in the first one, which shows the dialog.
TEST_F(Dialogs, ArgumentsAreTestedBeforeAnythingIsShown) {
  OwnerProcess stranger(L"C:\\lumen-owner\\player.exe");
  const std::string good = FilterBytes(L"All\\0*.*\\0");
  const std::string unterminated = good.substr(0, good.size() - 2);
  SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(good.size()), 0}, {1, 0}};
  const ByteArray twoDimensions(SafeArrayCreate(VT_UI1, 2, bounds));
  const ByteArray fits(good), openEnded(unterminated), odd(good + "x"), escape(FilterBytes(L"A\\n\\0*.*\\0"));
  const auto size = static_cast<ULONG>(good.size());
  const struct {
    const char* why;
    ULONG window;
    ULONG pairs;
    ULONG length;
    SAFEARRAY* array;
    HRESULT wanted;
  } rows[] = {
      {"as it should be", owner.Value(), 1, size, fits.Get(), kCancelled},
      {"no filters", owner.Value(), 0, 0, nullptr, kCancelled},
      {"no pairs, and an array", owner.Value(), 0, 0, fits.Get(), E_INVALIDARG},
      {"no pairs, and a length", owner.Value(), 0, size, nullptr, E_INVALIDARG},
      {"too many pairs to count", owner.Value(), 0x10000000, size, fits.Get(), E_INVALIDARG},
      {"no length", owner.Value(), 1, 0, fits.Get(), E_INVALIDARG},
      {"no array", owner.Value(), 1, size, nullptr, E_INVALIDARG},
      {"two dimensions", owner.Value(), 1, size, twoDimensions.Get(), E_INVALIDARG},
      {"another length", owner.Value(), 1, size - 2, fits.Get(), E_INVALIDARG},
      {"a pair too many", owner.Value(), 2, size, fits.Get(), E_INVALIDARG},
      {"an odd length", owner.Value(), 1, size + 1, odd.Get(), E_INVALIDARG},
      {"no terminator", owner.Value(), 1, size - 2, openEnded.Get(), E_INVALIDARG},
      {"an unknown escape", owner.Value(), 1, escape.Get()->rgsabound[0].cElements, escape.Get(), E_INVALIDARG},
      {"no window", 0, 0, 0, nullptr, E_INVALIDARG},
      {"a window of a program from elsewhere", stranger.Value(), 0, 0, nullptr, E_INVALIDARG},
  };
  for (const auto& row : rows) {
    std::unique_ptr<DialogDriver> user;
    const auto expectDialog = [&] {
      if (row.wanted == kCancelled) user = std::make_unique<DialogDriver>(g_desktop->Handle(), Cancel);
    };
    VARIANT entries;
    VariantInit(&entries);
    expectDialog();
    EXPECT_EQ(broker->BrokerOpenDialog(row.window, row.pairs, row.length, row.array, 0, &entries), row.wanted)
        << "open: " << row.why;
    EXPECT_EQ(entries.vt, VT_EMPTY) << row.why;
    EXPECT_TRUE(!user || user->Finish()) << row.why;
    expectDialog();
    ULONG cookie = 0;
    BString path;
    EXPECT_EQ(broker->BrokerSaveDialog2(row.window, const_cast<wchar_t*>(L"a"), row.pairs, row.length, row.array, 0,
                                        &cookie, path.Receive()),
              row.wanted)
        << "save: " << row.why;
    EXPECT_EQ(cookie, 0u) << row.why;
    EXPECT_EQ(path.Get(), nullptr) << row.why;
    EXPECT_TRUE(!user || user->Finish()) << row.why;
  }
}

TEST_F(Dialogs, SavingMakesTheFileAtTheFirstWrite) {
  ULONG cookie = 0;
  BString path;
  const WideString target = In(L"made.exe");
  ASSERT_EQ(Save(Choose(target), cookie, path), S_OK);
  EXPECT_EQ(path.View(), WideView(target));
  EXPECT_EQ(cookie, 1u);
  EXPECT_FALSE(Exists(target)) << "the dialog's OK makes nothing";
  ULONG count = 0;
  ByteArray data(nullptr);
  EXPECT_EQ(broker->BrokerReadFile(cookie, 1, &count, data.Receive()), E_INVALIDARG);
  EXPECT_FALSE(Exists(target));
  const std::string image = ProgramImage();
  EXPECT_EQ(broker->BrokerWriteFile(cookie, ByteArray(image).Get(), &count), S_OK)
      << "outside every folder of the policy, and a program: the user named it";
  EXPECT_EQ(count, image.size());
  EXPECT_EQ(broker->BrokerReadFile(cookie, 1, &count, data.Receive()), E_ACCESSDENIED) << "opened for writing alone";
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(ReadWhole(target), image);
}

TEST_F(Dialogs, SavingMakesTheFileAtTheFirstSeekAsWell) {
  ULONG cookie = 0, position = 0, count = 0;
  BString path;
  ASSERT_EQ(Save(Choose(In(L"one.txt")), cookie, path), S_OK) << "without FOS_OVERWRITEPROMPT nobody asks";
  EXPECT_EQ(ReadWhole(In(L"one.txt")), "content");
  EXPECT_EQ(broker->BrokerSetFilePointer(cookie, 2, FILE_BEGIN, &position), S_OK);
  EXPECT_EQ(position, 2u);
  EXPECT_EQ(broker->BrokerWriteFile(cookie, ByteArray("ab").Get(), &count), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(ReadWhole(In(L"one.txt")), std::string("\0\0ab", 4)) << "made anew, not opened";
}

TEST_F(Dialogs, ClosingWhatWasNeverWrittenLeavesNothing) {
  ULONG cookie = 0;
  BString path;
  ASSERT_EQ(Save(Choose(In(L"never.txt")), cookie, path), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_FALSE(Exists(In(L"never.txt")));
  EXPECT_EQ(Save(Cancel, cookie, path), kCancelled);
  EXPECT_EQ(cookie, 0u);
  EXPECT_EQ(path.Get(), nullptr);
}

TEST_F(Dialogs, SavingOffersTheInitialNameAndAsksBeforeOverwriting) {
  ULONG cookie = 0;
  BString path;
  std::string offered;
  const auto overwrite = [&](DialogDriver& user) {
    offered = ToUtf8(user.TextOf(DialogDriver::kFileName));
    user.Type(DialogDriver::kFileName, In(L"two.txt"));
    user.Press(IDOK);
    user.AwaitNext();
    user.Press(IDYES);
  };
  ASSERT_EQ(Save(overwrite, cookie, path, L"suggestion.txt", FOS_OVERWRITEPROMPT), S_OK);
  EXPECT_EQ(offered, "suggestion.txt");
  EXPECT_EQ(ReadWhole(In(L"two.txt")), "content") << "asked, and yet nothing is touched before the first write";
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
}

TEST_F(Dialogs, TheCommandLineOpensAndSavesFromAnInstalledFolder) {
  const WideString program = Trusted(L"lumenctl.exe");
  ASSERT_TRUE(CopyFileW((broker_process::BuildFolder() + L"\\bin\\lumenctl.exe").c_str(), program.c_str(), FALSE));
  const auto run = [&](const WideString& arguments, const DialogDriver::Act& act, std::string& said) {
    DialogDriver user(g_desktop->Handle(), act);
    const DWORD code = broker_process::RunToEnd(L"\"" + program + L"\" " + arguments, &said);
    EXPECT_TRUE(user.Finish()) << said;
    return code;
  };
  std::string said;
  EXPECT_EQ(run(L"open-dialog Texts *.txt All *.* --multiple",
                Choose(L"\"" + In(L"one.txt") + L"\" \"" + In(L"two.txt") + L"\""), said),
            0u);
  EXPECT_NE(said.find("C:\\lumen dialogs\\one.txt\nC:\\lumen dialogs\\two.txt\n"), std::string::npos) << said;
  EXPECT_EQ(run(L"save-dialog --name a.txt --text hello --json", Choose(In(L"saved.txt")), said), 0u);
  EXPECT_NE(said.find("{\"path\":\"C:\\\\lumen dialogs\\\\saved.txt\"}"), std::string::npos) << said;
  EXPECT_EQ(ReadWhole(In(L"saved.txt")), "hello");
  DeleteFileW(program.c_str());
}

TEST_F(Dialogs, OthersAreServedWhileADialogIsUp) {
  std::string chosen;
  broker_process::Client* other = nullptr;
  const auto meanwhile = [&](DialogDriver& user) {
    other = new broker_process::Client;
    user.Press(IDCANCEL);
  };
  EXPECT_EQ(Open(meanwhile, chosen), kCancelled);
  const std::unique_ptr<broker_process::Client> owned(other);
  ASSERT_NE(owned, nullptr);
  EXPECT_TRUE(owned->IsHolding());
  EXPECT_EQ(owned->Finish(), 0u);
}

}  // namespace
