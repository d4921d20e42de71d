// Offers an update that was found in the background.
#pragma once

#include "ui/panels/MUIPanel.h"
#include "ui/toolkit/MScale9Section.h"

class MUIPanelAutoUpdate final : public MUIPanel {
 public:
  explicit MUIPanelAutoUpdate(MInstallerWindow* window);
  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override;

  std::unique_ptr<MScale9Section> background;
  std::unique_ptr<MSkinnedSection> logo;
  std::unique_ptr<MSkinnedSection> sideImage;  // laid out, never attached, never drawn
  std::unique_ptr<MScale9Data> backgroundData;
  std::unique_ptr<MTextArea> headerText;
  std::unique_ptr<MTextArea> bodyText;

 private:
  void Show();
  void Resize();
  void Update();
  void OpenDownloadPage();
};
