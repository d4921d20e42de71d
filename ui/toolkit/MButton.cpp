#include "ui/toolkit/MButton.h"

#include <utility>

#include "ui/toolkit/MRadioGroup.h"
#include "ui/toolkit/MTextArea.h"
#include "ui/toolkit/MWindow.h"

MButton::MButton(MWindow* inWindow, Looks looks)
    : MScale3Section(inWindow, looks.normal.get()),
      normalData(std::move(looks.normal)),
      hoverData(std::move(looks.hover)),
      pressedData(std::move(looks.pressed)),
      disabledData(std::move(looks.disabled)) {
  controlKind = kButtonControl;
  handler = &MButton::Handle;
  handlerContext = this;
}

MButton::~MButton() = default;

void MButton::Layout() {
  MScale3Section::Layout();
  MoveLabel({0, 0});
}

void MButton::SetLabel(std::unique_ptr<MTextArea> text) {
  labelText.reset(text.release());
  MRegion* const region = labelText.get();
  if (region != nullptr && right != nullptr) region->LinkAfter(right.get());
}

void MButton::SetEnabled(bool on) {
  MRegion::SetEnabled(on);
  if (on) return;
  pressState = kIdle;
  Layout();
}

void MButton::ShowLook(Look look) {
  data = LookData(look);
  Layout();
}

// The context is the button; the region may be another that shares its handler, as the label of a check box does.
bool MButton::Handle(MRegion* region, MWindow* inWindow, const Point* /*point*/, bool inside, uint32_t message,
                     void* context) {
  auto* const button = static_cast<MButton*>(context);
  PointerEvent event{};
  if (!button->enabled || !ToPointerEvent(message, inside, event)) return false;
  const ButtonStep step = StepButton(button->pressState, event);
  button->OnPointer(step, region, inWindow);
  return step.consumed;
}

void MButton::OnPointer(const ButtonStep& step, MRegion* region, MWindow* inWindow) {
  if (step.relayout) Layout();
  if (step.capture == CaptureStep::Take) inWindow->SetCapture(region);
  if (step.capture == CaptureStep::Return) inWindow->ReleaseCapture();
  pressState = step.next;
  if (step.posted == kClicked) ChangeByClick();
  if (step.look != Look::Keep) ShowLook(step.look);
  if (step.label != LabelStep::Keep) MoveLabel({0, step.label == LabelStep::Down ? 1 : 0});
  if (step.takesFocus && nativeWindow != nullptr) inWindow->SetFocusRegion(this, inWindow->ringVisible);
  if (step.posted >= 0) inWindow->PostEvent(static_cast<uint32_t>(controlId), static_cast<uint32_t>(step.posted));
}

const MScale3Data* MButton::LookData(Look look) const {
  if (controlKind != kButtonControl) {
    const auto* const box = static_cast<const MCheckboxButton*>(this);
    if (box->checked) {
      switch (look) {
        case Look::Hover: return box->checkedHoverData.get();
        case Look::Pressed: return box->checkedPressedData.get();
        default: return box->checkedNormalData.get();
      }
    }
  }
  switch (look) {
    case Look::Hover: return hoverData.get();
    case Look::Pressed: return pressedData.get();
    default: return normalData.get();
  }
}

void MButton::MoveLabel(Point to) {
  MRegion* const region = labelText.get();
  if (region == nullptr) return;
  region->bounds = bounds.AtOrigin();
  region->bounds.Offset(to);
}

void MButton::ChangeByClick() {
  if (controlKind == kCheckboxControl) {
    auto* const box = static_cast<MCheckboxButton*>(this);
    box->checked = !box->checked;
  } else if (controlKind == kRadioControl) {
    auto* const radio = static_cast<MRadioButton*>(this);
    radio->group->Select(radio);
  }
}

MCheckboxButton::MCheckboxButton(MWindow* inWindow, Looks looks, CheckedLooks checkedLooks, bool startsChecked)
    : MButton(inWindow, std::move(looks)),
      checkedNormalData(std::move(checkedLooks.normal)),
      checkedHoverData(std::move(checkedLooks.hover)),
      checkedPressedData(std::move(checkedLooks.pressed)),
      checked(startsChecked) {
  controlKind = kCheckboxControl;
  if (startsChecked) data = checkedNormalData.get();
}
