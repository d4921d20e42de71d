#include "broker/ShortcutRules.h"

#include <algorithm>

#include "engine/Vendor.h"

namespace {

constexpr size_t kNameBound = 30;
constexpr size_t kUrlBytesBound = 192;
constexpr size_t kPathBound = 260;

bool IsDigitOrLetter(wchar_t unit) {
  return (unit >= L'0' && unit <= L'9') || (unit >= L'A' && unit <= L'Z') || (unit >= L'a' && unit <= L'z');
}

bool IsForbiddenInName(wchar_t unit) {
  return unit < 32 || (unit < 128 && WideView(L"\"%&*./:<>?\\|").find(unit) != WideView::npos);
}

bool StartsWithAnyCase(WideView text, WideView lowerPrefix) {
  return text.size() >= lowerPrefix.size() &&
         std::equal(lowerPrefix.begin(), lowerPrefix.end(), text.begin(),
                    [](wchar_t wanted, wchar_t unit) { return ToLowerAscii(unit) == wanted; });
}

}  // namespace

bool IsDesktopShortcutName(WideView name) {
  return std::all_of(name.begin(), name.end(),
                     [](wchar_t unit) { return unit >= 128 || unit == L'_' || IsDigitOrLetter(unit); });
}

bool IsRedirectAddress(WideView url) {
  return url.starts_with(L"https://www." LUMEN_VENDOR_DOMAIN L"/cn/lumenservice/shortcut/shortcutredirect/?url=");
}

bool IsInternetShortcutName(WideView name) {
  return name.size() < kNameBound && std::none_of(name.begin(), name.end(), IsForbiddenInName);
}

bool IsHttpAddress(WideView url) {
  return StartsWithAnyCase(url, L"http:") || StartsWithAnyCase(url, L"https:");
}

bool IsIconCachePath(WideView iconPath, WideView iconCache, WideView name) {
  constexpr WideView kEnding = L".ico";
  if (name.size() >= kNameBound || iconPath.size() >= kPathBound) return false;
  const WideString prefix = WideString(iconCache) + L"\\" + WideString(name);
  if (!iconPath.starts_with(WideView(prefix)) || !iconPath.ends_with(kEnding)) return false;
  if (iconPath.size() < prefix.size() + kEnding.size()) return false;
  const WideView number = iconPath.substr(prefix.size(), iconPath.size() - prefix.size() - kEnding.size());
  return number.find_first_not_of(L"0123456789 ()") == WideView::npos;
}

bool EntitlesShortcut(std::span<const uint8_t> strings, WideView url, WideView name) {
  const std::string urlBytes = ToUtf8(url);
  const std::string nameBytes = ToUtf8(name);
  if (nameBytes.size() >= kNameBound || urlBytes.size() >= kUrlBytesBound) return false;
  const std::string markup = "<shortcut href=\"" + urlBytes + "\">" + nameBytes + "</shortcut>";
  return std::search(strings.begin(), strings.end(), markup.begin(), markup.end(),
                     [](uint8_t byte, char wanted) { return byte == static_cast<uint8_t>(wanted); }) != strings.end();
}
