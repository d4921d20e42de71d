// The uninstaller's first panel.
#pragma once

#include "ui/panels/MUIPanel.h"
#include "ui/toolkit/MScale9Section.h"

class MUIPanelProgress;

class MUIPanelUninstallerSplash final : public MUIPanel {
 public:
  explicit MUIPanelUninstallerSplash(MInstallerWindow* window);
  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override;

  std::unique_ptr<MScale9Section> background;
  std::unique_ptr<MSkinnedSection> logo;
  std::unique_ptr<MSkinnedSection> banner;
  std::unique_ptr<MTextArea> bodyText;
  std::unique_ptr<MScale9Data> backgroundData;

  // Readies the progress panel for a removal.
  static void ArmRemoval(MInstallerWindow& window);

 private:
  void Show();
  void Resize();
  // Steps of the progress panel when it runs for a removal. No tick ends it: an uninstaller waits for its user.
  static bool UninstallDoneCallback(MUIPanelProgress* panel, uint32_t code, uint32_t reserved, void* context);
};
