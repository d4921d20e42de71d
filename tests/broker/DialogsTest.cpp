// The dialogs through the real server, on a real screen, worked by the hand of a user; and whose windows may own them.
#include <windows.h>

#include <commdlg.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "broker/DialogOwner.h"
#include "tests/removal/StartedProgram.h"
#include "tests/support/BrokerProcess.h"
#include "tests/support/ByteArray.h"
#include "tests/support/DialogDriver.h"
#include "tests/support/TestDesktop.h"

namespace {

using namespace testing_files;  // NOLINT(google-build-using-namespace): a test's own vocabulary

constexpr HRESULT kCancelled = static_cast<HRESULT>(0x800704C7);
TestDesktop* g_desktop = nullptr;
[[maybe_unused]] const auto* const g_registered =
    testing::AddGlobalTestEnvironment(g_desktop = new TestDesktop);  // owned by googletest

const WideString kTrusted = testing_files::Folder(CSIDL_PROGRAM_FILES) + L"\\Lumen Owner Test";

// The bytes of a text with its terminator.
std::string FilterBytes(WideView text) {
  const WideString terminated(text);
  const auto* const bytes = reinterpret_cast<const char*>(terminated.c_str());
  return {bytes, (terminated.size() + 1) * sizeof(wchar_t)};
}

// What a dialog gave, joined by "|"; "(empty)" without a list. Clears it.
std::string TakeEntries(VARIANT& entries) {
  std::string chosen = entries.vt == (VT_ARRAY | VT_VARIANT) ? "" : "(empty)";
  for (ULONG i = 0; chosen != "(empty)" && i < entries.parray->rgsabound[0].cElements; ++i) {
    const VARIANT& element = static_cast<const VARIANT*>(entries.parray->pvData)[i];
    chosen += (i == 0 ? "" : "|") + (element.vt == VT_BSTR ? ToUtf8(element.bstrVal) : "(no text)");
  }
  VariantClear(&entries);
  return chosen;
}

ULONG ValueOf(HWND window) {
  return static_cast<ULONG>(reinterpret_cast<uintptr_t>(window));
}

TEST(DialogOwner, ByTheProgramThatOwnsTheWindow) {
  const struct {
    const char* why;
    WideString folder;
    const wchar_t* name;
    bool allowed;
  } rows[] = {
      {"an installed program", kTrusted, L"player.exe", true},
      {"the folder of 32-bit programs", testing_files::Folder(CSIDL_PROGRAM_FILESX86) + L"\\Lumen Owner Test",
       L"player.exe", true},
      {"a folder beside it", testing_files::Folder(CSIDL_PROGRAM_FILES) + L" Too", L"player.exe", false},
      {"anywhere else", L"C:\\lumen-owner", L"player.exe", false},
      {"a browser's name anywhere", L"C:\\lumen-owner", L"MicrosoftEdge.exe", true},
      {"its content process", L"C:\\lumen-owner", L"microsoftedgecp.exe", true},
      {"its early name", L"C:\\lumen-owner", L"SPARTAN.EXE", true},
      {"its other early name", L"C:\\lumen-owner", L"spartan_edge.exe", true},
      {"a name that ends like one", L"C:\\lumen-owner", L"notspartan.exe", false},
      {"a folder named like one", L"C:\\spartan.exe", L"player.exe", false},
  };
  for (const auto& row : rows) {
    const CleanDirectory directory(row.folder);
    std::optional<StartedProgram> owner(std::in_place, row.folder + L"\\" + row.name, L"window");
    const HWND window = owner->Window();
    ASSERT_NE(window, nullptr) << row.why;
    EXPECT_EQ(IsDialogOwnerAllowed(ToWindow(ValueOf(window))), row.allowed) << row.why;
    owner.reset();
    EXPECT_FALSE(IsDialogOwnerAllowed(window)) << row.why << ", gone";
  }
  EXPECT_FALSE(IsDialogOwnerAllowed(nullptr));
  EXPECT_EQ(ToWindow(0x80010002u), reinterpret_cast<HWND>(static_cast<intptr_t>(-0x7FFEFFFE)));
}

class Dialogs : public BrokerSuiteTest {
 protected:
  void SetUp() override {
    BrokerProcessTest::SetUp();
    for (const wchar_t* const name : {L"one.txt", L"two.txt"}) WriteWhole(In(name), "content");
  }
  [[nodiscard]] WideString In(const wchar_t* name) const { return directory.Path() + L"\\" + name; }

