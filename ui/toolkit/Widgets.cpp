#include "ui/toolkit/Widgets.h"

#include <utility>

#include "ui/toolkit/MTextArea.h"

namespace {

constexpr int32_t kLabelSize = 16;
constexpr uint32_t kCentred = 5;

// Where a look's caps and middle begin on the sheet; all are 3, 1 and 3 wide.
std::unique_ptr<MScale3Data> ButtonLook(ImageRef skin, int32_t x) {
  constexpr int32_t kTop = 77;
  constexpr int32_t kHeight = 33;
  return std::make_unique<MScale3Data>(
      MScale3Data{skin, {x, kTop, 3, kHeight}, {x + 3, kTop, 1, kHeight}, {x + 4, kTop, 3, kHeight}});
}

// A mark is one picture: the left piece alone.
std::unique_ptr<MScale3Data> MarkLook(ImageRef skin, int32_t x, int32_t y) {
  constexpr int32_t kSize = 15;
  return std::make_unique<MScale3Data>(MScale3Data{skin, {x, y, kSize, kSize}, {}, {}});
}

struct MarkPlaces {
  Point normal;
  Point hover;
  Point checkedNormal;
  Point checkedHover;
};
constexpr MarkPlaces kCheckbox = {{4, 0}, {19, 0}, {4, 15}, {19, 15}};
constexpr MarkPlaces kRadio = {{2, 140}, {17, 140}, {2, 155}, {17, 155}};

// A mark that is pressed looks as if the pointer were not there.
MButton::Looks Looks(ImageRef skin, const MarkPlaces& places) {
  return {MarkLook(skin, places.normal.x, places.normal.y), MarkLook(skin, places.hover.x, places.hover.y),
          MarkLook(skin, places.normal.x, places.normal.y), nullptr};
}
MCheckboxButton::CheckedLooks CheckedLooks(ImageRef skin, const MarkPlaces& places) {
  return {MarkLook(skin, places.checkedNormal.x, places.checkedNormal.y),
          MarkLook(skin, places.checkedHover.x, places.checkedHover.y),
          MarkLook(skin, places.checkedNormal.x, places.checkedNormal.y)};
}

}  // namespace

std::unique_ptr<MButton> MakeButton(MWindow* window, ImageRef skin, const MString& text) {
  auto button = std::make_unique<MButton>(
      window, MButton::Looks{ButtonLook(skin, 13), ButtonLook(skin, 20), ButtonLook(skin, 27), ButtonLook(skin, 6)});
  button->drawFlags |= kNativeChild;
  button->label = text;
  auto label = std::make_unique<MTextArea>(window, kLabelSize, false, false);
  label->drawFlags |= kNativeChild;
  label->format = kCentred;
  label->SetText(text);
  button->SetLabel(std::move(label));
  return button;
}

std::unique_ptr<MCheckboxButton> MakeCheckbox(MWindow* window, ImageRef skin, bool checked) {
  auto box = std::make_unique<MCheckboxButton>(window, Looks(skin, kCheckbox), CheckedLooks(skin, kCheckbox), checked);
  box->drawFlags |= kNativeChild;
  return box;
}

std::unique_ptr<MRadioButton> MakeRadio(MWindow* window, ImageRef skin, bool checked, int32_t value,
                                        MRadioGroup* group) {
  auto radio =
      std::make_unique<MRadioButton>(window, Looks(skin, kRadio), CheckedLooks(skin, kRadio), checked, value, group);
  radio->drawFlags |= kNativeChild;
  return radio;
}
