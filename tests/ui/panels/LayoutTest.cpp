// Where each region of a panel lies, at the widths that languages choose: 730, 750 for Czech, and 450 without a width.
#include <windows.h>

#include <gtest/gtest.h>

#include <map>

#include "tests/ui/panels/PanelFixture.h"

namespace {

class Layout : public PanelFixture {
 protected:
  void Widen(int32_t width) {
    window->rect = {0, 0, width, kWindowHeight};
    window->ApplyRect(false, true);
  }
  // At each width, as when the string table had asked for it: opened, the regions lie where `table` says.
  void ExpectTable(int64_t panel, const std::function<void(int32_t w)>& table) {
    for (const int32_t w : {730, 750, 450}) {
      SCOPED_TRACE(w);
      Open(panel);
      Widen(w);
      table(w);
      Close();
    }
  }
  static constexpr int32_t kHeight = kWindowHeight - 66;
};

TEST_F(Layout, BottomBar) {
  ExpectTable(kOpenInstaller, [&](int32_t w) {
    EXPECT_EQ(window->bottomBar->bounds, Rect::Of(0, kWindowHeight - 68, w, 67));
    EXPECT_EQ(window->leftButton->bounds, Rect::Of(94, 18, 140, 33));
    EXPECT_EQ(window->rightButton->bounds, Rect::Of(w - 156, 18, 140, 33));
    EXPECT_EQ(window->root->bounds, Rect::Of(0, 0, w, kWindowHeight - 66));
    EXPECT_EQ(window->restartText->bounds, (Rect{117, 25, 400, 42}));
    EXPECT_EQ(window->messageText->bounds, (Rect{117, 10, 550, 82}));
    EXPECT_EQ(window->restartIcon->bounds, (Rect{97, 25, 112, 40}));
  });
}

TEST_F(Layout, InstallerSplash) {
  ExpectTable(kOpenInstaller, [&](int32_t w) {
    const auto& panel = *window->installerSplash;
    EXPECT_EQ(panel.background->bounds, Rect::Of(0, 0, w, kHeight));
    EXPECT_EQ(panel.banner->bounds, Rect::Of(115, 55, 400, 130));
    EXPECT_EQ(panel.logo->bounds, Rect::Of(10, 1, 47, 71));
    EXPECT_EQ(panel.licenseCheckbox->bounds, Rect::Of(96, kHeight - 49, 15, 15));
    EXPECT_EQ(panel.licenseLabel->bounds, Rect::Of(115, kHeight - 50, w - 48, 20));
    EXPECT_EQ(panel.licenseLink->bounds, Rect::Of(117, kHeight - 30, w - 48, 20));
  });
}

TEST_F(Layout, UninstallerSplash) {
  ExpectTable(kOpenUninstaller, [&](int32_t w) {
    const auto& panel = *window->uninstallerSplash;
    EXPECT_EQ(panel.background->bounds, Rect::Of(0, 0, w, kHeight));
    EXPECT_EQ(panel.banner->bounds, Rect::Of(115, 55, 400, 130));
    EXPECT_EQ(panel.bodyText->bounds, Rect::Of(96, 220, w - 29, kHeight - 115));
  });
}

TEST_F(Layout, FailureAndMaintenance) {
  ExpectTable(kOpenMaintain, [&](int32_t w) {
    const auto& maintain = *window->maintainPanel;
    EXPECT_EQ(maintain.reinstallButton->bounds, Rect::Of(19, 19, 140, 33));
    EXPECT_EQ(maintain.statusText->bounds, Rect::Of(169, 19, 228, 33));
    EXPECT_EQ(maintain.uninstallButton->bounds, Rect::Of(19, 69, 140, 33));
    EXPECT_EQ(maintain.uninstallText->bounds, Rect::Of(169, 69, 228, 33));
    Post(FailureEventId, kShowLastError);
    Widen(w);
    const auto& failure = *window->failurePanel;
    EXPECT_EQ(failure.headerText->bounds, Rect::Of(85, 35, w - 114, 45));
    EXPECT_EQ(failure.messageText->bounds, Rect::Of(85, 80, w - 114, kHeight - 90));
  });
}

TEST_F(Layout, ConflictsAndProgress) {
  ExpectTable(kOpenUninstaller, [&](int32_t w) {
    const auto& rows = window->conflictsPanel->offendingApps;
    for (int32_t k = 0; k < 6; ++k) {
      const Rect at = k < 3 ? Rect::Of(85, 90 + 32 * k, 180, 28) : Rect::Of(283, 32 * k - 26, 180, 28);
      EXPECT_EQ(rows[static_cast<size_t>(k)]->bounds, at) << k;
    }
    Post(control_id::RightButton, kClicked);
    ASSERT_EQ(Active(), "progress");
    Widen(w);
    const auto& panel = *window->progressPanel;
    EXPECT_EQ(panel.bar->bounds, Rect::Of(94, 87, w - 111, 33));
    EXPECT_EQ(panel.titleText->bounds, Rect::Of(97, 40, w - 85, 25));
    EXPECT_EQ(panel.statusText->bounds, Rect::Of(20, 230, w - 85, 40));
    EXPECT_EQ(panel.percentText->bounds, Rect::Of(w - 80, 126, 60, 20));
  });
}

TEST_F(Layout, AutoUpdate) {
  ExpectTable(kOpenAutoUpdate, [&](int32_t w) {
    const auto& panel = *window->autoUpdatePanel;
    EXPECT_EQ(panel.background->bounds, Rect::Of(0, 0, w, kHeight));
    EXPECT_EQ(panel.sideImage->bounds, Rect::Of(24, kHeight - 74, 42, 49));
    EXPECT_EQ(panel.logo->bounds, Rect::Of(21, 1, 47, 71));
    EXPECT_EQ(panel.headerText->bounds, Rect::Of(110, 18, w - 130, 46));
    EXPECT_EQ(panel.bodyText->bounds, (Rect{110, 45, w - 20, kHeight - 32}));
  });
}

TEST_F(Layout, UpdateChoice) {
  host.flags = host_flag::ReleasePlayer;
  ExpectTable(kOpenInstaller, [&](int32_t w) {
    Click(*window->installerSplash->licenseCheckbox);
    Click(*window->rightButton);
    Widen(w);
    ASSERT_TRUE(BarStops());
    const auto& panel = *window->progressPanel;
    EXPECT_EQ(panel.headingText->bounds, (Rect{97, 15, w - 20, 33}));
    EXPECT_EQ(panel.bodyText->bounds, (Rect{97, 40, w - 20, 93}));
    EXPECT_EQ(panel.learnMoreLink->bounds, Rect::Of(97, 60, w - 100, 40));
    for (int32_t k = 0; k < 3; ++k) {
      EXPECT_EQ(panel.radios[static_cast<size_t>(k)]->bounds, Rect::Of(97, 98 + 24 * k, 15, 15));
      EXPECT_EQ(panel.radioLabels[static_cast<size_t>(k)]->bounds, (Rect{117, 98 + 24 * k, w - 20, 116 + 24 * k}));
    }
  });
}

// A second line would lie on what stands below it, or outside the window. Where fonts sit higher, texts move down.
TEST_F(Layout, TextsWithRoomForOneLineTakeOneInEveryLanguage) {
  host.flags = host_flag::ReleasePlayer;
  host.restartRequired = true;
  // The update, the uninstaller, licence and buttons, the choice with its labels, the restart note.
  const std::map<int, std::vector<int32_t>> moved = {{0x0404, {3, 0, 3, 0, 0, 3, 3, 3, 1, 1, 1, 1}},
                                                     {0x0804, {3, 0, 3, 0, 0, 3, 3, 3, 1, 1, 1, 1}},
                                                     {0x0411, {3, 0, 3, 0, 0, 3, 3, 3, 0, 1, 0, 1}},
                                                     {0x0412, {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}}};
  std::vector<int32_t> offsets;
  const LCID before = GetThreadLocale();
  const auto expectOneLine = [&](std::initializer_list<MTextArea*> texts) {
    for (MTextArea* const text : texts) {
      EXPECT_EQ(text->Render(), 1) << TextOf(*text);
      offsets.push_back(text->verticalOffset);
    }
  };
  for (const int language : {0x0409, 0x0405, 0x0407, 0x0C0A, 0x040C, 0x0410, 0x0411, 0x0412, 0x0413, 0x0415, 0x0416,
                             0x0419, 0x041D, 0x041F, 0x0804, 0x0404}) {
    SCOPED_TRACE(language);
    SetThreadLocale(MAKELCID(static_cast<WORD>(language), SORT_DEFAULT));
    Open(kOpenAutoUpdate);
    expectOneLine({window->autoUpdatePanel->headerText.get()});
    Close();
    Open(kOpenUninstaller);
    expectOneLine({window->uninstallerSplash->bodyText.get()});
    Close();
    Open(kOpenInstaller);
    MTextArea& license = *window->installerSplash->licenseLabel;
    license.bounds.right = window->rect.right;
    expectOneLine({&license, window->leftButton->labelText.get(), window->rightButton->labelText.get()});
    Click(*window->installerSplash->licenseCheckbox);
    Click(*window->rightButton);
    window->progressPanel->current = 98;
    ASSERT_TRUE(BarStops());
    const auto& panel = *window->progressPanel;
    expectOneLine({panel.headingText.get(), panel.bodyText.get(), panel.learnMoreLink.get(), panel.radioLabels[0].get(),
                   panel.radioLabels[1].get(), panel.radioLabels[2].get(), window->restartText.get()});
    EXPECT_EQ(offsets, moved.contains(language) ? moved.at(language) : std::vector<int32_t>(12));
    offsets.clear();
    Close();
  }
  SetThreadLocale(before);
}

}  // namespace
