// A bar that fills from left to right, 0 to 100.
#pragma once

#include <cstdint>
#include <memory>

#include "ui/toolkit/MScale3Section.h"

class MProgressBar : public MSkinnedSection {
 public:
  MProgressBar(MWindow* inWindow, const MScale3Data& trackLook, const MScale3Data& fillLook);
  // Brings the value into 0 to 100 and the fill to its width; at 0 nothing is filled.
  void Layout() override;

  int32_t value = 0;
  MWindow* window;
  std::unique_ptr<MScale3Section> track;
  std::unique_ptr<MScale3Section> fill;

 private:
  MScale3Data trackData;
  MScale3Data fillData;
};

// The width of the fill in a bar `barWidth` wide at `value` from 0 to 100.
[[nodiscard]] constexpr int32_t ProgressFillWidth(int32_t barWidth, int32_t value) {
  return (barWidth - 7) * (value + 1) / 101 + 4;
}
