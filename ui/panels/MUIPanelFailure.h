// What went wrong, in the host's words.
#pragma once

#include "ui/panels/MUIPanel.h"

class MUIPanelFailure final : public MUIPanel {
 public:
  explicit MUIPanelFailure(MInstallerWindow* window);
  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override;

  std::unique_ptr<MSkinnedSection> strip;
  std::unique_ptr<MSkinnedSection> logo;
  std::unique_ptr<MTextArea> headerText;
  std::unique_ptr<MTextArea> messageText;

 private:
  void Show();
  void Resize();
  void ShowLastError();

  std::unique_ptr<MSkinnedSection> warning_;
};
