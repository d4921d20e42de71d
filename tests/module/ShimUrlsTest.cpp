// Which browser an address is opened with, and the ladder of further tries when that fails.
#include <set>

#include "tests/module/LoadedModule.h"
#include "tests/support/ImportHook.h"

namespace {

constexpr char kBrowser[] = "c:\\Program Files\\Internet Explorer\\iexplore.exe";
constexpr char kBrowserX86[] = "c:\\Program Files (x86)\\Internet Explorer\\iexplore.exe";

Lines g_opened;
std::set<std::string> g_refused;  // files that the shell stand-in cannot open
HWND g_window = nullptr;

HINSTANCE WINAPI Open(HWND window, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR directory, INT show) {
  g_window = window;
  std::string line = ToUtf8(file);
  if (parameters != nullptr) line += " <" + ToUtf8(parameters) + ">";
  if (std::wstring_view(verb) != L"open" || directory != nullptr || show != SW_SHOWNORMAL) line += " in another way";
  g_opened.push_back(line);
  // 32 is the highest answer that is a failure.
  return reinterpret_cast<HINSTANCE>(static_cast<INT_PTR>(g_refused.count(ToUtf8(file)) != 0 ? 32 : 33));
}

}  // namespace

TEST_F(ModuleFixture, TheBrowserFollowsTheSelectedProduct) {
  const ImportHook shell(LoadedModule(), "ShellExecuteW", &Open);
  const std::string ie = std::string(kBrowser) + " <u>";
  const std::string ie86 = std::string(kBrowserX86) + " <u>";
  const struct {
    const char* reason;
    uint32_t flags;
    const wchar_t* browserName;
    std::set<std::string> refused;
    bool result;
    Lines opened;
  } rows[] = {
      {"PPAPI has no browser of its own", host_flag::Pepper, L"", {}, true, {"u"}},
      {"no kind, refused: tried once more", 0, L"", {"u"}, false, {"u", "u"}},
      {"ActiveX wins over the plug-in", host_flag::ActiveX | host_flag::Plugin, L"x.exe", {}, true, {ie}},
      {"ActiveX, nothing works", host_flag::ActiveX, L"", {kBrowser, kBrowserX86, "u"}, false, {ie, ie86, "u"}},
      {"plug-in browser refused", host_flag::Plugin, L"opera.exe", {"opera.exe"}, true, {"opera.exe <u>", "u"}},
      {"plug-in, no browser runs", host_flag::Plugin, L"", {}, true, {"firefox.exe <u>"}},
  };
  for (const auto& row : rows) {
    g_opened.clear();
    g_refused = row.refused;
    host.flags = row.flags;
    shim->browserName = MString(row.browserName);
    EXPECT_EQ(shim->OpenUrl(nullptr, MString(L"u")), row.result) << row.reason;
    EXPECT_EQ(g_opened, row.opened) << row.reason;
  }
  (void)shim->OpenUrl(GetDesktopWindow(), MString(L"u"));
  EXPECT_EQ(g_window, GetDesktopWindow());
}
