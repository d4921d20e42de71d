// Buttons, check boxes, radio buttons and links: each state met by each event.
#include <gtest/gtest.h>

#include "tests/ui/toolkit/RecordingWindow.h"
#include "ui/toolkit/MHTMLLink.h"
#include "ui/toolkit/MRadioGroup.h"

namespace {

const DrawingContext kSlot = nullptr;

std::unique_ptr<MScale3Data> Look3(int32_t x) {
  return std::make_unique<MScale3Data>(MScale3Data{ImageRef(&kSlot), {x, 0, 3, 9}, {x, 0, 1, 9}, {x, 0, 3, 9}});
}
MButton::Looks Plain() {
  return {Look3(0), Look3(1), Look3(2), Look3(3)};
}
MCheckboxButton::CheckedLooks Checked() {
  return {Look3(4), Look3(5), Look3(6)};
}
// The looks by the place of their left piece.
std::string LookOf(const MButton& button) {
  constexpr const char* kNames[] = {"normal",         "hover",         "pressed",        "disabled",
                                    "checked normal", "checked hover", "checked pressed"};
  return kNames[button.left->sourceRect.x];
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

struct Row {
  int state;
  Event event;
  bool consumed;
  int next;
  const char* look;
  Lines asked;
};

// Brings an idle control to the row's state, by as many events as the state's number says, and sends it the event.
template <class State>
void Expect(const Row& row, RecordingWindow& window, MRegion& control, const State& state,
            const std::function<std::string()>& look) {
  SCOPED_TRACE(Spell("state", row.state, "message", row.event.message, row.event.inside));
  window.Attach(&control);
  control.Layout();
  const Event way[] = {kMoveIn, kPress, kMoveOut};
  for (int i = 0; i < row.state; ++i) Send(control, window, way[i]);
  ASSERT_EQ(static_cast<int>(state), row.state);
  window.Take();
  EXPECT_EQ(Send(control, window, row.event), row.consumed);
  EXPECT_EQ(static_cast<int>(state), row.next);
  EXPECT_EQ(look(), row.look);
  EXPECT_EQ(window.Take(), row.asked);
}

const Row kButtonRows[] = {
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
  for (const Row& row : kButtonRows) {
    RecordingWindow window;
    MButton button(&window, Plain());
    button.bounds = Rect::Of(0, 0, 100, 9);
    button.controlId = 200;
    Expect(row, window, button, button.pressState, [&] { return LookOf(button); });
  }
}

TEST(CheckBox, TurnsWithEachClickAndLooksLikeItsValue) {
  RecordingWindow window;
  MCheckboxButton box(&window, Plain(), Checked(), false);
  const std::pair<Event, const char*> steps[] = {{kMoveIn, "hover"},          {kPress, "pressed"},
                                                 {kRelease, "checked hover"}, {kPress, "checked pressed"},
                                                 {kMoveOut, "checked hover"}, {kRelease, "checked normal"},
                                                 {kPress, "checked pressed"}, {kRelease, "hover"}};
  for (const auto& [event, look] : steps) {
    Send(box, window, event);
    EXPECT_EQ(LookOf(box), look);
  }
  EXPECT_FALSE(box.checked);
}

TEST(RadioButtons, OneIsChosen) {
  RecordingWindow window;
  MRadioGroup group;
  std::vector<std::unique_ptr<MRadioButton>> all;
  for (int32_t i = 0; i < 4; ++i) {
    all.push_back(std::make_unique<MRadioButton>(&window, Plain(), Checked(), i == 0, i, &group));
  }
  for (int times = 0; times < 2; ++times) {
    for (const Event& event : {kMoveIn, kPress, kRelease, kMoveOut}) Send(*all[3], window, event);
    EXPECT_EQ(group.selected, all[3].get());
    EXPECT_EQ(LookOf(*all[3]), "checked normal") << "a second click changes nothing";
    EXPECT_EQ(LookOf(*all[0]), "normal");
    EXPECT_FALSE(all[0]->checked);
  }
}

const Row kLinkRows[] = {
    {0, kMoveIn, true, 1, "over", {"capture", "hand"}},
    {0, kPress, true, 2, "normal", {}},
    {0, kRelease, true, 0, "normal", {}},
    {0, kTick, false, 0, "normal", {}},
    {1, kMoveIn, true, 1, "over", {}},
    {1, kMoveOut, false, 0, "normal", {"release", "arrow"}},
    {1, kPress, true, 2, "normal", {}},
    {2, kMoveIn, true, 2, "normal", {}},
    {2, kMoveOut, true, 3, "over", {}},
    {2, kRelease, true, 1, "over", {"open http://corva.example/"}},
    {3, kMoveIn, true, 2, "normal", {}},
    {3, kMoveOut, true, 3, "over", {}},
    {3, kRelease, true, 0, "normal", {"release", "arrow"}},
};

TEST(Link, AnswersEachEventInEachState) {
  constexpr uint32_t kOver = 200;
  for (const Row& row : kLinkRows) {
    RecordingWindow window;
    MHTMLLink link(MString(L"http://corva.example/"), 100, kOver);
    link.bounds = Rect::Of(30, 40, 50, 12);
    Expect(row, window, link, link.state, [&] {
      const auto repaints = std::count(window.log.begin(), window.log.end(), "invalidate 30,51,80,52");
      EXPECT_EQ(repaints, row.event.message == kTimerTick ? 0 : 1);
      return link.underline.image.AsColor() == kOver ? "over" : "normal";
    });
  }
}

}  // namespace