  // Makes the call that shows a dialog while `act` is its user.
  template <class Call>
  static auto With(const DialogDriver::Act& act, Call call) {
    DialogDriver user(g_desktop->Handle(), act);
    const auto result = call();
    EXPECT_TRUE(user.Finish()) << "the dialog did not come or lacks what a user works it by";
    return result;
  }
  // The entries of an open dialog, joined by "|".
  HRESULT Open(const DialogDriver::Act& act, std::string& chosen) {
    VARIANT entries;
    VariantInit(&entries);
    const HRESULT result = With(act, [&] {
      return broker->BrokerOpenDialog(ValueOf(owner.Window()), 0, 0, nullptr, FOS_ALLOWMULTISELECT, &entries);
    });
    chosen = TakeEntries(entries);
    return result;
  }
  HRESULT Save(const DialogDriver::Act& act, const wchar_t* initial = L"") {
    return With(act, [&] {
      return broker->BrokerSaveDialog2(ValueOf(owner.Window()), const_cast<wchar_t*>(initial), 0, 0, nullptr, 0,
                                       &cookie, path.Receive());
    });
  }
  static DialogDriver::Act Choose(const WideString& name) {
    return [name](DialogDriver& user) {
      user.Type(name);
      user.Press(IDOK);
    };
  }
  static void Cancel(DialogDriver& user) { user.Press(IDCANCEL); }

