#include "broker/ShortcutRules.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace {

std::vector<uint8_t> Bytes(std::string_view text) {
  return {text.begin(), text.end()};
}

TEST(ShortcutRules, NamesAreJudgedByTwoDifferentAlphabets) {
  const struct {
    WideView name;
    bool desktop, internet;
  } rows[] = {{L"My_Game7", true, true},
              {L"My Game", false, true},
              {L"[a](b)-\x007F", false, true},
              {L"\x30B2\x30FC\x30E0", true, true},
              {L"29_units_of_text_are_the_most", true, true},
              {L"30_units_of_text_are_too_many_", true, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(IsDesktopShortcutName(row.name), row.desktop) << ToUtf8(row.name);
    EXPECT_EQ(IsInternetShortcutName(row.name), row.internet) << ToUtf8(row.name);
  }
  for (const wchar_t refused : WideView(L".\\/:%&*?<>|\"\t")) {
    const WideString name = WideString(L"a") + refused + L"b";
    EXPECT_FALSE(IsDesktopShortcutName(name) || IsInternetShortcutName(name)) << ToUtf8(name);
  }
}

TEST(ShortcutRules, AddressesOfEitherKind) {
  const WideString good = L"https://www.corva.example/cn/lumenservice/shortcut/shortcutredirect/?url=";
  EXPECT_TRUE(IsRedirectAddress(good + L"x"));
  EXPECT_FALSE(IsRedirectAddress(L"http" + good.substr(5)) || IsRedirectAddress(L"https://WWW" + good.substr(11)));
  EXPECT_TRUE(IsHttpAddress(L"hTTp:a") && IsHttpAddress(L"HTTPS:"));
  EXPECT_FALSE(IsHttpAddress(L"http") || IsHttpAddress(L"httpx://a"));
}

TEST(ShortcutRules, TheIconIsOneOfThisNameInTheCache) {
  constexpr WideView kCache = L"C:\\A\\Icon Cache";
  EXPECT_TRUE(IsIconCachePath(L"C:\\A\\Icon Cache\\Game (12).ico", kCache, L"Game"));
  for (const WideString& tail :
       {WideString(L"s.ico"), WideString(L".ICO"), WideString(L"\\..\\x.ico"), WideString(260 - 24, L' ') + L".ico"}) {
    EXPECT_FALSE(IsIconCachePath(L"C:\\A\\Icon Cache\\Game" + tail, kCache, L"Game")) << ToUtf8(tail);
  }
  // A name that ends in the extension's own letters must not let the prefix and the ending overlap.
  EXPECT_FALSE(IsIconCachePath(L"C:\\A\\Icon Cache\\x.ico", kCache, L"x.ico"));
  EXPECT_FALSE(IsIconCachePath(L"C:\\A\\Icon Cache\\" + WideString(30, L'a') + L".ico", kCache, WideString(30, L'a')));
}

TEST(ShortcutRules, TheStringsEntitleOneNameToOneAddress) {
  const auto strings = Bytes("<strings><shortcut href=\"https://a/g\">Caf\xC3\xA9</shortcut></strings>");
  EXPECT_TRUE(EntitlesShortcut(strings, L"https://a/g", L"Caf\x00E9"));
  EXPECT_FALSE(EntitlesShortcut(strings, L"https://a/g", L"Caf"));
  EXPECT_FALSE(EntitlesShortcut(strings, L"https://a/", L"Caf\x00E9"));

  // The bounds count UTF-8 bytes: fifteen units of two bytes each are one too many.
  const struct {
    size_t url, name;
    bool entitled;
  } rows[] = {{191, 14, true}, {192, 14, false}, {191, 15, false}};
  for (const auto& row : rows) {
    const WideString url(row.url, L'u'), name(row.name, L'\x00E9');
    const std::string markup = "<shortcut href=\"" + ToUtf8(url) + "\">" + ToUtf8(name) + "</shortcut>";
    EXPECT_EQ(EntitlesShortcut(Bytes(markup), url, name), row.entitled) << row.url << "/" << row.name;
  }
}

}  // namespace
