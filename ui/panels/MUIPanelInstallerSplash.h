// The installer's first panel: banner, licence box, INSTALL.
#pragma once

#include "ui/panels/MUIPanel.h"
#include "ui/toolkit/MButton.h"
#include "ui/toolkit/MScale9Section.h"
#include "ui/toolkit/MTooltipArea.h"

class MUIPanelInstallerSplash final : public MUIPanel {
 public:
  explicit MUIPanelInstallerSplash(MInstallerWindow* window);
  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override;

  std::unique_ptr<MScale9Section> background;
  std::unique_ptr<MSkinnedSection> banner;
  std::unique_ptr<MSkinnedSection> logo;
  std::unique_ptr<MCheckboxButton> licenseCheckbox;
  std::unique_ptr<MScale9Data> backgroundData;
  std::unique_ptr<MTextArea> licenseLink;
  std::unique_ptr<MTextArea> licenseLabel;
  int32_t autoExitTicks = 0;  // ticks of the timer until the window leaves by itself; 0: never
  std::unique_ptr<MTooltipArea> installTooltip;

  // Steps of the progress panel when it runs for an installation; `context` is this panel.
  static bool InstallDoneCallback(class MUIPanelProgress* panel, uint32_t code, uint32_t reserved, void* context);

 private:
  void Show();
  void Resize();
  void Hide();
  void FollowLicense();
  void StartInstall();
  void OnBarFull(MUIPanelProgress& panel) const;
};
