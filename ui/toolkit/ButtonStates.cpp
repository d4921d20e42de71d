#include "ui/toolkit/ButtonStates.h"

#include "ui/toolkit/Events.h"

namespace {

using enum PointerEvent;
using enum CaptureStep;

struct ButtonRow {
  PressState state;
  PointerEvent event;
  ButtonStep step;
};
// What is not listed is consumed and changes nothing.
constexpr ButtonRow kButtonRows[] = {
    {kIdle, MoveInside, {Take, Look::Hover, LabelStep::Keep, kHover, kPointerEntered}},
    // Not consumed, so that the region the pointer went to learns of it at once.
    {kHover, MoveOutside, {Return, Look::Normal, LabelStep::Keep, kIdle, kPointerLeft, false}},
    {kPressedInside, MoveOutside, {Keep, Look::Hover, LabelStep::Up, kPressedOutside, kPointerLeft}},
    {kPressedOutside, MoveInside, {Keep, Look::Pressed, LabelStep::Down, kPressedInside, kPointerEntered}},
    {kPressedInside, Release, {Return, Look::Hover, LabelStep::Keep, kHover, kClicked}},
    {kPressedOutside, Release, {Return, Look::Normal, LabelStep::Keep, kIdle, kReleasedOutside}},
};
// A press is the same from every state. It does not take the capture: hovering has, and a key needs none.
constexpr ButtonStep kPress = {Keep, Look::Pressed, LabelStep::Down, kPressedInside, ControlMessage::kPressed,
                               true, true};

struct LinkRow {
  PressState state;
  PointerEvent event;
  LinkStep step;
};
constexpr LinkRow kLinkRows[] = {
    {kIdle, MoveInside, {Take, Look::Hover, kHover}},
    {kHover, MoveOutside, {Return, Look::Normal, kIdle, false, false, false}},
    {kPressedInside, MoveOutside, {Keep, Look::Hover, kPressedOutside}},
    {kPressedOutside, MoveInside, {Keep, Look::Normal, kPressedInside}},
    {kPressedInside, Release, {Keep, Look::Hover, kHover, true}},
    {kPressedOutside, Release, {Return, Look::Normal, kIdle}},
};
constexpr LinkStep kLinkPress = {Keep, Look::Normal, kPressedInside, false, true};

}  // namespace

bool ToPointerEvent(uint32_t message, bool inside, PointerEvent& event) {
  switch (message) {
    case kMouseMove: event = inside ? MoveInside : MoveOutside; return true;
    case kMousePress: event = Press; return true;
    case kMouseRelease: event = Release; return true;
    default: return false;
  }
}

ButtonStep StepButton(uint8_t state, PointerEvent event) {
  if (event == Press) return kPress;
  for (const ButtonRow& row : kButtonRows) {
    if (row.state == state && row.event == event) return row.step;
  }
  ButtonStep still;
  still.next = static_cast<PressState>(state);
  still.relayout = event == Release;
  return still;
}

LinkStep StepLink(int32_t state, PointerEvent event) {
  if (event == Press) return kLinkPress;
  for (const LinkRow& row : kLinkRows) {
    if (row.state == state && row.event == event) return row.step;
  }
  LinkStep still;
  still.next = static_cast<PressState>(state);
  return still;
}
