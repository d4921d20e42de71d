// Preferences, small services and shortcuts, on the real registry, real drives and real files.
#include <windows.h>

#include <gtest/gtest.h>
#include <shlobj.h>

#include "broker/CoLumenBrokerServer.h"
#include "engine/ProductKeys.h"
#include "engine/Registry.h"
#include "tests/fakes/InternetShortcutFake.h"
#include "tests/support/ByteArray.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestFiles.h"

namespace {

constexpr HRESULT kRefused = static_cast<HRESULT>(0x80010010);

class Services : public testing::Test {
 protected:
  Services() { Clear(); }
  ~Services() override { Clear(); }
  static void Clear() { (void)DeleteKeyTree(HKEY_CURRENT_USER, L"Software\\Halcyonics"); }
  static RegistryKey Preferences() { return CreateKey(HKEY_CURRENT_USER, kPlayerKey, KEY_ALL_ACCESS); }

  ComInitializer apartment;
  ComPtr<ILumenBroker6> broker = Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr));
};

std::string g_foundByRemoval = "not asked";
LSTATUS WINAPI RefuseRemoval(HKEY key, LPCSTR name) {
  g_foundByRemoval = ReadText(key, name).value_or("(none)");
  return ERROR_ACCESS_DENIED;
}

TEST_F(Services, ThePendingVersionIsGivenBlankedAndTakenAway) {
  BString version;
  EXPECT_EQ(broker->BrokerPrefDeleteLumenPlayerVersion(), E_FAIL) << "no key at all";
  ASSERT_EQ(WriteText(Preferences().Get(), "LumenPlayerVersion", "28.0.0.1"), 0);
  EXPECT_EQ(broker->BrokerPrefGetLumenPlayerVersion(version.Receive()), S_OK);
  EXPECT_EQ(broker->BrokerPrefGetAndDeleteLumenPlayerVersion(version.Receive()), S_OK);
  EXPECT_EQ(ToUtf8(version.View()), "28.0.0.1");
  EXPECT_EQ(broker->BrokerPrefGetAndDeleteLumenPlayerVersion(version.Receive()), E_FAIL);
  EXPECT_EQ(version.Get(), nullptr);
  EXPECT_EQ(broker->BrokerPrefDeleteLumenPlayerVersion(), S_OK) << "blanking makes it again, so removal works";
  // One that cannot be removed is at least empty afterwards.
  ASSERT_EQ(WriteText(Preferences().Get(), "LumenPlayerVersion", "28.0.0.1"), 0);
  const ImportHook hook(GetModuleHandleW(nullptr), "RegDeleteValueA", RefuseRemoval);
  EXPECT_EQ(broker->BrokerPrefDeleteLumenPlayerVersion(), E_FAIL);
  EXPECT_EQ(g_foundByRemoval, "");
}

TEST_F(Services, DrivesControllersAndTheScreenSaver) {
  wchar_t there[] = L"c:\\some\\path", missing[] = L"Y:";
  EXPECT_EQ(broker->BrokerIsDriveAvailable(there), S_OK);
  EXPECT_EQ(broker->BrokerIsDriveAvailable(missing), S_FALSE);
  ULONG count = 77;
  EXPECT_EQ(broker->BrokerGetDirectInputCount(&count), S_OK);
  EXPECT_LT(count, 77u);
  UINT before = 0, after = 0;
  SystemParametersInfoW(SPI_GETSCREENSAVETIMEOUT, 0, &before, 0);
  SystemParametersInfoW(SPI_SETSCREENSAVETIMEOUT, 300, nullptr, 0);
  EXPECT_EQ(broker->BrokerDelayScreensaver(), S_OK);
  SystemParametersInfoW(SPI_GETSCREENSAVETIMEOUT, 0, &after, 0);
  EXPECT_EQ(after, 300u);
  SystemParametersInfoW(SPI_SETSCREENSAVETIMEOUT, 0, nullptr, 0);
  EXPECT_EQ(broker->BrokerDelayScreensaver(), E_FAIL);
  SystemParametersInfoW(SPI_SETSCREENSAVETIMEOUT, before, nullptr, 0);
}

std::string ReadBytes(const char* name) {
  return testing_files::ReadWhole(WidenAscii(std::string(LUMEN_SOURCE_DIR) + "/tests/delivery/anchor/" + name));
}

class Shortcuts : public Services {
 protected:
  static WideString Cache() { return testing_files::Folder(CSIDL_APPDATA) + L"\\Corva\\Lumen Player\\Icon Cache"; }
  static WideString Menu(const wchar_t* name) { return testing_files::Folder(CSIDL_PROGRAMS) + L"\\" + name; }
  HRESULT Make(const wchar_t* name, const wchar_t* address, const WideString& iconPath, const std::string& granted,
               const std::string& proof, ULONG flags) {
    return broker->BrokerCreateInternetShortcut(BString(name).Get(), BString(address).Get(),
                                                BString(WideView(iconPath)).Get(), ByteArray(proof).Get(),
                                                ByteArray(granted).Get(), flags);
  }
  ~Shortcuts() override {
    for (const wchar_t* const name : {L"My Game.lnk", L"My Game (2).lnk"}) DeleteFileW(Menu(name).c_str());
  }
  const std::string strings = ReadBytes("shortcut.content");
  const std::string message = ReadBytes("shortcut.p7m");
  const wchar_t* const url = L"https://www.corva.example/games/my-game";
  const WideString icon = Cache() + L"\\My Game (2).ico";
};

