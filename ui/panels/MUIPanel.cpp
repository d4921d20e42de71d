#include "ui/panels/MUIPanel.h"

#include <windows.h>

#include <algorithm>

#include "ui/panels/MInstallerWindow.h"
#include "ui/toolkit/MScale9Section.h"

bool MUIPanel::HandleEvent(uint32_t /*id*/, uint32_t /*message*/, int64_t /*param*/) {
  return false;
}

std::unique_ptr<MTextArea> MUIPanel::MakeText(int32_t size, Style style, const MString& text, uint32_t format) const {
  auto area = std::make_unique<MTextArea>(installerWindow, size, style == Style::Markup, style == Style::Bold);
  area->format = format;
  area->SetText(text);
  return area;
}

MString MUIPanel::Text(uint32_t id) const {
  return installerWindow->Text(id);
}

std::unique_ptr<MSkinnedSection> MUIPanel::MakeLogo() const {
  return MakeImage({34, 0, 47, 71});
}

std::unique_ptr<MSkinnedSection> MUIPanel::MakeImage(const SourceRect& source) const {
  return std::make_unique<MSkinnedSection>(installerWindow->Skin(), source);
}

std::unique_ptr<MScale9Data> MakePlainGround(ImageRef skin) {
  constexpr int32_t kWidths[3] = {1, 120, 1};
  constexpr int32_t kHeights[3] = {1, 50, 1};
  return std::make_unique<MScale9Data>(skin, 33, 123, kWidths, kHeights, kDrawCopy);
}

void Place(MRegion& region, const Rect& bounds) {
  region.bounds = bounds;
  region.Layout();
}

void ShowText(MTextArea& area, const MString& text) {
  area.SetText(text);
  area.Layout();
}

int32_t OffsetIn(std::initializer_list<uint32_t> locales, int32_t offset) {
  return std::find(locales.begin(), locales.end(), GetThreadLocale()) == locales.end() ? 0 : offset;
}

int32_t ParseLength(const MString& text) {
  constexpr uint32_t kLongest = 1 << 30;
  return static_cast<int32_t>(std::min(text.ParseDigits(), kLongest));
}

MString Insert(const MString& text, const MString& value) {
  return MString::Replace(text, L"^", value);
}
