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

MScale3Data Caps(int32_t leftWidth, int32_t rightWidth, uint8_t drawMode = kDrawBlend) {
  return {ImageRef(&kSlot), {0, 0, leftWidth, 33}, {9, 0, 1, 33}, {20, 0, rightWidth, 33}, drawMode};
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
    const MScale3Data first = Caps(1, 1), look = Caps(row.left, row.right, kDrawCopy);
    MScale3Section section(nullptr, &first);
    section.bounds = row.bounds;
    section.alpha = 99;
    section.data = &look;
    section.Layout();
    EXPECT_EQ(Pieces(section), row.expected) << row.reason;
    EXPECT_EQ(section.middle->alpha, 99);
    EXPECT_EQ(section.right->sourceRect, look.right);
    RecordingSurface surface;
    DrawRegions(&section, {0, 0, 500, 500}, {0, 0}, surface);
    EXPECT_EQ(surface.lines.size(), row.drawn) << row.reason;
    EXPECT_TRUE(surface.lines.front().starts_with("copy")) << "the look's own mode";
  }
  MScale3Section bare(nullptr, nullptr);
  bare.Layout();
  EXPECT_EQ(bare.firstChild, nullptr) << "without data there is nothing";
}

TEST(NinePieces, RowsStackAsTheyLieInTheImage) {
  const MScale9Data data(ImageRef(&kSlot), 155, 10, {1, 412, 2}, {173, 3, 4}, kDrawCopy);
  const char* const expected[] = {"[155,10,1,173] [156,10,412,173] [568,10,2,173]",
                                  "[155,183,1,3] [156,183,412,3] [568,183,2,3]",
                                  "[155,186,1,4] [156,186,412,4] [568,186,2,4]"};
  for (size_t row = 0; row < 3; ++row) {
    EXPECT_EQ(Spell(data.rows[row].left, data.rows[row].middle, data.rows[row].right), expected[row]);
  }
  MScale9Section frame(nullptr, &data);
  frame.bounds = Rect::Of(7, 7, 730, 278);
  frame.alpha = 64;
  frame.Layout();
  EXPECT_EQ(Spell(frame.top->bounds, frame.middle->bounds, frame.bottom->bounds),
            "0,0,730,173 0,173,730,274 0,274,730,278");
  EXPECT_EQ(Pieces(*frame.middle), "0,0,1,101 1,0,728,101 728,0,730,101");
  EXPECT_EQ(frame.bottom->right->alpha, 64);
}

TEST(ProgressBar, TheFillFollowsTheValue) {
  struct Row {
    const char* reason;
    int32_t value, kept;
    const char* fill;
  };
  for (const Row& row : {Row{"too much is full", 150, 100, "2,2,359,31"}, Row{"the least", 1, 1, "2,2,12,31"},
                         Row{"nothing", 0, 0, nullptr}, Row{"less than nothing", -5, 0, nullptr}}) {
    MProgressBar bar(nullptr, Caps(4, 4), Caps(1, 2));
    bar.bounds = Rect::Of(94, 87, 360, 33);
    for (const int32_t value : {40, row.value, row.value}) {
      bar.value = value;
      bar.Layout();
    }
    EXPECT_EQ(bar.value, row.kept) << row.reason;
    EXPECT_EQ(Spell(bar.track->bounds), "0,0,360,33");
    EXPECT_EQ(bar.track->next == bar.fill.get(), row.fill != nullptr) << row.reason;
    if (row.fill != nullptr) EXPECT_EQ(Spell(bar.fill->bounds), row.fill) << row.reason;
  }
}

}  // namespace
