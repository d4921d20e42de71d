// The window's own logic: its size and its keyboard.
#include <gtest/gtest.h>

#include "tests/ui/toolkit/RecordingWindow.h"

namespace {

TEST(Animation, HalvesTheWayAndArrives) {
  for (const auto& [difference, step] : {std::pair{-1, -1}, {-2, -1}, {-3, -2}, {3, 1}}) {
    EXPECT_EQ(AnimationStep(difference), step) << difference;
  }
  RecordingWindow window;
  window.rect = {0, 0, 100, 345};
  window.targetRect = {0, 0, 730, 345};
  for (const int32_t width : {415, 572, 651, 690, 710, 720, 725, 727, 728, 729, 730}) {
    window.Tick();
    EXPECT_EQ(window.Take(), (Lines{Spell("resize", width, 345), "event 2 2", "event 2 4"})) << "the height stays";
  }
  window.Tick();
  EXPECT_EQ(window.Take(), (Lines{"event 2 4"})) << "an idle window only counts frames";
}

TEST(Keyboard, TabStopsAtFocusableControlsBothWaysAndWraps) {
  struct Row {
    const char* reason;
    const char* controls;  // f focusable, i no id, h hidden, d disabled
    size_t from;
    bool forward;
    int expected;  // -1: none
  };
  for (const Row& row :
       {Row{"wraps to the first", "fff", 2, true, 0}, Row{"wraps to the last", "fff", 0, false, 2},
        Row{"past what cannot be focused", "fihdf", 0, true, 4}, Row{"past them backwards", "fihdf", 4, false, 0},
        Row{"alone, it stays", "fid", 0, true, 0}, Row{"none at all", "ihd", 1, false, -1}}) {
    RecordingWindow window;
    std::vector<std::unique_ptr<MSkinnedSection>> regions;
    for (const char kind : std::string(row.controls)) {
      regions.push_back(std::make_unique<MSkinnedSection>());
      MRegion& region = *regions.back();
      region.drawFlags |= kNativeChild;
      region.controlId = kind == 'i' ? 0 : 7;
      region.visible = kind != 'h';
      region.enabled = kind != 'd';
      window.Attach(&region);
    }
    const MRegion* const found = window.NextFocus(regions[row.from]->nativeWindow, row.forward);
    EXPECT_EQ(found, row.expected < 0 ? nullptr : regions[static_cast<size_t>(row.expected)].get()) << row.reason;
    EXPECT_EQ(window.NextFocus(nullptr, row.forward), nullptr) << "a window without controls";
  }
}

}  // namespace
