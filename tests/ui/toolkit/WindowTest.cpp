// The window's own logic: its size, its pointer, its keyboard.
#include <gtest/gtest.h>

#include "tests/ui/toolkit/RecordingWindow.h"

namespace {

TEST(Animation, HalvesTheWayAndArrives) {
  for (const auto& [difference, step] :
       {std::pair{0, 0}, {1, 1}, {-1, -1}, {2, 1}, {-2, -1}, {3, 1}, {-3, -2}, {630, 315}}) {
    EXPECT_EQ(AnimationStep(difference), step) << difference;
  }
  RecordingWindow window;
  window.rect = {0, 0, 100, 345};
  window.targetRect = {0, 0, 730, 345};
  int32_t left = 630;
  for (int ticks = 0; left != 0; ++ticks) {
    ASSERT_LT(ticks, 12);
    window.Tick();
    left -= left == 1 ? 1 : left / 2;
    EXPECT_EQ(window.rect, (Rect{0, 0, 730 - left, 345})) << "the height stays";
    EXPECT_EQ(window.Take(), (Lines{"resize " + std::to_string(730 - left) + " 345", "event 2 2", "event 2 4"}));
  }
  window.Tick();
  EXPECT_EQ(window.Take(), (Lines{"event 2 4"})) << "an idle window only counts frames";
}

TEST(ApplyRect, StopsTheAnimationAndTellsWhenAsked) {
  struct Row {
    bool animating, notify;
    Lines asked;
  };
  for (const Row& row : {Row{false, true, {"resize 730 345", "event 2 2"}}, Row{false, false, {"resize 730 345"}},
                         Row{true, true, {"resize 730 345"}}}) {
    RecordingWindow window;
    window.rect = {0, 0, 730, 345};
    window.ApplyRect(row.animating, row.notify);
    EXPECT_EQ(window.Take(), row.asked);
    EXPECT_EQ(window.targetRect == window.rect, !row.animating);
  }
}

TEST(Pointer, ACapturedRegionIsAskedFirstAndTheOthersIfItDeclines) {
  struct Seen {
    std::string& log;
    const char* name;
    bool answer;
  };
  std::string log;
  Seen seen[] = {{log, "first ", true}, {log, "captured ", false}};
  RecordingWindow window;
  MSkinnedSection parent, first, captured;
  MSkinnedSection* const regions[] = {&first, &captured};
  parent.bounds = {100, 100, 300, 300};
  first.bounds = {0, 0, 50, 50};
  captured.bounds = {60, 0, 110, 50};
  for (int i = 0; i < 2; ++i) {
    regions[i]->handlerContext = &seen[i];
    regions[i]->handler = [](MRegion*, MWindow*, const Point* point, bool inside, uint32_t, void* context) {
      const auto* const mine = static_cast<Seen*>(context);
      mine->log += mine->name + std::to_string(point->x) + "," + std::to_string(point->y) + (inside ? " in;" : " out;");
      return mine->answer;
    };
    parent.Attach(regions[i]);
  }
  window.Attach(&parent);
  window.SetCapture(&captured);
  window.DispatchMouse(kMouseMove, {110, 120});
  EXPECT_EQ(log, "captured -50,20 out;first 10,20 in;");
  log.clear();
  seen[1].answer = true;
  window.DispatchMouse(kMouseMove, {110, 120});
  EXPECT_EQ(log, "captured -50,20 out;");
}

TEST(Keyboard, TabStopsAtFocusableControlsBothWaysAndWraps) {
  struct Row {
    const char* reason;
    const char* controls;  // f focusable, i no id, h hidden, d disabled
    int from;
    bool forward;
    int expected;  // -1: none
  };
  for (const Row& row :
       {Row{"wraps to the first", "fff", 2, true, 0}, Row{"wraps to the last", "fff", 0, false, 2},
        Row{"past what cannot be focused", "fihdf", 0, true, 4}, Row{"past them backwards", "fihdf", 4, false, 0},
        Row{"alone, it stays", "fid", 0, true, 0}, Row{"none at all", "ihd", 0, true, -1},
        Row{"none backwards", "ihd", 1, false, -1}, Row{"from one that lost its right", "dff", 0, true, 1}}) {
    SCOPED_TRACE(row.reason);
    RecordingWindow window;
    std::vector<std::unique_ptr<MSkinnedSection>> regions;
    for (const char kind : std::string(row.controls)) {
      auto region = std::make_unique<MSkinnedSection>();
      region->drawFlags |= kNativeChild;
      region->controlId = kind == 'i' ? 0 : 7;
      region->visible = kind != 'h';
      region->enabled = kind != 'd';
      window.Attach(region.get());
      regions.push_back(std::move(region));
    }
    const MRegion* const found = window.NextFocus(regions[static_cast<size_t>(row.from)]->nativeWindow, row.forward);
    EXPECT_EQ(found, row.expected < 0 ? nullptr : regions[static_cast<size_t>(row.expected)].get());
    EXPECT_EQ(window.NextFocus(nullptr, row.forward), nullptr) << "a window without controls";
  }
}

TEST(FocusRing, SurroundsTheControlAndGoesWithIt) {
  RecordingWindow window;
  MSkinnedSection control, ring;
  control.bounds = Rect::Of(94, 18, 140, 33);
  control.drawFlags |= kNativeChild;
  window.Attach(&control);
  window.Attach(&ring);
  window.PlaceFocus(&control, true, &ring);
  EXPECT_EQ(Spell(ring.bounds), "89,13,239,56");
  EXPECT_TRUE(ring.visible);
  EXPECT_EQ(window.Platform().focus, control.nativeWindow);
  window.PlaceFocus(&control, false, &ring);
  EXPECT_FALSE(ring.visible) << "focus by the mouse shows none";
  window.PlaceFocus(nullptr, true, &ring);
  EXPECT_FALSE(ring.visible);
  EXPECT_EQ(window.Platform().focus, nullptr);
}

}  // namespace
