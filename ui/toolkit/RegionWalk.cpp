#include "ui/toolkit/RegionWalk.h"

#include <cmath>

#include "ui/toolkit/Events.h"

namespace {

// To the nearest, a half to the even neighbour; the images are cut for this rounding.
int32_t Round(float value) {
  return static_cast<int32_t>(std::nearbyint(value));
}

// One axis of ClippedSource.
void ClipAxis(int32_t source, int32_t sourceLength, int32_t place, int32_t placeLength, int32_t clip,
              int32_t clipLength, int32_t& start, int32_t& length) {
  const float scale = static_cast<float>(sourceLength) / static_cast<float>(placeLength);
  start = Round(static_cast<float>(clip - place) * scale) + source;
  length = Round(static_cast<float>(clipLength) * scale);
  if (length < 1) length = 1;
  if (start + length > source + sourceLength) start = source + sourceLength - length;
}

void DrawRegion(MRegion& region, const Rect& dirty, Point offset, DrawingSurface& surface) {
  Rect place = region.bounds;
  place.Offset(offset);
  if (!region.clipRect.Intersect(place, dirty)) return;
  Rect target = region.clipRect;
  target.Subtract(dirty.TopLeft());
  switch (region.drawFlags & kDrawModeMask) {
    case kDrawFill: surface.Fill(target, region.image.AsColor()); break;
    case kDrawCopy:
      surface.Copy(target, region.image.Context(), ClippedSource(region.sourceRect, place, region.clipRect));
      break;
    case kDrawBlend:
      surface.Blend(target, region.image.Context(), ClippedSource(region.sourceRect, place, region.clipRect),
                    region.alpha);
      break;
    default: break;
  }
}

}  // namespace

void DrawRegions(MRegion* first, const Rect& dirty, Point offset, DrawingSurface& surface) {
  for (MRegion* region = first; region != nullptr; region = region->Next()) {
    if (!region->visible) continue;
    if (!region->image.IsNull()) DrawRegion(*region, dirty, offset, surface);
    DrawRegions(region->firstChild, dirty, offset + region->bounds.TopLeft(), surface);
  }
}

SourceRect ClippedSource(const SourceRect& source, const Rect& place, const Rect& clip) {
  SourceRect part;
  ClipAxis(source.x, source.width, place.left, place.Width(), clip.left, clip.Width(), part.x, part.width);
  ClipAxis(source.y, source.height, place.top, place.Height(), clip.top, clip.Height(), part.y, part.height);
  return part;
}

bool HitTest(MRegion* region, MWindow* window, Point point, bool force, uint32_t message) {
  if (!region->visible) return false;
  for (MRegion* child = region->firstChild; child != nullptr; child = child->Next()) {
    if (HitTest(child, window, point - child->bounds.TopLeft(), force, message)) return true;
  }
  const bool inside = region->bounds.AtOrigin().Contains(point);
  if (region->handler == nullptr || (!inside && !force)) return false;
  return region->handler(region, window, &point, inside, message, region->handlerContext);
}

void WalkTimers(MRegion* first, MWindow* window) {
  const Point scratch;
  for (MRegion* region = first; region != nullptr; region = region->Next()) {
    if (region->handler != nullptr) {
      (void)region->handler(region, window, &scratch, false, kTimerTick, region->handlerContext);
    }
    WalkTimers(region->firstChild, window);
  }
}
