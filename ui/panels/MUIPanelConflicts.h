// Names the programs that must be closed first, and goes on by itself when they are.
#pragma once

#include <array>

#include "ui/panels/MUIPanel.h"

class MUIPanelConflicts final : public MUIPanel {
 public:
  // One program that is in the way.
  class offendingApp final : public MSkinnedSection {
   public:
    offendingApp(MInstallerWindow* window, std::unique_ptr<MSkinnedSection> warningIcon);
    void SetName(const MString& name);

    MInstallerWindow* installerWindow;
    std::unique_ptr<MTextArea> nameText;

   private:
    std::unique_ptr<MSkinnedSection> icon;
  };

  explicit MUIPanelConflicts(MInstallerWindow* window);
  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override;

  uint32_t pollTicks = 0;
  uint32_t pollPeriod = 30;
  uint8_t anyConflict = 0;
  std::unique_ptr<MTextArea> headerText;
  std::unique_ptr<MSkinnedSection> strip;  // laid out, never attached, never drawn
  std::unique_ptr<MSkinnedSection> logo;
  std::array<std::unique_ptr<offendingApp>, 6> offendingApps;

 private:
  static bool CountTick(MRegion* region, MWindow* window, const Point* point, bool inside, uint32_t message,
                        void* context);
  void Show();
  void Resize();
  void Hide();
  void Poll();
  [[nodiscard]] bool RefreshConflicts(uint32_t mask);
  [[nodiscard]] bool MustLook() const;
  [[nodiscard]] bool IsControlFileLocked() const;
  void GoOn();
};