  CleanDirectory directory{L"C:\\lumen dialogs"};
  CleanDirectory programs{kTrusted};
  StartedProgram owner{kTrusted + L"\\player.exe", L"window"};
  ULONG cookie = 0;
  BString path;
};

TEST_F(Dialogs, OpenGivesNoneOneOrSeveral) {
  std::string chosen;
  EXPECT_EQ(Open(Choose(In(L"two.txt")), chosen), S_OK) << "one of possibly several is one all the same";
  EXPECT_EQ(chosen, ToUtf8(In(L"two.txt")));
  EXPECT_EQ(Open(Choose(L"\"" + In(L"one.txt") + L"\" \"" + In(L"two.txt") + L"\""), chosen), S_OK);
  EXPECT_EQ(chosen, "C:\\lumen dialogs\\|one.txt|two.txt");
  const auto chooseNothing = [](DialogDriver& user) {
    Choose(L"")(user);
    Cancel(user);
  };
  EXPECT_EQ(Open(chooseNothing, chosen), kCancelled) << "nothing typed is no choice; the dialog stays";
  EXPECT_EQ(chosen, "(empty)");
}

// Every row of refusals has its twin in the first one, which shows the dialog.
TEST_F(Dialogs, ArgumentsAreTestedBeforeAnythingIsShown) {
  const CleanDirectory elsewhere(L"C:\\lumen-owner");
  const StartedProgram stranger(L"C:\\lumen-owner\\player.exe", L"window");
  const std::string good = FilterBytes(L"All\\0*.*\\0");
  const auto size = static_cast<ULONG>(good.size());
  SAFEARRAYBOUND bounds[2] = {{size, 0}, {1, 0}};
  const ByteArray fits(good), flat(SafeArrayCreate(VT_UI1, 2, bounds));
  const ULONG window = ValueOf(owner.Window());
  const struct {  // NOLINT(clang-analyzer-optin.performance.Padding): in the order of the call
    const char* why;
    ULONG window;
    ULONG pairs;
    ULONG length;
    SAFEARRAY* array;
    HRESULT wanted = E_INVALIDARG;
  } rows[] = {
      {"as it should be", window, 1, size, fits.Get(), kCancelled},
      {"no filters", window, 0, 0, nullptr, kCancelled},
      {"no pairs, and an array", window, 0, 0, fits.Get()},
      {"no pairs, and a length", window, 0, size, nullptr},
      {"too many pairs to count", window, 0x10000000, size, fits.Get()},
      {"no length", window, 1, 0, fits.Get()},
      {"no array", window, 1, size, nullptr},
      {"two dimensions", window, 1, size, flat.Get()},
      {"another length", window, 1, size - 2, fits.Get()},
      {"a pair too many", window, 2, size, fits.Get()},
      {"no window", 0, 0, 0, nullptr},
      {"a window of a program from elsewhere", ValueOf(stranger.Window()), 0, 0, nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    VARIANT entries;
    VariantInit(&entries);
    const auto open = [&] {
      return broker->BrokerOpenDialog(row.window, row.pairs, row.length, row.array, 0, &entries);
    };
    const auto save = [&] {
      return broker->BrokerSaveDialog2(row.window, const_cast<wchar_t*>(L"a"), row.pairs, row.length, row.array, 0,
                                       &cookie, path.Receive());
    };
    const bool shows = row.wanted == kCancelled;
    EXPECT_EQ(shows ? With(Cancel, open) : open(), row.wanted);
    EXPECT_EQ(entries.vt, VT_EMPTY);
    EXPECT_EQ(shows ? With(Cancel, save) : save(), row.wanted);
    EXPECT_EQ(cookie, 0u);
    EXPECT_EQ(path.Get(), nullptr);
  }
}

TEST_F(Dialogs, SavingMakesTheFileAtTheFirstWrite) {
  const WideString target = In(L"made.exe");
  ASSERT_EQ(Save(Choose(target)), S_OK);
  EXPECT_EQ(path.View(), WideView(target));
  EXPECT_EQ(cookie, 1u);
  ULONG count = 0;
  ByteArray data(nullptr);
  EXPECT_EQ(broker->BrokerReadFile(cookie, 1, &count, data.Receive()), E_INVALIDARG);
  EXPECT_FALSE(Exists(target)) << "the dialog's OK makes nothing";
  const std::string image = ProgramImage();
  EXPECT_EQ(broker->BrokerWriteFile(cookie, ByteArray(image).Get(), &count), S_OK)
      << "outside every folder of the policy, and a program: the user named it";
  EXPECT_EQ(count, image.size());
  EXPECT_EQ(broker->BrokerReadFile(cookie, 1, &count, data.Receive()), E_ACCESSDENIED) << "opened for writing alone";
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(ReadWhole(target), image);
}

TEST_F(Dialogs, SavingMakesTheFileAtTheFirstSeekAsWellAndNotByClosing) {
  ASSERT_EQ(Save(Choose(In(L"never.txt"))), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_FALSE(Exists(In(L"never.txt")));
  WideString offered;
  const auto overwrite = [&](DialogDriver& user) {
    offered = user.FileName();
    Choose(In(L"one.txt"))(user);
  };
  ASSERT_EQ(Save(overwrite, L"suggestion.txt"), S_OK) << "without FOS_OVERWRITEPROMPT nobody asks";
  EXPECT_EQ(ToUtf8(offered), "suggestion.txt");
  EXPECT_EQ(ReadWhole(In(L"one.txt")), "content");
  ULONG position = 0, count = 0;
  EXPECT_EQ(broker->BrokerSetFilePointer(cookie, 2, FILE_BEGIN, &position), S_OK);
  EXPECT_EQ(position, 2u);
  EXPECT_EQ(broker->BrokerWriteFile(cookie, ByteArray("ab").Get(), &count), S_OK);
  EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  EXPECT_EQ(ReadWhole(In(L"one.txt")), std::string("\0\0ab", 4)) << "made anew, not opened";
}

}  // namespace
