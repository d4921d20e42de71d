// Plays a person at the installer's window: InstallerDriver.exe HOST.exe PICTURES SCRIPT
//
// Starts the host on a desktop of its own and does with mouse and keyboard what the script says, a step a line; a step
// that does not come true within a minute ends it with 1. PICTURES is what the files of pictures begin with.
//   host ARGUMENTS   starts the host and waits for its window
//   click ID         the mouse on the middle of a control; click-at X Y on a point of the window's inside
//   focus ID         Tab until that control has the keyboard
//   reach WORDS      Tab until a screen reader says the words of what has the keyboard, then the space bar
//   hear WORDS       a screen reader says the words of a control that is shown
//   key NAME         tab, space or enter
//   see ID...        the controls that are shown are these
//   title TEXT       the window is called this
//   still            nothing moves any more, and the window answers
//   double ID        clicks twice, as impatient people do
//   picture NAME     keeps a picture of a window at rest; glance NAME of one that moves
//   program PATH     starts the program that waits (tests/fakes/WaitingProgram.cpp); close-program ends it
//   close            the close box
//   exit CODE        the host ends with this code
//   say TEXT         a headline
#include <windows.h>

#include <oleacc.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "engine/ComSupport.h"
#include "engine/DllHelpers.h"
#include "engine/Handles.h"
#include "engine/WideText.h"
#include "ui/toolkit/GdiSupport.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#include <stb_image_write.h>
#pragma GCC diagnostic pop

