// What fills the window between its top and the bottom bar: one of eight views, of which one is shown at a time.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>

#include "engine/MString.h"
#include "ui/toolkit/Events.h"
#include "ui/toolkit/MRegion.h"
#include "ui/toolkit/MTextArea.h"

class MInstallerWindow;
struct MScale9Data;

// Ids of the controls that panels answer to.
namespace control_id {
constexpr uint32_t LeftButton = 100;
constexpr uint32_t RightButton = 101;
constexpr uint32_t FirstPanelButton = 200;
constexpr uint32_t SecondPanelButton = 201;
constexpr uint32_t FirstRadio = 300;
}  // namespace control_id

class MUIPanel : public MSkinnedSection {
 public:
  explicit MUIPanel(MInstallerWindow* window) : installerWindow(window) {}

  // An event as the window passes it on: WindowEventId with kWindowCreated when the panel is shown, kWindowResized
  // after its bounds changed and kWindowHidden before it leaves; a control's id with kClicked. True means handled.
  virtual bool HandleEvent(uint32_t id, uint32_t message, int64_t param);

  MInstallerWindow* installerWindow;

 protected:
  enum class Style : uint8_t { Plain, Bold, Markup };
  // A text of the string table, not yet attached, placed or laid out.
  [[nodiscard]] std::unique_ptr<MTextArea> MakeText(int32_t size, Style style, const MString& text,
                                                    uint32_t format) const;
  [[nodiscard]] MString Text(uint32_t id) const;
  // The player's mark in the top-left corner, and any other piece of the skin.
  [[nodiscard]] std::unique_ptr<MSkinnedSection> MakeLogo() const;
  [[nodiscard]] std::unique_ptr<MSkinnedSection> MakeImage(const SourceRect& source) const;
  [[nodiscard]] int32_t Width() const { return bounds.Width(); }
  [[nodiscard]] int32_t Height() const { return bounds.Height(); }
};

// The ground of the panels that have no picture behind them.
[[nodiscard]] std::unique_ptr<MScale9Data> MakePlainGround(ImageRef skin);
// The bounds of a region, and all that follows from them.
void Place(MRegion& region, const Rect& bounds);
// A new text, shown at once.
void ShowText(MTextArea& area, const MString& text);
// `offset` where the thread's locale is one of `locales`, whose fonts sit higher, else 0.
[[nodiscard]] int32_t OffsetIn(std::initializer_list<uint32_t> locales, int32_t offset);
// The digits that a text begins with, as a length. Short of where sums of lengths overflow, whatever the text says.
[[nodiscard]] int32_t ParseLength(const MString& text);
// `text` with its "^" replaced.
[[nodiscard]] MString Insert(const MString& text, const MString& value);

namespace text_locale {
constexpr uint32_t TraditionalChinese = 1028;
constexpr uint32_t Japanese = 1041;
constexpr uint32_t Korean = 1042;
constexpr uint32_t SimplifiedChinese = 2052;
}  // namespace text_locale

// The colours of links that stand on the dark ground.
constexpr uint32_t kWhiteLink = 16777215;
constexpr uint32_t kGreyLink = 12632256;

// The version that people are told.
constexpr wchar_t kShownVersion[] = L"28.0";
