// The one window of installer, uninstaller and updater: a skinned ground, a bar with two buttons, and a panel.
//
// It decides nothing about an installation. The host posts which panel opens, is told of every milestone through
// MorphUI::Notify, and answers questions through HostCallbacks. One thread; only MorphUI::PostEvent is for others.
#pragma once

#include <memory>

#include "ui/panels/MUIPanelAutoUpdate.h"
#include "ui/panels/MUIPanelConflicts.h"
#include "ui/panels/MUIPanelFailure.h"
#include "ui/panels/MUIPanelInstallerSplash.h"
#include "ui/panels/MUIPanelMaintain.h"
#include "ui/panels/MUIPanelProgress.h"
#include "ui/panels/MUIPanelUninstallerSplash.h"
#include "ui/toolkit/MButton.h"
#include "ui/toolkit/MImage.h"
#include "ui/toolkit/MScale9Section.h"
#include "ui/toolkit/MWindow.h"

class HostCallbacks;
class LumenBrokerShim;

// What the host posts with CommandEventId.
enum HostCommand : uint32_t {
  kFinish = 5,     // parameter: the exit code
  kOpenPanel = 6,  // parameter: OpeningPanel
};
enum OpeningPanel : int64_t { kOpenInstaller = 0, kOpenUninstaller = 1, kOpenMaintain = 2, kOpenAutoUpdate = 3 };
// What the host posts with FailureEventId.
enum FailureMessage : uint32_t { kShowLastError = 8 };

// The user left by a button where nothing had begun.
constexpr int32_t kExitQuit = -1;
constexpr int32_t kExitDone = 0;
constexpr int32_t kWindowHeight = 345;

class MInstallerWindow final : public MWindow {
 public:
  explicit MInstallerWindow(MorphUI* ui);
  ~MInstallerWindow();

  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override;
  void SetFocusRegion(MRegion* region, bool showRing) override;

  std::unique_ptr<MImage> skinImage;
  std::unique_ptr<MImage> bannerImage;
  std::unique_ptr<MSkinnedSection> root;  // holds the panel that is shown
  std::unique_ptr<MScale3Section> bottomBar;
  std::unique_ptr<MButton> leftButton;
  std::unique_ptr<MButton> rightButton;
  std::unique_ptr<MUIPanelInstallerSplash> installerSplash;
  std::unique_ptr<MUIPanelUninstallerSplash> uninstallerSplash;
  std::unique_ptr<MUIPanelMaintain> maintainPanel;
  std::unique_ptr<MUIPanelConflicts> conflictsPanel;
  std::unique_ptr<MUIPanelProgress> progressPanel;
  std::unique_ptr<MUIPanelFailure> failurePanel;
  std::unique_ptr<MUIPanelAutoUpdate> autoUpdatePanel;
  std::unique_ptr<MScale9Data> focusRingData;
  std::unique_ptr<MTextArea> restartText;
  std::unique_ptr<MTextArea> messageText;
  std::unique_ptr<MSkinnedSection> restartIcon;
  std::unique_ptr<MScale9Section> focusRing;

  // What panels need of the window.
  [[nodiscard]] HostCallbacks& Host() const;
  [[nodiscard]] LumenBrokerShim& Shim() const;
  [[nodiscard]] ImageRef Skin() const { return skinImage->Ref(); }
  [[nodiscard]] ImageRef Banner() const { return bannerImage->Ref(); }
  [[nodiscard]] MString Text(uint32_t id) const;
  // The product kinds that the host is about, as it answers for them.
  [[nodiscard]] uint32_t QueryProductMask() const;
  [[nodiscard]] MUIPanel* ActivePanel() const;

  // Hides the panel that is shown and shows this one; null shows nothing new.
  void ShowPanel(MUIPanel* panel);
  // Takes the width that the string table asks for, at once.
  void TakeStandardSize();
  // Approaches the standard height at the width that the window has or is approaching.
  void AnimateToStandardHeight();
  void SetTitle(const MString& text);
  // Also for the screen reader.
  void SetButtonText(MButton& button, const MString& text);
  void SetButtonEnabled(MButton& button, bool on);
  // "Please restart your browser", beside the buttons.
  void ShowRestartNote();
  void HideRestartNote();
  // Ends the two panels that must be gone when the window closes. A panel that calls this may be one of them.
  void EndLatePanels();

 private:
  void Build();
  void BuildBottomBar();
  void BuildNotes();
  void Resize();
  void OpenPanel(int64_t which);

  std::unique_ptr<MScale3Data> bottomBarData;
};
