// Sections of three and nine pieces, and the progress bar made of two of them.
#include <gtest/gtest.h>

#include "tests/ui/toolkit/RecordingWindow.h"
#include "ui/toolkit/MProgressBar.h"
#include "ui/toolkit/MScale9Section.h"
#include "ui/toolkit/RegionWalk.h"

namespace {

const DrawingContext kSlot = nullptr;

std::string Pieces(const MScale3Section& section) {
  return Spell(section.left->bounds) + " " + Spell(section.middle->bounds) + " " + Spell(section.right->bounds);
}

MScale3Data Caps(int32_t leftWidth, int32_t rightWidth, int32_t height = 33) {
  return {ImageRef(&kSlot), {0, 0, leftWidth, height}, {9, 0, 1, height}, {20, 0, rightWidth, height}};
}

TEST(ThreePieces, CapsKeepTheirWidthAndTheMiddleTakesTheRest) {
  struct Row {
    size_t drawn;  // empty pieces draw nothing
    const char* reason;
    Rect bounds;
    int32_t left, right;
    const char* expected;
  };
  for (const Row& row :
       {Row{3u, "a button", Rect::Of(94, 18, 140, 33), 3, 3, "0,0,3,33 3,0,137,33 137,0,140,33"},
        Row{1u, "a mark: the left piece alone", Rect::Of(1, 1, 15, 15), 15, 0, "0,0,15,15 15,0,15,15 15,0,15,15"},
        Row{2u, "narrower than its caps: the middle is turned inside out", Rect::Of(0, 0, 4, 9), 3, 3,
            "0,0,3,9 3,0,1,9 1,0,4,9"}}) {
    const MScale3Data data = Caps(row.left, row.right);
    MScale3Section section(nullptr, &data);
    section.bounds = row.bounds;
    section.Layout();
    EXPECT_EQ(Pieces(section), row.expected) << row.reason;
    RecordingSurface surface;
    DrawRegions(&section, {0, 0, 500, 500}, {0, 0}, surface);
    EXPECT_EQ(surface.lines.size(), row.drawn) << row.reason;
  }
}

TEST(ThreePieces, ALookIsChangedByItsDataAndALayout) {
  MScale3Data second = Caps(5, 7);
  second.drawMode = kDrawCopy;
  MScale3Section bare(nullptr, nullptr);
  bare.Layout();
  EXPECT_EQ(bare.firstChild, nullptr) << "without data there is nothing";
  const MScale3Data first = Caps(3, 3);
  MScale3Section section(nullptr, &first);
  section.bounds = {0, 0, 100, 33};
  section.alpha = 99;
  section.data = &second;
  section.Layout();
  EXPECT_EQ(Pieces(section), "0,0,5,33 5,0,93,33 93,0,100,33");
  for (const MSkinnedSection* const piece : {section.left.get(), section.middle.get(), section.right.get()}) {
    EXPECT_EQ(piece->alpha, 99);
    EXPECT_EQ(piece->drawFlags, kDrawCopy);
  }
  EXPECT_EQ(section.right->sourceRect, second.right);
}

TEST(NinePieces, RowsStackAsTheyLieInTheImage) {
  const MScale9Data data(ImageRef(&kSlot), 155, 10, {1, 412, 2}, {173, 3, 4}, kDrawCopy);
  const char* const expected[] = {"[155,10,1,173] [156,10,412,173] [568,10,2,173]",
                                  "[155,183,1,3] [156,183,412,3] [568,183,2,3]",
                                  "[155,186,1,4] [156,186,412,4] [568,186,2,4]"};
  for (int row = 0; row < 3; ++row) {
    const MScale3Data& pieces = data.rows[row];
    EXPECT_EQ(Spell(pieces.left) + " " + Spell(pieces.middle) + " " + Spell(pieces.right), expected[row]);
    EXPECT_EQ(pieces.drawMode, kDrawCopy);
  }
  MScale9Section frame(nullptr, &data);
  frame.bounds = Rect::Of(7, 7, 730, 278);
  frame.alpha = 64;
  frame.Layout();
  EXPECT_EQ(Spell(frame.top->bounds), "0,0,730,173");
  EXPECT_EQ(Spell(frame.middle->bounds), "0,173,730,274");
  EXPECT_EQ(Spell(frame.bottom->bounds), "0,274,730,278");
  EXPECT_EQ(Pieces(*frame.middle), "0,0,1,101 1,0,728,101 728,0,730,101");
  EXPECT_EQ(frame.bottom->right->alpha, 64);
}

TEST(ProgressBar, TheFillFollowsTheValue) {
  struct Row {
    const char* reason;
    int32_t value, kept;
    const char* fill;  // null: nothing is filled
  };
  for (const Row& row : {Row{"too much is full", 150, 100, "2,2,359,31"}, Row{"the least", 1, 1, "2,2,12,31"},
                         Row{"less than nothing", -5, 0, nullptr}, Row{"nearly full", 99, 99, "2,2,355,31"}}) {
    SCOPED_TRACE(row.reason);
    MProgressBar bar(nullptr, Caps(4, 4), Caps(1, 2, 29));
    bar.bounds = Rect::Of(94, 87, 360, 33);
    for (const int32_t before : {40, 0}) {
      bar.value = before;
      bar.Layout();
      bar.value = row.value;
      bar.Layout();
      EXPECT_EQ(bar.value, row.kept);
      EXPECT_EQ(Spell(bar.track->bounds), "0,0,360,33");
      EXPECT_EQ(bar.track->next == bar.fill.get(), row.fill != nullptr);
      if (row.fill != nullptr) {
        EXPECT_EQ(Spell(bar.fill->bounds), row.fill);
      }
    }
  }
}

}  // namespace
