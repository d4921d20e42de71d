// Points and rectangles of the toolkit, in pixels. Plain values; any thread.
#pragma once

#include <algorithm>
#include <cstdint>

struct Point {
  int32_t x = 0;
  int32_t y = 0;

  friend bool operator==(const Point&, const Point&) = default;
};

// Right and bottom are the first column and row outside.
struct Rect {
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = 0;
  int32_t bottom = 0;

  // From x, y, width and height.
  [[nodiscard]] static constexpr Rect Of(int32_t x, int32_t y, int32_t width, int32_t height) {
    return {x, y, x + width, y + height};
  }

  // May be negative: a middle piece between caps wider than its section is.
  [[nodiscard]] constexpr int32_t Width() const { return right - left; }
  [[nodiscard]] constexpr int32_t Height() const { return bottom - top; }
  [[nodiscard]] constexpr Point TopLeft() const { return {left, top}; }
  [[nodiscard]] constexpr bool IsEmpty() const { return right <= left || bottom <= top; }

  constexpr void Offset(Point by) {
    left += by.x;
    top += by.y;
    right += by.x;
    bottom += by.y;
  }
  constexpr void Subtract(Point by) { Offset({-by.x, -by.y}); }
  // The same size with its top-left at 0, 0.
  [[nodiscard]] constexpr Rect AtOrigin() const { return {0, 0, Width(), Height()}; }
  // Becomes the part common to `a` and `b`; false when there is none.
  constexpr bool Intersect(const Rect& a, const Rect& b) {
    *this = {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
             std::min(a.bottom, b.bottom)};
    return !IsEmpty();
  }
  // Strictly inside: a point on any edge is outside.
  [[nodiscard]] constexpr bool Contains(Point point) const {
    return point.x > left && point.y > top && point.x < right && point.y < bottom;
  }

  friend bool operator==(const Rect&, const Rect&) = default;
};

constexpr Point operator+(Point a, Point b) {
  return {a.x + b.x, a.y + b.y};
}
constexpr Point operator-(Point a, Point b) {
  return {a.x - b.x, a.y - b.y};
}

// A rectangle of an image.
struct SourceRect {
  int32_t x = 0;
  int32_t y = 0;
  int32_t width = 0;
  int32_t height = 0;

  friend bool operator==(const SourceRect&, const SourceRect&) = default;
};
