// Buttons, check boxes, radio buttons and links: each state met by each event.
#include <gtest/gtest.h>

#include "tests/ui/toolkit/RecordingWindow.h"
#include "ui/toolkit/MHTMLLink.h"
#include "ui/toolkit/MRadioGroup.h"

namespace {

constexpr int32_t kId = 200;
const DrawingContext kSlot = nullptr;

std::unique_ptr<MScale3Data> Look3(int32_t x) {
  return std::make_unique<MScale3Data>(MScale3Data{ImageRef(&kSlot), {x, 0, 3, 9}, {x, 0, 1, 9}, {x, 0, 3, 9}});
}
MButton::Looks Plain() {
  return {Look3(1), Look3(2), Look3(3), Look3(4)};
}
MCheckboxButton::CheckedLooks Checked() {
  return {Look3(11), Look3(12), Look3(13)};
}
// The looks by the place of their left piece.
std::string LookOf(const MButton& button) {
  switch (button.left->sourceRect.x) {
    case 1: return "normal";
    case 2: return "hover";
    case 3: return "pressed";
    case 11: return "checked normal";
    case 12: return "checked hover";
    case 13: return "checked pressed";
    default: return "?";
  }
}

struct Event {
  uint32_t message;
  bool inside;
};
constexpr Event kMoveIn = {kMouseMove, true}, kMoveOut = {kMouseMove, false}, kPress = {kMousePress, true},
                kPressOut = {kMousePress, false}, kRelease = {kMouseRelease, true}, kTick = {kTimerTick, false};

bool Send(MRegion& region, MWindow& window, Event event) {
  const Point point;
  return region.handler(&region, &window, &point, event.inside, event.message, region.handlerContext);
}

// The events that bring a button from idle into each state.
std::vector<Event> WayTo(int state) {
  switch (state) {
    case kHover: return {kMoveIn};
    case kPressedInside: return {kMoveIn, kPress};
    case kPressedOutside: return {kMoveIn, kPress, kMoveOut};
    default: return {};
  }
}

template <class Look>
struct StateRow {
  int state;
  Event event;
  bool consumed;
  int next;
  Look look;
  Lines asked;

