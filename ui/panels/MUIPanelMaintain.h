// A choice between reinstalling and removing, for hosts that offer both.
#pragma once

#include "ui/panels/MUIPanel.h"
#include "ui/toolkit/MButton.h"

class MUIPanelMaintain final : public MUIPanel {
 public:
  explicit MUIPanelMaintain(MInstallerWindow* window);
  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override;

  std::unique_ptr<MButton> reinstallButton;
  std::unique_ptr<MButton> uninstallButton;
  std::unique_ptr<MTextArea> statusText;
  std::unique_ptr<MTextArea> uninstallText;

 private:
  void Show();
  void Hide();
};
