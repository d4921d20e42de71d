// A frame of nine pieces: three rows, of which the middle one is stretched downwards too.
#pragma once

#include "ui/toolkit/MScale3Section.h"

struct MScale9Data {
  MScale3Data rows[3];  // top, middle, bottom

  MScale9Data() = default;
  // The pieces as they lie in the image from x, y on: three widths across and three heights down.
  MScale9Data(ImageRef image, int32_t x, int32_t y, const int32_t (&widths)[3], const int32_t (&heights)[3],
              uint8_t drawMode = kDrawBlend);
};

class MScale9Section : public MSkinnedSection {
 public:
  MScale9Section(MWindow* inWindow, const MScale9Data* look);
  void Layout() override;

  std::unique_ptr<MScale3Section> top;
  std::unique_ptr<MScale3Section> middle;
  std::unique_ptr<MScale3Section> bottom;
};