TEST_F(Shortcuts, AnEntitledShortcutIsARealLinkToTheBrowser) {
  ASSERT_EQ(Make(L"My Game", url, icon, strings, message, 2), S_OK);
  ComPtr<IShellLinkW> link;
  ComPtr<IPersistFile> file;
  ASSERT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                             reinterpret_cast<void**>(link.GetAddressOf())),
            S_OK);
  ASSERT_EQ(link.As(&file), S_OK);
  ASSERT_EQ(file->Load(Menu(L"My Game.lnk").c_str(), STGM_READ), S_OK);
  wchar_t arguments[MAX_PATH] = {}, place[MAX_PATH] = {}, program[MAX_PATH] = {};
  int index = 7;
  EXPECT_EQ(link->GetArguments(arguments, MAX_PATH), S_OK);
  EXPECT_EQ(link->GetIconLocation(place, MAX_PATH, &index), S_OK);
  EXPECT_EQ(link->GetPath(program, MAX_PATH, nullptr, 0), S_OK);
  EXPECT_EQ(ToUtf8(arguments) + ToUtf8(place) + std::to_string(index), ToUtf8(url) + ToUtf8(icon) + "0");
  EXPECT_TRUE(WideView(program).ends_with(L".exe")) << ToUtf8(program);
  EXPECT_EQ(Make(L"My Game", url, icon, strings, message, 2), S_OK);
  EXPECT_TRUE(testing_files::Exists(Menu(L"My Game (2).lnk"))) << "one that is there stays";
  EXPECT_EQ(Make(L"My Game", url, icon, strings, message, 8), S_OK) << "a pin without its place makes nothing";
}

TEST_F(Shortcuts, EveryRefusalAnswersAlike) {
  std::string changedStrings = strings;
  changedStrings[0] = '[';
  std::string changedMessage = message;
  changedMessage[changedMessage.size() / 2] ^= 1;
  for (const HRESULT refused :
       {Make(L"", url, icon, strings, message, 2), Make(L"My Game", url, icon, strings, message, 0),
        Make(L"..\\a", url, icon, strings, message, 2),
        Make(L"Other", url, Cache() + L"\\Other.ico", strings, message, 2),
        Make(L"My Game", L"https://evil.example/", icon, strings, message, 2),
        Make(L"My Game", L"ftp://a/", icon, strings, message, 2),
        Make(L"My Game", url, L"C:\\My Game.ico", strings, message, 2),
        Make(L"My Game", url, icon, changedStrings, message, 2),
        Make(L"My Game", url, icon, strings, changedMessage, 2), Make(L"My Game", url, icon, strings, "", 2)}) {
    EXPECT_EQ(refused, kRefused);
  }
  EXPECT_FALSE(testing_files::Exists(Menu(L"My Game.lnk")));
}

// The clock that the broker reads, which a hook puts in the place of the platform's.
DWORD g_tick = 0;
DWORD WINAPI Tick() {
  return g_tick;
}

class DesktopShortcuts : public Shortcuts {
 protected:
  static constexpr const wchar_t* kRedirector =
      L"https://www.corva.example/cn/lumenservice/shortcut/shortcutredirect/?url=";
  DesktopShortcuts() { g_tick += 100000; }  // far from the calls of the test before
  ~DesktopShortcuts() override {
    for (const wchar_t* const name : {L"My_Game.url", L"My_Game (2).url"}) DeleteFileW(Desktop(name).c_str());
    DeleteFileW(Menu(L"My_Game.lnk").c_str());
  }
  static WideString Desktop(const wchar_t* name) {
    return testing_files::Folder(CSIDL_DESKTOPDIRECTORY) + L"\\" + name;
  }
  HRESULT MakeOnDesktop(DWORD later, ULONG flags = 1, const wchar_t* name = L"My_Game",
                        const WideString& address = WideString(kRedirector) + L"x") {
    g_tick += later;
    return broker->BrokerCreateDesktopShortcut(BString(name).Get(), BString(WideView(address)).Get(),
                                               BString(L"C:\\game.ico").Get(), flags);
  }
  shell_fakes::Registered<shell_fakes::InternetShortcut> shortcuts{shell_fakes::kInternetShortcut};
  ImportHook clock{GetModuleHandleW(nullptr), "GetTickCount", Tick};
};

TEST_F(DesktopShortcuts, AreRealFilesThatLeadToTheRedirectorAndComeOneInThreeSeconds) {
  ASSERT_EQ(MakeOnDesktop(0, 1 | 2), S_OK);
  const std::string file = testing_files::ReadWhole(Desktop(L"My_Game.url"));
  for (const std::string& line :
       {"URL=" + ToUtf8(kRedirector) + "x", std::string("IconFile=C:\\game.ico"), std::string("IconIndex=0")}) {
    EXPECT_NE(file.find(line), std::string::npos) << file;
  }
  EXPECT_TRUE(testing_files::Exists(Menu(L"My_Game.lnk"))) << "the start menu's is named like a link";
  EXPECT_EQ(MakeOnDesktop(3000), kRefused);
  EXPECT_EQ(MakeOnDesktop(3000), kRefused) << "the refused call began the wait anew";
  ASSERT_EQ(MakeOnDesktop(3001), S_OK);
  EXPECT_TRUE(testing_files::Exists(Desktop(L"My_Game (2).url")));
}

}  // namespace
