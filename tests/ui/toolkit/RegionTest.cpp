// The region tree and its window: who is whose child, what is drawn where, who is asked about the pointer, its size.
#include <gtest/gtest.h>

#include <random>

#include "tests/ui/toolkit/RecordingWindow.h"
#include "ui/toolkit/RegionWalk.h"

namespace {

const DrawingContext kSlot = nullptr;

struct Family {
  RecordingWindow window;
  MSkinnedSection parent, a, b, c;
  Family() { window.Attach(&parent); }
  std::string Children() const {
    std::string found;
    for (const MRegion* child = parent.firstChild; child != nullptr; child = child->Next()) {
      found += child == &a ? 'a' : child == &b ? 'b' : 'c';
    }
    return found;
  }
};

TEST(RegionTree, DetachingTheFirstChildDropsTheOthersToo) {
  const char* const left[] = {"", "ac", "ab"};  // by the child that is detached; none is promoted
  for (size_t detached = 0; detached < 3; ++detached) {
    Family family;
    MRegion* const all[] = {&family.a, &family.b, &family.c};
    for (MRegion* const child : {all[0], all[1], all[2], all[1], all[0]}) family.parent.Attach(child);
    EXPECT_EQ(family.Children(), "abc") << "appended, and left where it is";
    all[detached]->Detach();
    EXPECT_EQ(family.Children(), left[detached]);
    for (MRegion* const child : all) family.parent.Attach(child);
    EXPECT_EQ(family.Children().size(), 3u) << "all can come back, each once";
  }
}

// Regions come and go in every order panels could think of, under the address sanitizer in the native build.
TEST(RegionTree, AnySequenceOfChangesLeavesATree) {
  constexpr int kRegions = 8;
  std::mt19937 random(20);  // NOLINT(cert-msc51-cpp): the same sequence each time
  const auto pick = [&](int below) { return static_cast<size_t>(random() % static_cast<unsigned>(below)); };
  for (int round = 0; round < 200; ++round) {
    auto ending = std::make_unique<RecordingWindow>();
    RecordingWindow& window = *ending;
    std::unique_ptr<MSkinnedSection> regions[kRegions];
    for (int step = 0; step < 60; ++step) {
      auto& region = regions[pick(kRegions)];
      auto& other = regions[pick(kRegions)];
      if (region == nullptr) {
        region = std::make_unique<MSkinnedSection>();
        if (pick(2) == 0) region->drawFlags |= kNativeChild;
        region->controlId = static_cast<int32_t>(pick(2));
        region->bounds = {0, 0, 9, 9};
      }
      bool below = false;  // nothing may be attached beneath itself
      for (const MRegion* up = other.get(); up != nullptr; up = up->parent) below = below || up == region.get();
      switch (pick(8)) {
        case 0: region->Detach(); break;
        case 1: region.reset(); break;
        case 2: window.Attach(region.get()); break;
        case 3: window.SetCapture(region->owner == nullptr ? nullptr : region.get()); break;
        case 4: region->SetVisible(pick(2) == 0); break;
        case 5: window.focusRegion = region->owner == nullptr ? nullptr : region.get(); break;
        default:
          if (other != nullptr && !below) other->Attach(region.get());
      }
      window.DispatchMouse(kMousePress, {5, 5});
      for (const auto& each : regions) {
        if (each == nullptr) continue;
        each->Invalidate();
        EXPECT_TRUE(each->next == nullptr || each->next->prev == each.get());
        if (each->nativeWindow == nullptr) continue;
        EXPECT_EQ(each->owner, &window);
        const MRegion* const next = window.NextFocus(each->nativeWindow, step % 2 == 0);
        EXPECT_TRUE(next != nullptr ? next->IsFocusable() && next->owner == &window : !each->IsFocusable());
      }
    }
    if (round % 2 == 0) {
      ending.reset();
      for (const auto& region : regions) {  // in the tree, dropped out of it or below one that is
        EXPECT_TRUE(region == nullptr || (region->owner == nullptr && region->nativeWindow == nullptr));
      }
      continue;
    }
    for (auto& region : regions) region.reset();
    window.Tick();
    EXPECT_EQ(window.capturedRegion, nullptr);
    EXPECT_EQ(window.focusRegion, nullptr);
    EXPECT_EQ(window.firstRegion, nullptr);
  }
}

TEST(HitTesting, ChildrenComeFirstEarlierSiblingsBeforeLaterOnesAndEdgesAreOutside) {
  std::string asked;
  MSkinnedSection parent, first, second, inner;
  MRegion* const all[] = {&parent, &first, &second, &inner};
  for (size_t i = 0; i < 4; ++i) {
    all[i]->controlId = "pfsi"[i];
    all[i]->bounds = {0, 0, 20, 10};
    all[i]->handlerContext = &asked;
    all[i]->handler = [](MRegion* region, MWindow*, const Point*, bool inside, uint32_t, void* context) {
      *static_cast<std::string*>(context) += static_cast<char>(region->controlId - (inside ? 0 : 32));
      return !region->enabled;  // stands for its answer
    };
  }
  parent.Attach(&first);
  parent.Attach(&second);
  first.Attach(&inner);
  const auto ask = [&](Point point, bool force = false) {
    asked.clear();
    const bool consumed = HitTest(&parent, nullptr, point, force, kMouseMove);
    return asked + (consumed ? "!" : "");
  };
  for (const Point inside : {Point{1, 1}, {19, 9}}) EXPECT_EQ(ask(inside), "ifsp");
  for (const Point edge : {Point{0, 5}, {5, 0}, {20, 5}, {5, 10}}) EXPECT_EQ(ask(edge), "");
  EXPECT_EQ(ask({50, 5}, true), "IFSP") << "forced, and told that it is outside";
  first.enabled = false;
  EXPECT_EQ(ask({5, 5}), "if!") << "the second, though drawn over it, is not asked";
  first.visible = false;
  EXPECT_EQ(ask({5, 5}, true), "sp") << "hidden, with all below";
  asked.clear();
  WalkTimers(&parent, nullptr);
  EXPECT_EQ(asked, "PFIS") << "a tick reaches all, hidden ones included, whatever they answer";
}

TEST(Drawing, ParentsComeFirstAndOnlyTheDirtyPartIsDrawn) {
  Family family;
  family.window.backgroundColor = 9;
  family.parent.bounds = {10, 10, 110, 110};
  family.parent.image = ImageRef::Color(7);
  family.parent.drawFlags = kDrawFill;
  family.a.bounds = {0, 0, 40, 40};
  family.a.sourceRect = {100, 0, 20, 40};
  family.a.drawFlags = kDrawCopy;
  family.b.bounds = {20, 20, 60, 60};
  family.b.sourceRect = {0, 0, 1, 40};
  family.b.alpha = 128;
  family.c.bounds = {90, 90, 100, 100};
  for (MRegion* const child : {&family.a, &family.b, &family.c}) {
    child->image = ImageRef(&kSlot);
    family.parent.Attach(child);
  }
  const struct {
    const char* reason;
    Rect dirty;
    void (*change)(MRegion& parent);
    Lines expected;
  } rows[] = {
      {"all three pieces under the rectangle, none of the far one",
       {20, 20, 50, 60},
       [](MRegion&) {},
       {"fill 0,0,30,40 9", "fill 0,0,30,40 7", "copy 0,0,30,30 [105,10,15,30]", "blend 10,10,30,40 [0,0,1,30] 128"}},
      {"mode 3 draws nothing, its children still draw",
       {20, 20, 21, 21},
       [](MRegion& parent) { parent.drawFlags = kDrawNothing; },
       {"fill 0,0,1,1 9", "copy 0,0,1,1 [105,10,1,1]"}},
  };
  for (const auto& row : rows) {
    row.change(family.parent);
    RecordingSurface surface;
    family.window.Draw(row.dirty, surface);
    EXPECT_EQ(surface.lines, row.expected) << row.reason;
  }
}

TEST(Drawing, ThePartOfAnImageNeverLeavesItsSource) {
  const std::tuple<const char*, SourceRect, Rect, Rect, const char*> rows[] = {
      {"its last column stays within", {16, 77, 1, 33}, {3, 0, 103, 33}, {102, 0, 103, 33}, "[16,77,1,33]"},
      {"less than a pixel is one", {0, 0, 2, 2}, {0, 0, 100, 100}, {0, 0, 1, 1}, "[0,0,1,1]"},
      {"halves go to the even neighbour: 2.5 is 2", {0, 0, 5, 5}, {0, 0, 10, 10}, {5, 5, 10, 10}, "[2,2,2,2]"},
      {"moved back at the end", {0, 0, 3, 3}, {0, 0, 10, 10}, {9, 9, 10, 10}, "[2,2,1,1]"}};
  for (const auto& [reason, source, place, clip, expected] : rows) {
    EXPECT_EQ(Spell(ClippedSource(source, place, clip)), expected) << reason;
  }
}

TEST(Animation, HalvesTheWayAndArrives) {
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

}  // namespace