  // Brings a control to the row's state, sends it the event, and looks at what everybody has in common.
  template <class Control, class State>
  void Run(RecordingWindow& window, Control& control, const State& now) const {
    window.Attach(&control);
    control.Layout();
    for (const Event& step : WayTo(state)) Send(control, window, step);
    ASSERT_EQ(static_cast<int>(now), state);
    window.Take();
    EXPECT_EQ(Send(control, window, event), consumed);
    EXPECT_EQ(static_cast<int>(now), next);
  }
};
template <class Look>
std::ostream& operator<<(std::ostream& to, const StateRow<Look>& row) {
  return to << "state " << row.state << ", message " << row.event.message << ", inside " << row.event.inside;
}

const StateRow<const char*> kButtonRows[] = {
    {0, kMoveIn, true, 1, "hover", {"capture", "post 200 0"}},
    {0, kMoveOut, true, 0, "normal", {}},
    {0, kPress, true, 2, "pressed", {"post 200 3"}},
    {0, kPressOut, true, 2, "pressed", {"post 200 3"}},
    {0, kRelease, true, 0, "normal", {}},
    {1, kMoveIn, true, 1, "hover", {}},
    {1, kMoveOut, false, 0, "normal", {"release", "post 200 1"}},
    {1, kPress, true, 2, "pressed", {"post 200 3"}},
    {1, kRelease, true, 1, "hover", {}},
    {2, kMoveIn, true, 2, "pressed", {}},
    {2, kMoveOut, true, 3, "hover", {"post 200 1"}},
    {2, kPress, true, 2, "pressed", {"post 200 3"}},
    {2, kRelease, true, 1, "hover", {"release", "post 200 2"}},
    {3, kMoveIn, true, 2, "pressed", {"post 200 0"}},
    {3, kMoveOut, true, 3, "hover", {}},
    {3, kPress, true, 2, "pressed", {"post 200 3"}},
    {3, kRelease, true, 0, "normal", {"release", "post 200 4"}},
    {3, kTick, false, 3, "hover", {}},
};

TEST(Button, AnswersEachEventInEachState) {
  for (const auto& row : kButtonRows) {
    SCOPED_TRACE(row);
    RecordingWindow window;
    MButton button(&window, Plain());
    button.bounds = Rect::Of(0, 0, 100, 9);
    button.controlId = kId;
    row.Run(window, button, button.pressState);
    EXPECT_EQ(LookOf(button), row.look);
    EXPECT_EQ(window.Take(), row.asked);
  }
}

TEST(Button, DisabledConsumesNothingAndForgetsThePointer) {
  RecordingWindow window;
  MButton button(&window, Plain());
  window.Attach(&button);
  Send(button, window, kMoveIn);
  button.SetEnabled(false);
  EXPECT_EQ(button.pressState, kIdle);
  window.Take();
  for (const Event& event : {kMoveIn, kMoveOut, kPress, kRelease, kTick}) {
    EXPECT_FALSE(Send(button, window, event));
  }
  EXPECT_EQ(window.Take(), Lines{});
  button.SetEnabled(true);
  EXPECT_TRUE(Send(button, window, kMoveIn));
}

TEST(Button, APressTakesTheFocusWithTheRingAsItIs) {
  RecordingWindow window;
  MButton button(&window, Plain());
  button.drawFlags |= kNativeChild;
  window.Attach(&button);
  for (const bool ring : {false, true}) {
    window.ringVisible = ring;
    window.Take();
    Send(button, window, kPress);
    EXPECT_EQ(window.Take(),
              (Lines{"move 1 0,0,0,0", ring ? "focus region ring" : "focus region", "focus 1", "post 0 3"}));
    EXPECT_EQ(window.ringVisible, ring);
  }
}

TEST(CheckBox, TurnsWithEachClickAndLooksLikeItsValue) {
  RecordingWindow window;
  MCheckboxButton box(&window, Plain(), Checked(), false);
  window.Attach(&box);
  struct Row {
    Event event;
    bool checked;
    const char* look;
  };
  for (const Row& row :
       {Row{kMoveIn, false, "hover"}, Row{kPress, false, "pressed"}, Row{kRelease, true, "checked hover"},
        Row{kMoveOut, true, "checked normal"}, Row{kMoveIn, true, "checked hover"},
        Row{kPress, true, "checked pressed"}, Row{kMoveOut, true, "checked hover"},
        Row{kRelease, true, "checked normal"}, Row{kPress, true, "checked pressed"}, Row{kRelease, false, "hover"}}) {
    Send(box, window, row.event);
    EXPECT_EQ(box.checked, row.checked);
    EXPECT_EQ(LookOf(box), row.look);
  }
}

TEST(CheckBox, ALabelThatSharesItsHandlerHoldsThePointerItself) {
  RecordingWindow window;
  MCheckboxButton box(&window, Plain(), Checked(), false);
  MSkinnedSection label;
  box.bounds = Rect::Of(0, 0, 15, 15);
  box.controlId = kId;
  label.bounds = Rect::Of(20, 0, 200, 15);
  label.handler = box.handler;
  label.handlerContext = box.handlerContext;
  window.Attach(&box);
  window.Attach(&label);
  for (const uint32_t message : {kMouseMove, kMouseMove, kMousePress, kMouseRelease}) {
    window.DispatchMouse(message, {100, 8});
    EXPECT_EQ(window.capturedRegion, message == kMouseRelease ? nullptr : &label);
  }
  EXPECT_TRUE(box.checked);
  EXPECT_EQ(window.Take(), (Lines{"capture", "post 200 0", "post 200 3", "release", "post 200 2"}));
}

TEST(RadioButtons, OneIsChosen) {
  RecordingWindow window;
  MRadioGroup group;
  std::vector<std::unique_ptr<MRadioButton>> all;
  for (int32_t i = 0; i < 12; ++i) {
    all.push_back(std::make_unique<MRadioButton>(&window, Plain(), Checked(), i == 0, i, &group));
    EXPECT_EQ(group.buttons[group.count], all.back().get()) << "the place 0 stays empty";
    EXPECT_LT(group.count, group.capacity);
  }
  EXPECT_EQ(group.capacity, 24u);
  for (auto& radio : all) radio->Layout();
  const auto click = [&](MRadioButton& radio) {
    for (const Event& event : {kMoveIn, kPress, kRelease, kMoveOut}) Send(radio, window, event);
  };
  for (int times = 0; times < 2; ++times) {
    click(*all[3]);
    EXPECT_EQ(group.selected, all[3].get());
    EXPECT_EQ(LookOf(*all[3]), "checked normal") << "a second click changes nothing";
    EXPECT_EQ(LookOf(*all[0]), "normal");
  }
  EXPECT_EQ(std::count_if(all.begin(), all.end(), [](const auto& radio) { return radio->checked; }), 1);
}

constexpr uint32_t kNormal = 100, kOver = 200;
const StateRow<uint32_t> kLinkRows[] = {
    {0, kMoveIn, true, 1, kOver, {"capture", "hand"}},
    {0, kPress, true, 2, kNormal, {}},
    {0, kRelease, true, 0, kNormal, {}},
    {0, kTick, false, 0, kNormal, {}},
    {1, kMoveIn, true, 1, kOver, {}},
    {1, kMoveOut, false, 0, kNormal, {"release", "arrow"}},
    {1, kPress, true, 2, kNormal, {}},
    {2, kMoveIn, true, 2, kNormal, {}},
    {2, kMoveOut, true, 3, kOver, {}},
    {2, kRelease, true, 1, kOver, {"open http://corva.example/"}},
    {3, kMoveIn, true, 2, kNormal, {}},
    {3, kMoveOut, true, 3, kOver, {}},
    {3, kRelease, true, 0, kNormal, {"release", "arrow"}},
};

TEST(Link, AnswersEachEventInEachState) {
  for (const auto& row : kLinkRows) {
    SCOPED_TRACE(row);
    RecordingWindow window;
    MHTMLLink link(MString(L"http://corva.example/"), kNormal, kOver);
    link.bounds = Rect::Of(30, 40, 50, 12);
    row.Run(window, link, link.state);
    EXPECT_EQ(link.underline.image.AsColor(), row.look);
    Lines asked = row.asked;
    if (row.event.message != kTimerTick) {
      asked.insert(asked.end() - (!asked.empty() && asked.back().rfind("open", 0) == 0), "invalidate 30,51,80,52");
    }
    EXPECT_EQ(window.Take(true), asked);
  }
}

}  // namespace
