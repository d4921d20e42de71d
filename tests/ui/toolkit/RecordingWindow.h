// A window of the toolkit without a window system: what it would ask of one is kept as lines, and native children are
// numbers. For tests of the logic, in both builds.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/WideText.h"
#include "tests/support/Texts.h"
#include "ui/toolkit/DrawingSurface.h"
#include "ui/toolkit/MWindow.h"

inline std::string Spell(const Rect& rect) {
  return std::to_string(rect.left) + "," + std::to_string(rect.top) + "," + std::to_string(rect.right) + "," +
         std::to_string(rect.bottom);
}
inline std::string Spell(const SourceRect& rect) {
  return "[" + std::to_string(rect.x) + "," + std::to_string(rect.y) + "," + std::to_string(rect.width) + "," +
         std::to_string(rect.height) + "]";
}

class RecordingPlatform final : public WindowPlatform {
 public:
  explicit RecordingPlatform(Lines& to) : log(to) {}

  void Invalidate(const Rect& rect) override { Add("invalidate " + Spell(rect)); }
  void Post(uint32_t id, uint32_t message, int64_t) override {
    Add("post " + std::to_string(id) + " " + std::to_string(message));
  }
  void Resize(int32_t width, int32_t height) override {
    Add("resize " + std::to_string(width) + " " + std::to_string(height));
  }
  void SetTitle(const MString& title) override { Add("title " + ToUtf8(title.View())); }
  void Show(bool on) override { Add(on ? "show" : "hide"); }
  void SetCursorShape(CursorKind kind) override { Add(kind == CursorKind::Hand ? "hand" : "arrow"); }
  void SetCapture(bool on) override { Add(on ? "capture" : "release"); }
  void CreateChild(MRegion& region, const Rect& place) override {
    region.nativeWindow = reinterpret_cast<WindowHandle>(++lastChild * 16);
    children.push_back(region.nativeWindow);
    regions[region.nativeWindow] = &region;
    Add("child " + Name(region.nativeWindow) + " " + Spell(place));
  }
  void DestroyChild(WindowHandle child) override {
    std::erase(children, child);
    regions.erase(child);
    if (focus == child) focus = nullptr;
    Add("destroy " + Name(child));
  }
  void MoveChild(WindowHandle child, const Rect& place) override { Add("move " + Name(child) + " " + Spell(place)); }
  void ShowChild(WindowHandle child, bool on) override { Add((on ? "show " : "hide ") + Name(child)); }
  bool HoldsFocus(WindowHandle child) override { return child == focus; }
  void SetFocus(WindowHandle child) override {
    focus = child;
    Add("focus " + Name(child));
  }
  WindowHandle Sibling(WindowHandle child, ChildStep step) override {
    const auto at = std::find(children.begin(), children.end(), child);
    if (at == children.end()) return nullptr;
    switch (step) {
      case ChildStep::First: return children.front();
      case ChildStep::Last: return children.back();
      case ChildStep::Next: return at + 1 == children.end() ? nullptr : *(at + 1);
      default: return at == children.begin() ? nullptr : *(at - 1);
    }
  }
  MRegion* RegionOf(WindowHandle child) override { return regions.at(child); }
  int32_t Notify(int32_t code, int64_t value) override {
    Add("notify " + std::to_string(code) + " " + std::to_string(value));
    return 0;
  }
  void Quit(int32_t code) override { Add("quit " + std::to_string(code)); }
  void OpenUrl(const MString& url) override { Add("open " + ToUtf8(url.View())); }
  void OpenSettingsApplet() override { Add("settings"); }

  WindowHandle focus = nullptr;
  std::vector<WindowHandle> children;

 private:
  static std::string Name(WindowHandle child) { return std::to_string(reinterpret_cast<uintptr_t>(child) / 16); }
  void Add(const std::string& line) { log.push_back(line); }

  Lines& log;
  std::map<WindowHandle, MRegion*> regions;
  uintptr_t lastChild = 0;
};

class RecordingWindow final : public MWindow {
 public:
  RecordingWindow() : MWindow(nullptr, std::make_unique<RecordingPlatform>(log)) {}

  bool HandleEvent(uint32_t id, uint32_t message, int64_t) override {
    log.push_back("event " + std::to_string(id) + " " + std::to_string(message));
    return true;
  }
  void SetFocusRegion(MRegion* region, bool showRing) override {
    log.push_back(std::string(region == nullptr ? "focus none" : "focus region") + (showRing ? " ring" : ""));
    PlaceFocus(region, showRing, nullptr);
  }
  RecordingPlatform& Platform() { return static_cast<RecordingPlatform&>(*platform); }
  // What was asked for since the last call, without repaints unless they are wanted.
  Lines Take(bool withRepaints = false) {
    Lines taken;
    taken.swap(log);
    if (!withRepaints) std::erase_if(taken, [](const std::string& line) { return line.rfind("invalidate", 0) == 0; });
    return taken;
  }

  Lines log;
};

// What regions drew, as lines.
class RecordingSurface final : public DrawingSurface {
 public:
  void Fill(const Rect& place, uint32_t color) override {
    lines.push_back("fill " + Spell(place) + " " + std::to_string(color));
  }
  void Copy(const Rect& place, DrawingContext, const SourceRect& source) override {
    lines.push_back("copy " + Spell(place) + " " + Spell(source));
  }
  void Blend(const Rect& place, DrawingContext, const SourceRect& source, uint8_t alpha) override {
    lines.push_back("blend " + Spell(place) + " " + Spell(source) + " " + std::to_string(alpha));
  }

  Lines lines;
};
