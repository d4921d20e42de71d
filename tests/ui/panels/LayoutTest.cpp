// Where each region of a panel lies, at the widths that languages choose: 730, 750 for Czech, and 450 without a width.
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/ui/panels/PanelFixture.h"

namespace {

class Layout : public PanelFixture {
 protected:
  // The panel at a width, as when the string table had asked for it.
  void OpenAt(int64_t panel, int32_t width) {
    Open(panel);
    Widen(width);
  }
  void Widen(int32_t width) {
    window->rect = {0, 0, width, kWindowHeight};
    window->ApplyRect(false, true);
  }
  static constexpr int32_t kHeight = kWindowHeight - 67 + 1;
};

constexpr int32_t kWidths[] = {730, 750, 450};

TEST_F(Layout, BottomBar) {
  for (const int32_t w : kWidths) {
    OpenAt(kOpenInstaller, w);
    EXPECT_EQ(window->bottomBar->bounds, Rect::Of(0, kWindowHeight - 68, w, 67)) << w;
    EXPECT_EQ(window->leftButton->bounds, Rect::Of(94, 18, 140, 33)) << w;
    EXPECT_EQ(window->rightButton->bounds, Rect::Of(w - 156, 18, 140, 33)) << w;
    EXPECT_EQ(window->root->bounds, Rect::Of(0, 0, w, kWindowHeight - 66)) << w;
    EXPECT_EQ(window->restartText->bounds, (Rect{117, 25, 400, 42})) << w;
    EXPECT_EQ(window->messageText->bounds, (Rect{117, 10, 550, 82})) << w;
    EXPECT_EQ(window->restartIcon->bounds, (Rect{97, 25, 112, 40})) << w;
    Close();
  }
}

TEST_F(Layout, InstallerSplash) {
  for (const int32_t w : kWidths) {
    OpenAt(kOpenInstaller, w);
    const auto& panel = *window->installerSplash;
    const int32_t h = panel.bounds.Height();
    EXPECT_EQ(h, kHeight) << w;
    EXPECT_EQ(panel.background->bounds, Rect::Of(0, 0, w, h)) << w;
    EXPECT_EQ(panel.banner->bounds, Rect::Of(115, 55, 400, 130)) << w;
    EXPECT_EQ(panel.logo->bounds, Rect::Of(10, 1, 47, 71)) << w;
    EXPECT_EQ(panel.licenseCheckbox->bounds, Rect::Of(96, h - 49, 15, 15)) << w;
    EXPECT_EQ(panel.licenseLabel->bounds, Rect::Of(115, h - 50, w - 48, 20)) << w;
    EXPECT_EQ(panel.licenseLink->bounds, Rect::Of(117, h - 30, w - 48, 20)) << w;
    Close();
  }
}

TEST_F(Layout, UninstallerSplash) {
  for (const int32_t w : kWidths) {
    OpenAt(kOpenUninstaller, w);
    const auto& panel = *window->uninstallerSplash;
    EXPECT_EQ(panel.background->bounds, Rect::Of(0, 0, w, kHeight)) << w;
    EXPECT_EQ(panel.banner->bounds, Rect::Of(115, 55, 400, 130)) << w;
    EXPECT_EQ(panel.bodyText->bounds, Rect::Of(96, 220, w - 29, kHeight - 115)) << w;
    Close();
  }
}

TEST_F(Layout, FailureAndMaintenance) {
  for (const int32_t w : kWidths) {
    Build();
    Post(FailureEventId, kShowLastError);
    Widen(w);
    const auto& failure = *window->failurePanel;
    EXPECT_EQ(failure.headerText->bounds, Rect::Of(85, 35, w - 114, 45)) << w;
    EXPECT_EQ(failure.messageText->bounds, Rect::Of(85, 80, w - 114, kHeight - 90)) << w;
    Post(CommandEventId, kOpenPanel, kOpenMaintain);
    const auto& maintain = *window->maintainPanel;
    EXPECT_EQ(maintain.reinstallButton->bounds, Rect::Of(19, 19, 140, 33)) << w;
    EXPECT_EQ(maintain.statusText->bounds, Rect::Of(169, 19, 228, 33)) << w;
    EXPECT_EQ(maintain.uninstallButton->bounds, Rect::Of(19, 69, 140, 33)) << w;
    EXPECT_EQ(maintain.uninstallText->bounds, Rect::Of(169, 69, 228, 33)) << w;
    Close();
  }
}

TEST_F(Layout, ConflictsAndProgress) {
  for (const int32_t w : kWidths) {
    OpenAt(kOpenUninstaller, w);
    const auto& rows = window->conflictsPanel->offendingApps;
    for (int32_t k = 0; k < 6; ++k) {
      const Rect at = k < 3 ? Rect::Of(85, 90 + 32 * k, 180, 28) : Rect::Of(283, 32 * k - 26, 180, 28);
      EXPECT_EQ(rows[static_cast<size_t>(k)]->bounds, at) << k;
    }
    Post(control_id::RightButton, kClicked);
    ASSERT_EQ(Active(), "progress");
    Widen(w);
    const auto& panel = *window->progressPanel;
    EXPECT_EQ(panel.bar->bounds, Rect::Of(94, 87, w - 111, 33)) << w;
    EXPECT_EQ(panel.titleText->bounds, Rect::Of(97, 40, w - 85, 25)) << w;
    EXPECT_EQ(panel.statusText->bounds, Rect::Of(20, 230, w - 85, 40)) << w;
    EXPECT_EQ(panel.percentText->bounds, Rect::Of(w - 80, 126, 60, 20)) << w;
    Close();
  }
}

TEST_F(Layout, AutoUpdate) {
  for (const int32_t w : kWidths) {
    OpenAt(kOpenAutoUpdate, w);
    const auto& panel = *window->autoUpdatePanel;
    EXPECT_EQ(panel.background->bounds, Rect::Of(0, 0, w, kHeight)) << w;
    EXPECT_EQ(panel.sideImage->bounds, Rect::Of(24, kHeight - 74, 42, 49)) << w;
    EXPECT_EQ(panel.logo->bounds, Rect::Of(21, 1, 47, 71)) << w;
    EXPECT_EQ(panel.headerText->bounds, Rect::Of(110, 18, w - 130, 46)) << w;
    EXPECT_EQ(panel.bodyText->bounds, (Rect{110, 45, w - 20, kHeight - 32})) << w;
    Close();
  }
}

TEST_F(Layout, UpdateChoice) {
  host.flags = host_flag::ReleasePlayer;
  for (const int32_t w : kWidths) {
    Install();
    Widen(w);
    ASSERT_TRUE(BarStops());
    const auto& panel = *window->progressPanel;
    EXPECT_EQ(panel.headingText->bounds, (Rect{97, 15, w - 20, 33})) << w;
    EXPECT_EQ(panel.bodyText->bounds, (Rect{97, 40, w - 20, 93})) << w;
    EXPECT_EQ(panel.learnMoreLink->bounds, Rect::Of(97, 60, w - 100, 40)) << w;
    for (int32_t k = 0; k < 3; ++k) {
      EXPECT_EQ(panel.radios[static_cast<size_t>(k)]->bounds, Rect::Of(97, 98 + 24 * k, 15, 15)) << w;
      EXPECT_EQ(panel.radioLabels[static_cast<size_t>(k)]->bounds, (Rect{117, 98 + 24 * k, w - 20, 116 + 24 * k})) << w;
    }
    Close();
  }
}

// A second line would lie on what stands below it, or outside the window.
TEST_F(Layout, TextsWithRoomForOneLineTakeOneInEveryLanguage) {
  host.flags = host_flag::ReleasePlayer;
  const LCID before = GetThreadLocale();
  for (const int language : {0x0409, 0x0405, 0x0407, 0x0C0A, 0x040C, 0x0410, 0x0411, 0x0412, 0x0413, 0x0415, 0x0416,
                             0x0419, 0x041D, 0x041F, 0x0804, 0x0404}) {
    SCOPED_TRACE(language);
    SetThreadLocale(MAKELCID(static_cast<WORD>(language), SORT_DEFAULT));
    Open(kOpenAutoUpdate);
    EXPECT_EQ(window->autoUpdatePanel->headerText->Render(), 1);
    Close();
    Open(kOpenUninstaller);
    EXPECT_EQ(window->uninstallerSplash->bodyText->Render(), 1);
    Close();
    Open(kOpenInstaller);
    MTextArea& license = *window->installerSplash->licenseLabel;
    license.bounds.right = window->rect.right;
    EXPECT_EQ(license.Render(), 1);
    Click(*window->installerSplash->licenseCheckbox);
    for (MButton* const button : {window->leftButton.get(), window->rightButton.get()}) {
      EXPECT_EQ(button->labelText->Render(), 1);
    }
    Click(*window->rightButton);
    window->progressPanel->current = 98;
    ASSERT_TRUE(BarStops());
    const auto& panel = *window->progressPanel;
    for (MTextArea* const text : {panel.headingText.get(), panel.bodyText.get(), panel.learnMoreLink.get(),
                                  panel.radioLabels[0].get(), panel.radioLabels[1].get(), panel.radioLabels[2].get()}) {
      EXPECT_EQ(text->Render(), 1) << TextOf(*text);
    }
    Close();
  }
  SetThreadLocale(before);
}

}  // namespace
