// Sections of three and nine pieces, and the progress bar made of two of them.
#include <gtest/gtest.h>

#include "tests/ui/toolkit/RecordingWindow.h"
#include "ui/toolkit/MProgressBar.h"
#include "ui/toolkit/MScale9Section.h"
#include "ui/toolkit/RegionWalk.h"

namespace {

const DrawingContext kSlot = nullptr;

std::string Pieces(const MScale3Section& section) {
  return Spell(section.left->bounds, section.middle->bounds, section.right->bounds);
}

MScale3Data Caps(int32_t leftWidth, int32_t rightWidth) {
  return {ImageRef(&kSlot), {0, 0, leftWidth, 33}, {9, 0, 1, 33}, {20, 0, rightWidth, 33}};
}

TEST(ThreePieces, CapsKeepTheirWidthAndTheMiddleTakesTheRest) {
  const struct {
    const char* reason;
    Rect bounds;
    int32_t left, right;
    const char* expected;
    size_t drawn;  // empty pieces draw nothing
  } rows[] = {
      {"a button", Rect::Of(94, 18, 140, 33), 3, 5, "0,0,3,33 3,0,135,33 135,0,140,33", 3},
      {"a mark: the left piece alone", Rect::Of(1, 1, 15, 15), 15, 0, "0,0,15,15 15,0,15,15 15,0,15,15", 1},
      {"narrower than its caps: the middle is turned inside out", {0, 0, 4, 9}, 3, 3, "0,0,3,9 3,0,1,9 1,0,4,9", 2},
  };
  for (const auto& row : rows) {
    const MScale3Data first = Caps(1, 1), look = Caps(row.left, row.right);
    MScale3Section section(nullptr, &first);
    section.bounds = row.bounds;
    section.data = &look;
    section.Layout();
    EXPECT_EQ(Pieces(section), row.expected) << row.reason;
    RecordingSurface surface;
    DrawRegions(&section, {0, 0, 500, 500}, {0, 0}, surface);
    EXPECT_EQ(surface.lines.size(), row.drawn) << row.reason;
  }
}

TEST(NinePieces, RowsStackAsTheyLieInTheImage) {
  const MScale9Data data(ImageRef(&kSlot), 155, 10, {1, 412, 2}, {173, 3, 4}, kDrawCopy);
  EXPECT_EQ(Spell(data.rows[1].left, data.rows[2].right), "[155,183,1,3] [568,186,2,4]");
  MScale9Section frame(nullptr, &data);
  frame.bounds = Rect::Of(7, 7, 730, 278);
  frame.Layout();
  EXPECT_EQ(Spell(frame.top->bounds, frame.middle->bounds, frame.bottom->bounds),
            "0,0,730,173 0,173,730,274 0,274,730,278");
  EXPECT_EQ(Pieces(*frame.middle), "0,0,1,101 1,0,728,101 728,0,730,101");
}

TEST(ProgressBar, TheFillFollowsTheValue) {
  const std::tuple<int32_t, int32_t, const char*> rows[] = {
      {150, 100, "2,2,359,31"}, {1, 1, "2,2,12,31"}, {0, 0, nullptr}, {-5, 0, nullptr}};
  for (const auto& [value, kept, fill] : rows) {
    SCOPED_TRACE(value);
    MProgressBar bar(nullptr, Caps(4, 4), Caps(1, 2));
    bar.bounds = Rect::Of(94, 87, 360, 33);
    for (const int32_t now : {40, value, value}) {
      bar.value = now;
      bar.Layout();
    }
    EXPECT_EQ(bar.value, kept);
    EXPECT_EQ(bar.track->next == bar.fill.get(), fill != nullptr);
    if (fill != nullptr) EXPECT_EQ(Spell(bar.fill->bounds), fill);
  }
}

}  // namespace
