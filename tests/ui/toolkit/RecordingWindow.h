// A window of the toolkit without a window system: what it would ask of one is kept as lines, and a native child is
// its region's address. For tests of the logic, in both builds.
#pragma once

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Texts.h"
#include "ui/toolkit/DrawingSurface.h"
#include "ui/toolkit/MWindow.h"

inline std::ostream& operator<<(std::ostream& to, const Rect& rect) {
  return to << rect.left << ',' << rect.top << ',' << rect.right << ',' << rect.bottom;
}
inline std::ostream& operator<<(std::ostream& to, const SourceRect& rect) {
  return to << '[' << rect.x << ',' << rect.y << ',' << rect.width << ',' << rect.height << ']';
}
// All parts in one line, with blanks between them.
template <class... Parts>
std::string Spell(const Parts&... parts) {
  std::ostringstream line;
  const char* gap = "";
  ((line << gap << parts, gap = " "), ...);
  return line.str();
}

class RecordingPlatform final : public WindowPlatform {
 public:
  explicit RecordingPlatform(Lines& to) : log(to) {}

  void Invalidate(const Rect& rect) override { log.push_back(Spell("invalidate", rect)); }
  void Post(uint32_t id, uint32_t message, int64_t) override { log.push_back(Spell("post", id, message)); }
  void Resize(int32_t width, int32_t height) override { log.push_back(Spell("resize", width, height)); }
  void SetTitle(const MString&) override {}
  void Show(bool) override {}
  void SetCursorShape(CursorKind kind) override { log.emplace_back(kind == CursorKind::Hand ? "hand" : "arrow"); }
  void SetCapture(bool on) override { log.emplace_back(on ? "capture" : "release"); }
  void CreateChild(MRegion& region, const Rect& place) override {
    region.nativeWindow = reinterpret_cast<WindowHandle>(&region);
    children.push_back(region.nativeWindow);
    log.push_back(Spell("child", place));
  }
  void DestroyChild(WindowHandle child) override {
    std::erase(children, child);
    if (focus == child) focus = nullptr;
    log.emplace_back("destroy");
  }
  void MoveChild(WindowHandle, const Rect& place) override { log.push_back(Spell("move", place)); }
  void ShowChild(WindowHandle, bool on) override { log.emplace_back(on ? "show" : "hide"); }
  bool HoldsFocus(WindowHandle child) override { return child == focus; }
  void SetFocus(WindowHandle child) override { focus = child; }
  WindowHandle Sibling(WindowHandle child, ChildStep step) override {
    const auto at = std::find(children.begin(), children.end(), child);
    switch (step) {
      case ChildStep::First: return children.front();
      case ChildStep::Last: return children.back();
      case ChildStep::Next: return at + 1 == children.end() ? nullptr : *(at + 1);
      default: return at == children.begin() ? nullptr : *(at - 1);
    }
  }
  MRegion* RegionOf(WindowHandle child) override { return reinterpret_cast<MRegion*>(child); }
  int32_t Notify(int32_t, int64_t) override { return 0; }
  void Quit(int32_t) override {}
  void OpenUrl(const MString& url) override { log.push_back("open " + Text(url)); }
  void OpenSettingsApplet() override { log.emplace_back("settings"); }

 private:
  WindowHandle focus = nullptr;
  std::vector<WindowHandle> children;
  Lines& log;
};

class RecordingWindow final : public MWindow {
 public:
  RecordingWindow() : MWindow(nullptr, std::make_unique<RecordingPlatform>(log)) {}

  bool HandleEvent(uint32_t id, uint32_t message, int64_t) override {
    log.push_back(Spell("event", id, message));
    return true;
  }
  void SetFocusRegion(MRegion* region, bool showRing) override {
    log.emplace_back(region == nullptr ? "focus none" : "focus region");
    PlaceFocus(region, showRing, nullptr);
  }
  // What was asked for since the last call, without repaints.
  Lines Take() {
    Lines taken;
    taken.swap(log);
    std::erase_if(taken, [](const std::string& line) { return line.starts_with("invalidate"); });
    return taken;
  }

  Lines log;
};

// What regions drew, as lines.
class RecordingSurface final : public DrawingSurface {
 public:
  void Fill(const Rect& place, uint32_t color) override { lines.push_back(Spell("fill", place, color)); }
  void Copy(const Rect& place, DrawingContext, const SourceRect& source) override {
    lines.push_back(Spell("copy", place, source));
  }
  void Blend(const Rect& place, DrawingContext, const SourceRect& source, uint8_t alpha) override {
    lines.push_back(Spell("blend", place, source, int{alpha}));
  }

  Lines lines;
};
