// The three passes over the region tree: drawing, hit testing and the timer.
#pragma once

#include <cstdint>

#include "ui/toolkit/DrawingSurface.h"
#include "ui/toolkit/MRegion.h"

// Draws `first` and its later siblings with all their children, parents before children and earlier siblings before
// later ones. `dirty` is in window coordinates and lies at the surface's origin; `offset` is the parent's place.
void DrawRegions(MRegion* first, const Rect& dirty, Point offset, DrawingSurface& surface);

// Which part of an image fills the part `clip` of a region at `place` that shows `source`: at least one pixel each way,
// and never beyond the source's right and bottom.
[[nodiscard]] SourceRect ClippedSource(const SourceRect& source, const Rect& place, const Rect& clip);

// Offers a mouse message to the children, in list order, then to `region` itself; true as soon as one consumes it. So
// an earlier sibling is asked before a later one, although that is drawn over it. `point` is relative to the region.
// With `force` a region is asked even if the point is not inside; that serves the region that has captured the pointer.
[[nodiscard]] bool HitTest(MRegion* region, MWindow* window, Point point, bool force, uint32_t message);

// Calls every handler below `first` and its siblings with kTimerTick, hidden regions included.
void WalkTimers(MRegion* first, MWindow* window);
