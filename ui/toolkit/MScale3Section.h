// A section of three pieces: caps of their own width at both ends and a middle that is stretched between them.
#pragma once

#include <memory>

#include "ui/toolkit/MRegion.h"

struct MScale3Data {
  ImageRef image;
  SourceRect left;
  SourceRect middle;
  SourceRect right;
  uint8_t drawMode = kDrawBlend;
};

class MScale3Section : public MSkinnedSection {
 public:
  // Null data makes a section without pieces.
  explicit MScale3Section(MWindow* inWindow, const MScale3Data* look);
  // Places the pieces and gives them the look that `data` names now. Does nothing without data.
  void Layout() override;

  const MScale3Data* data;  // the current look; not owned
  std::unique_ptr<MSkinnedSection> left;
  std::unique_ptr<MSkinnedSection> middle;
  std::unique_ptr<MSkinnedSection> right;
  MWindow* window;
};