namespace {

constexpr DWORD kLongest = 20000;       // milliseconds, for anything that is waited for
constexpr DWORD kGlance = 50;           // milliseconds between two looks
constexpr DWORD kStillFor = 400;        // a picture that stays the same for so long is one at rest
constexpr POINT kAside = {1270, 1010};  // where a pointer does not disturb what a key presses
constexpr wchar_t kWindowClass[] = L"CorvaLumenPlayerInstaller";

// The whole of a window on the screen, its frame and what lies over it included; empty when it cannot be read.
struct Picture {
  int width = 0, height = 0;
  std::vector<uint8_t> pixels;  // red, green, blue; rows from the top
  [[nodiscard]] bool operator==(const Picture&) const = default;
};

Picture Look(HWND window) {
  RECT frame = {};
  GetWindowRect(window, &frame);
  Picture picture = {frame.right - frame.left, frame.bottom - frame.top, {}};
  BITMAPINFO info = {};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const WindowDc screen(nullptr);
  void* bits = nullptr;
  const GdiObject bitmap(CreateDIBSection(screen.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  const MemoryDc copy(CreateCompatibleDC(screen.Get()));
  const SelectedObject selected(copy.Get(), bitmap.Get());
  if (!BitBlt(copy.Get(), 0, 0, picture.width, picture.height, screen.Get(), frame.left, frame.top, SRCCOPY)) return {};
  GdiFlush();
  const auto* const source = static_cast<const uint8_t*>(bits);
  for (int at = 0; at < picture.width * picture.height * 4; at += 4) {
    picture.pixels.insert(picture.pixels.end(), {source[at + 2], source[at + 1], source[at]});
  }
  return picture;
}

// What a screen reader says of a control: its name, what it is, and how it stands. "INSTALL, button, focused"; empty
// when the control gives no answer, or says it is elsewhere than it is. The caller's thread has COM initialised.
std::string Spoken(HWND control) {
  static BoundFunction<decltype(::AccessibleObjectFromWindow)> find(L"oleacc.dll", "AccessibleObjectFromWindow");
  ComPtr<IAccessible> object;
  if (FAILED(find.Get()(control, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                        reinterpret_cast<void**>(object.GetAddressOf()))))
    return {};
  VARIANT self = {}, role = {}, state = {};
  self.vt = VT_I4;
  BString name;
  RECT place = {}, heard = {};
  if (object->get_accName(self, name.Receive()) != S_OK || object->get_accRole(self, &role) != S_OK ||
      object->get_accState(self, &state) != S_OK || !GetWindowRect(control, &place) ||
      object->accLocation(&heard.left, &heard.top, &heard.right, &heard.bottom, self) != S_OK)
    return {};
  heard.right += heard.left;
  heard.bottom += heard.top;
  if (name.Get() == nullptr || EqualRect(&heard, &place) == FALSE) return {};
  const char* const kind = role.lVal == ROLE_SYSTEM_PUSHBUTTON    ? ", button"
                           : role.lVal == ROLE_SYSTEM_CHECKBUTTON ? ", check box"
                           : role.lVal == ROLE_SYSTEM_RADIOBUTTON ? ", choice"
                                                                  : ", text";
  std::string spoken = ToUtf8(name.View()) + kind;
  if ((state.lVal & STATE_SYSTEM_CHECKED) != 0) spoken += ", checked";
  if ((state.lVal & STATE_SYSTEM_FOCUSED) != 0) spoken += ", focused";
  return spoken;
}

struct Program {
  KernelHandle process;
  KernelHandle ready;
  DWORD thread = 0;
};

bool Await(const std::function<bool()>& done) {
  for (const DWORD begin = GetTickCount(); !done(); Sleep(kGlance)) {
    if (GetTickCount() - begin > kLongest) return false;
  }
  return true;
}

Program Start(const WideString& line) {
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  wchar_t desktop[64] = {};
  GetUserObjectInformationW(GetThreadDesktop(GetCurrentThreadId()), UOI_NAME, desktop, sizeof(desktop), nullptr);
  startup.lpDesktop = desktop;
  PROCESS_INFORMATION info = {};
  WideString copy = line;
  if (!CreateProcessW(nullptr, copy.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr, &startup,
                      &info))
    return {};
  const KernelHandle thread(info.hThread);
  // The waiting program sets an event of this name when it is ready; for any other the event stays unused.
  KernelHandle ready(CreateEventA(nullptr, TRUE, FALSE, ("waiting-" + std::to_string(info.dwProcessId)).c_str()));
  ResumeThread(thread.Get());
  return {KernelHandle(info.hProcess), std::move(ready), info.dwThreadId};
}

void SendMouse(DWORD flags) {
  INPUT input = {};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = flags;
  SendInput(1, &input, sizeof(input));
}

void SendKey(WORD key) {
  INPUT input[2] = {};
  input[0].type = input[1].type = INPUT_KEYBOARD;
  input[0].ki.wVk = input[1].ki.wVk = key;
  input[1].ki.dwFlags = KEYEVENTF_KEYUP;
  SendInput(2, input, sizeof(*input));
}

class Player {
 public:
  Player(WideString hostPath, std::string picturePrefix)
      : path(std::move(hostPath)), prefix(std::move(picturePrefix)) {}

  bool Do(const std::string& step) {
    std::istringstream words(step);
    std::string command;
    words >> command >> std::ws;
    std::string rest;
    std::getline(words, rest);
    if (command == "say") return std::printf("\n%s\n", rest.c_str()) > 0;
    std::printf("    %s\n", step.c_str());
    std::fflush(stdout);
    if (command == "host") return Open(rest);
    if (command == "click") return ClickControl(std::stoi(rest));
    if (command == "double") return ClickControl(std::stoi(rest)) && ClickControl(std::stoi(rest));
    if (command == "click-at") return ClickAt(rest);
    if (command == "focus") return TabUntil([&](HWND control) { return control == Control(std::stoi(rest)); });
    if (command == "reach") return Reach(rest);
    if (command == "hear") return Await([&] { return IsHeard(rest); });
    if (command == "key") return Key(rest);
    if (command == "see") return Await([&] { return Shown() == Sorted(rest); });
    if (command == "title") return Await([&] { return Title() == rest; });
    if (command == "still") return Rest();
    if (command == "picture") return Rest() && Keep(rest);
    if (command == "glance") return Moves() && Keep(rest);
    if (command == "program") return StartProgram(rest);
    if (command == "close-program") return EndProgram();
    if (command == "close") return PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0) != FALSE;
    if (command == "exit") return Ended(std::stoul(rest));
    return false;
  }
  void GiveUp() {
    std::printf("        title: %s\n        shown: %s\n", Title().c_str(), Shown().c_str());
    (void)Keep("failed");
    if (host.process) TerminateProcess(host.process.Get(), 1);
    if (program.process) TerminateProcess(program.process.Get(), 1);
  }

 private:
  bool Open(const std::string& arguments) {
    window = nullptr;
    host = Start(L"\"" + path + L"\" " + FromUtf8(arguments));
    if (!host.process) return false;
    (void)Await([this] {
      window = FindWindowW(kWindowClass, nullptr);
      return IsWindowVisible(window) || WaitForSingleObject(host.process.Get(), 0) != WAIT_TIMEOUT;
    });
    return window != nullptr && SetForegroundWindow(window);
  }
  [[nodiscard]] HWND Control(int id) const { return GetDlgItem(window, id); }
  bool ClickControl(int id) {
    if (!IsWindow(window)) return true;
    if (!Await([&] { return Control(id) != nullptr && IsWindowVisible(Control(id)); })) return false;
    RECT place = {};
    GetWindowRect(Control(id), &place);
    return Click({(place.left + place.right) / 2, (place.top + place.bottom) / 2});
  }
  bool ClickAt(const std::string& where) {
    POINT at = {};
    std::istringstream(where) >> at.x >> at.y;
    return ClientToScreen(window, &at) && Click(at);
  }
  // The pointer arrives before the button goes down, as a hand does it.
  bool Click(POINT at) {
    SetCursorPos(at.x, at.y);
    Answers();
    SendMouse(MOUSEEVENTF_LEFTDOWN);
    Answers();
    SendMouse(MOUSEEVENTF_LEFTUP);
    return Answers();
  }
  bool Key(const std::string& name) {
    const WORD key = name == "tab" ? VK_TAB : name == "space" ? VK_SPACE : VK_RETURN;
    SetCursorPos(kAside.x, kAside.y);
    Answers();
    SendKey(key);
    return Answers();
  }
  [[nodiscard]] HWND Focused() const {
    GUITHREADINFO info = {};
    info.cbSize = sizeof(info);
    return GetGUIThreadInfo(host.thread, &info) ? info.hwndFocus : nullptr;
  }
  bool TabUntil(const std::function<bool(HWND)>& there) {
    for (int strokes = 0; strokes < 12; ++strokes) {
      const HWND before = Focused();
      if (before != nullptr && there(before)) return true;
      SendKey(VK_TAB);
      if (!Await([&] { return Focused() != before; })) return false;
    }
    return false;
  }
  // Who sees nothing knows where the keyboard is by what the reader says.
  bool Reach(const std::string& words) {
    return TabUntil([&](HWND control) {
             const std::string spoken = Spoken(control);
             return spoken.find(words) != std::string::npos && spoken.find(", focused") != std::string::npos;
           }) &&
           Key("space");
  }
  [[nodiscard]] bool IsHeard(const std::string& words) const {
    for (HWND control = GetWindow(window, GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT)) {
      if (IsWindowVisible(control) && Spoken(control).find(words) != std::string::npos) return true;
    }
    return false;
  }
  // Also when the window has gone, as it may after a click.
  bool Answers() const {
    DWORD_PTR ignored = 0;
    return SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, 60000, &ignored) != 0 || !IsWindow(window);
  }
  bool Rest() const {
    Picture last;
    DWORD since = GetTickCount();
    return Await([&] {
      if (!Answers()) return false;
      Picture now = Look(window);
      if (!(now == last)) since = GetTickCount();
      last = std::move(now);
      return GetTickCount() - since > kStillFor;
    });
  }
  // A bar on its way changes the picture again and again; a panel that has just come does so once or twice.
  bool Moves() const {
    Picture last = Look(window);
    int changes = 0;
    return Await([&] {
      Picture now = Look(window);
      if (!(now == last)) ++changes;
      last = std::move(now);
      return changes >= 4;
    });
  }
  bool Keep(const std::string& name) const {
    const Picture now = Look(window);
    stbi_write_png_compression_level = 9;
    return !now.pixels.empty() && stbi_write_png((prefix + name + ".png").c_str(), now.width, now.height, 3,
                                                 now.pixels.data(), now.width * 3) != 0;
  }
  [[nodiscard]] std::string Title() const {
    wchar_t text[256] = {};
    GetWindowTextW(window, text, 256);
    return ToUtf8(text);
  }
  static std::string Sorted(const std::string& ids) {
    std::istringstream in(ids);
    std::set<int> each;
    for (int id = 0; in >> id;) each.insert(id);
    std::string joined;
    for (const int id : each) joined += (joined.empty() ? "" : " ") + std::to_string(id);
    return joined;
  }
  [[nodiscard]] std::string Shown() const {
    std::string ids;
    EnumChildWindows(
        window,
        [](HWND child, LPARAM list) {
          if (IsWindowVisible(child))
            *reinterpret_cast<std::string*>(list) += " " + std::to_string(GetDlgCtrlID(child));
          return TRUE;
        },
        reinterpret_cast<LPARAM>(&ids));
    return Sorted(ids);
  }
  bool StartProgram(const std::string& line) {
    program = Start(FromUtf8(line + " " + std::to_string(GetCurrentProcessId())));
    return program.process && WaitForSingleObject(program.ready.Get(), 60000) == WAIT_OBJECT_0;
  }
  bool EndProgram() {
    return TerminateProcess(program.process.Get(), 0) &&
           WaitForSingleObject(program.process.Get(), 60000) == WAIT_OBJECT_0;
  }
  bool Ended(DWORD wanted) {
    DWORD code = STILL_ACTIVE;
    if (WaitForSingleObject(host.process.Get(), 60000) != WAIT_OBJECT_0) return false;
    GetExitCodeProcess(host.process.Get(), &code);
    host.process.Reset();
    if (code != wanted) std::printf("        it ended with %lu\n", code);
    return code == wanted;
  }

  WideString path;
  std::string prefix;
  Program host;
  Program program;
  HWND window = nullptr;
};

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count < 4) return 2;
  const std::string own = "LumenDriver" + std::to_string(GetCurrentProcessId());
  const HDESK desktop = CreateDesktopA(own.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr);
  if (desktop == nullptr || !SetThreadDesktop(desktop) || GetDesktopWindow() == nullptr) return 3;
  // A process that came before the desktop could draw stays blind.
  if (Look(GetDesktopWindow()).pixels.empty()) return 5;
  const ComInitializer com;
  Player player(arguments[1], ToUtf8(arguments[2]));
  std::ifstream script(ToUtf8(arguments[3]));
  if (!script) return 4;
  for (std::string step; std::getline(script, step);) {
    if (step.empty() || player.Do(step)) continue;
    std::printf("        DIFFERS\n");
    player.GiveUp();
    return 1;
  }
  return 0;
}
