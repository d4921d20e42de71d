// A real window of the toolkit for a test, with the regions that the test places in it.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "tests/support/RecordingHost.h"
#include "tests/support/TestDesktop.h"
#include "tests/ui/toolkit/WindowDriver.h"
#include "ui/toolkit/MWindow.h"
#include "ui/toolkit/MorphUI.h"

// Keeps the events that reach it as lines and counts its frames.
class EventWindow final : public MWindow {
 public:
  explicit EventWindow(MorphUI* ui) : MWindow(ui) {
    backgroundColor = RGB(50, 51, 51);
    ui->window = this;
    rect = {0, 0, 400, 300};
    ApplyRect(false, false);
    Show(true);
  }
  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override {
    if (id == WindowEventId && message == kWindowFrame) {
      ++frames;
    } else {
      events.push_back(std::to_string(id) + " " + std::to_string(message) +
                       (param == 0 ? "" : " " + std::to_string(param)));
    }
    return true;
  }
  void SetFocusRegion(MRegion* region, bool showRing) override { PlaceFocus(region, showRing, nullptr); }
  // What has come since the last call.
  Lines Take() {
    driver::PumpInput(handle);
    return std::exchange(events, {});
  }

  Lines events;
  int frames = 0;
};

class WindowFixture : public testing::Test {
 protected:
  template <class Region>
  Region* Place(std::unique_ptr<Region> region, const Rect& at, int32_t id = 0) {
    Region* const placed = region.get();
    regions.push_back(std::move(region));
    placed->bounds = at;
    placed->controlId = id;
    window.Attach(placed);
    placed->Layout();
    return placed;
  }

  RecordingHost host;
  MorphUI ui{&host, nullptr};
  EventWindow window{&ui};
  std::vector<std::unique_ptr<MRegion>> regions;
};
