// The bar, what it stands for, and afterwards the choice of how updates come.
//
// The bar is paced by the window's timer alone and measures no work. When it reaches its target the callback is told,
// and the host works while the window stands still.
#pragma once

#include <array>

#include "ui/panels/MUIPanel.h"
#include "ui/toolkit/MProgressBar.h"
#include "ui/toolkit/MRadioGroup.h"

class MUIPanelProgress;

enum ProgressCode : uint32_t {
  kProgressDone = 0,           // the user pressed DONE
  kProgressIdleTick = 1,       // every tick after the bar has stopped
  kProgressReachedTarget = 5,  // once
};
// `reserved` is 0. What it answers is not looked at.
using ProgressCallback = bool (*)(MUIPanelProgress* panel, uint32_t code, uint32_t reserved, void* context);

class MUIPanelProgress final : public MUIPanel {
 public:
  explicit MUIPanelProgress(MInstallerWindow* window);
  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override;

  uint8_t running = 0;
  float current = 0;
  float target = 0;
  float step = 0;
  ProgressCallback callback = nullptr;
  void* callbackContext = nullptr;
  std::unique_ptr<MProgressBar> bar;
  std::unique_ptr<MTextArea> titleText;
  std::unique_ptr<MTextArea> statusText;
  std::unique_ptr<MTextArea> percentText;
  std::unique_ptr<MSkinnedSection> logo;
  int32_t lineCount = 0;
  std::unique_ptr<MTextArea> bodyText;
  std::unique_ptr<MTextArea> learnMoreLink;
  std::unique_ptr<MRadioGroup> radioGroup;
  std::array<std::unique_ptr<MRadioButton>, 3> radios;
  std::array<std::unique_ptr<MTextArea>, 3> radioLabels;
  uint8_t choiceShown = 0;
  std::unique_ptr<MTextArea> headingText;

  // Readies the bar for its way from `from` to `to`. Does nothing once the panel was left, which ends it.
  void Arm(float from, float to, float by, ProgressCallback function, void* context, const MString& title);

 private:
  static bool PostTick(MRegion* region, MWindow* window, const Point* point, bool inside, uint32_t message,
                       void* context);
  void BuildChoice();
  void Show();
  void Resize();
  void Hide();
  void Tick();
  void Advance();
  void Stop();
  void ReplaceTitle();
  void ShowUpdateChoice();
  void PlaceRadio(size_t which, int32_t radioTop, int32_t labelTop);
  void Finish();
  void Tell(ProgressCode code);
  [[nodiscard]] bool IsReleasePlayer() const;
  // An update from a version that already asked how updates are to come does not ask again.
  [[nodiscard]] bool WasAskedBefore() const;

  bool atWork = false;  // the callback has been told that the bar is full, and has not returned
};
