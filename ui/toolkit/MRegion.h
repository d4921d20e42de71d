// A node of the visual tree: a rectangle relative to its parent that draws one piece of an image, a colour or nothing,
// and may take input. Every control derives from it. All of it belongs to the window's thread.
//
// A region is freed by whoever made it, never by its parent. A region still attached when it ends takes itself out of
// the tree.
#pragma once

#include <cstdint>

#include "engine/MString.h"
#include "ui/toolkit/AccProxy.h"
#include "ui/toolkit/Geometry.h"
#include "ui/toolkit/PlatformTypes.h"

class MRegion;
class MWindow;

// A sibling link that lives in the object it links. `prev` and `next` point at the link part of the neighbours.
class MLink {
 public:
  MLink* prev = nullptr;
  MLink* next = nullptr;

  // Takes this node out of its list; both its pointers become null.
  void Unlink();
  // Puts this node, which must be in no list, behind `other` and before what followed it.
  void LinkAfter(MLink* other);
};

// Called with a mouse message and the point relative to the region, or with kTimerTick and a point that means nothing.
// True means consumed: no other region is asked.
using RegionHandler = bool (*)(MRegion* region, MWindow* window, const Point* point, bool inside, uint32_t message,
                               void* context);

// What a region draws: the place where an image keeps its drawing context, or, in draw mode 0, a colour. Both share one
// word, so a null image and the colour black alike mean that nothing is drawn.
class ImageRef {
 public:
  constexpr ImageRef() = default;
  // The slot may still be empty when it is drawn; then nothing is.
  explicit ImageRef(const DrawingContext* slot) : bits(reinterpret_cast<uintptr_t>(slot)) {}
  [[nodiscard]] static constexpr ImageRef Color(uint32_t color) {
    ImageRef ref;
    ref.bits = color;
    return ref;
  }

  [[nodiscard]] constexpr bool IsNull() const { return bits == 0; }
  [[nodiscard]] constexpr uint32_t AsColor() const { return static_cast<uint32_t>(bits); }
  // Meaningful in every draw mode but 0.
  [[nodiscard]] DrawingContext Context() const {
    return bits == 0 ? nullptr : *reinterpret_cast<const DrawingContext*>(bits);
  }
  friend bool operator==(const ImageRef&, const ImageRef&) = default;

 private:
  uintptr_t bits = 0;
};

enum DrawMode : uint8_t {
  kDrawFill = 0,   // solid colour
  kDrawCopy = 1,   // opaque stretched copy
  kDrawBlend = 2,  // premultiplied blend under the constant `alpha`
  kDrawNothing = 3,
  kDrawModeMask = 3,
};
// Set in drawFlags: the region gets a native child window, which carries keyboard focus and accessibility.
constexpr uint8_t kNativeChild = 64;

enum ControlKind : int32_t { kNoControl = 0, kButtonControl = 1, kCheckboxControl = 2, kRadioControl = 3 };

class MRegion : public MLink {
 public:
  MRegion() = default;
  MRegion(const MRegion&) = delete;
  MRegion& operator=(const MRegion&) = delete;
  virtual ~MRegion();
  // Brings what derives from the bounds up to date and asks for a repaint. Nothing here.
  virtual void Layout() {}

  Rect bounds;               // relative to the parent
  MWindow* owner = nullptr;  // set while attached
  MRegion* parent = nullptr;
  MRegion* firstChild = nullptr;
  SourceRect sourceRect;
  ImageRef image;
  RegionHandler handler = nullptr;
  void* handlerContext = nullptr;
  int32_t controlId = 0;  // below 1: never focusable
  Rect clipRect;          // scratch of the drawing pass
  uint8_t drawFlags = kDrawBlend;
  uint8_t alpha = 255;
  bool visible = true;
  bool enabled = true;
  WindowHandle nativeWindow = nullptr;
  MString label;  // text of the native window and accessible name
  AccProxyOwner accProxy{nullptr, nullptr};
  int32_t controlKind = kNoControl;

  // Makes `child` the last child; one that is in the list already stays where it is. With kNativeChild set it gets its
  // native window, as soon as this region belongs to a window.
  void Attach(MRegion* child);
  // Takes this region out of the tree and ends its native window. Detaching a first child leaves its parent without
  // any child: the siblings after it drop out with it. Panels and text areas rely on that to clear themselves.
  void Detach();
  // Also shows or hides the native window; a region that is hidden gives up the keyboard focus first.
  void SetVisible(bool on);
  // A region that is disabled gives up the keyboard focus.
  void SetEnabled(bool on);
  // Asks for a repaint of this region's rectangle.
  void Invalidate() const;
  // Moves the native window, if there is one, to where the region is now.
  void SyncNativeWindow() const;

  [[nodiscard]] MRegion* Next() const { return static_cast<MRegion*>(next); }
  // The sum of the top-left corners of this region and all its ancestors.
  [[nodiscard]] Point Origin() const;
  // The bounds relative to the window.
  [[nodiscard]] Rect AbsoluteBounds() const;
  // Whether Tab may stop here.
  [[nodiscard]] bool IsFocusable() const { return controlId >= 1 && visible && enabled; }

 private:
  friend class MWindow;
  static void Append(MRegion*& first, MRegion* child);
  void JoinWindow(MWindow* window);
  void LeaveWindow();
  void LeaveSiblings();
  [[nodiscard]] bool HoldsFocus() const;

  // The list of all that belong to `owner`, wherever they are linked: one that dropped out of the tree is still its.
  MRegion** ownedBy = nullptr;
  MRegion* nextOwned = nullptr;
};

// The region that can be made: what panels place images and groups with.
class MSkinnedSection : public MRegion {
 public:
  MSkinnedSection() = default;
  // Draws `source` of `fromImage`.
  MSkinnedSection(ImageRef fromImage, const SourceRect& source) {
    image = fromImage;
    sourceRect = source;
  }
};
