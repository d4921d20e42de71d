// How buttons and links answer the pointer, as tables: one row for each state and event. Pure data; any thread.
#pragma once

#include <cstdint>

enum class PointerEvent : uint8_t { MoveInside, MoveOutside, Press, Release };

// What a mouse message is to a control; false for every other message.
[[nodiscard]] bool ToPointerEvent(uint32_t message, bool inside, PointerEvent& event);

enum PressState : uint8_t { kIdle = 0, kHover = 1, kPressedInside = 2, kPressedOutside = 3 };

enum class CaptureStep : uint8_t { Keep, Take, Return };
enum class Look : uint8_t { Keep, Normal, Hover, Pressed };
enum class LabelStep : uint8_t { Keep, Up, Down };

struct ButtonStep {
  CaptureStep capture = CaptureStep::Keep;
  Look look = Look::Keep;
  LabelStep label = LabelStep::Keep;
  PressState next = kIdle;
  int8_t posted = -1;  // ControlMessage, below 0 for none
  bool consumed = true;
  bool takesFocus = false;
  bool relayout = false;  // nothing but a new Layout
};
[[nodiscard]] ButtonStep StepButton(uint8_t state, PointerEvent event);

struct LinkStep {
  CaptureStep capture = CaptureStep::Keep;  // the hand comes and goes with it
  Look look = Look::Keep;
  PressState next = kIdle;
  bool opens = false;
  bool takesFocus = false;
  bool consumed = true;
};
[[nodiscard]] LinkStep StepLink(int32_t state, PointerEvent event);
