// Every way through the installer's window, by mouse, key and posted event, with what the host is told on it.
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/removal/StartedProgram.h"
#include "tests/ui/panels/PanelFixture.h"

namespace {

[[maybe_unused]] const auto* const g_desktop = testing::AddGlobalTestEnvironment(new TestDesktop);

class Flow : public PanelFixture {};

TEST_F(Flow, NothingIsShownUntilTheHostOpensAPanel) {
  Build();
  EXPECT_EQ(Active(), "none");
  EXPECT_FALSE(IsWindowVisible(window->handle));
  EXPECT_EQ(window->rect.right, 100);
  Post(CommandEventId, kOpenPanel, 7);
  EXPECT_EQ(Active(), "none");
  Post(FailureEventId, kShowLastError);
  EXPECT_EQ(Active(), "failure");
}

TEST_F(Flow, InstallWaitsForTheLicence) {
  Open(kOpenInstaller);
  EXPECT_EQ(Active(), "installer");
  EXPECT_TRUE(IsWindowVisible(window->handle));
  EXPECT_EQ(Title(), "Install Corva Lumen Player 28.0");
  EXPECT_EQ(window->rect.right, 730);
  EXPECT_EQ(window->rect.bottom, 345);
  auto& splash = *window->installerSplash;
  const auto expectOpen = [&](bool open) {
    EXPECT_EQ(window->rightButton->enabled, open);
    EXPECT_EQ(window->rightButton->labelText->alpha, open ? 255 : 128);
    EXPECT_EQ(window->rightButton->data,
              open ? window->rightButton->normalData.get() : window->rightButton->disabledData.get());
    EXPECT_EQ(splash.installTooltip->active, !open);
  };
  expectOpen(false);
  Click(*window->rightButton);
  EXPECT_EQ(Active(), "installer");
  Click(*splash.licenseCheckbox);
  expectOpen(true);
  Click(*splash.licenseLabel);
  expectOpen(false);
  EXPECT_EQ(Events(), Lines{});
}

TEST_F(Flow, FromInstallToDone) {
  host.flags = host_flag::ActiveX | host_flag::ReleasePlayer;
  host.skipsUpdateChoice = true;
  host.previousPluginVersion = MString(L"11.3.0.1");
  host.restartRequired = true;
  Install();
  EXPECT_EQ(Active(), "progress") << "the check is optional and nothing is locked";
  EXPECT_EQ(window->installerSplash->licenseCheckbox, nullptr) << "what was left is gone";
  EXPECT_FALSE(window->rightButton->enabled);
  EXPECT_FALSE(window->leftButton->visible);
  EXPECT_EQ(TextOf(*window->progressPanel->titleText), "Currently Installing...");
  onWork = [&] {
    EXPECT_EQ(window->progressPanel->bar->value, 100);
    EXPECT_EQ(TextOf(*window->progressPanel->percentText), "100 %");
  };
  ASSERT_TRUE(BarStops());
  EXPECT_EQ(Events(), Lines{"Notify 2 0"});
  EXPECT_EQ(TextOf(*window->progressPanel->titleText), "Installation of Lumen Player 28.0 is complete");
  EXPECT_EQ(TextOf(*window->progressPanel->percentText), "");
  EXPECT_TRUE(window->restartText->visible);
  EXPECT_TRUE(window->restartIcon->visible);
  EXPECT_EQ(window->progressPanel->choiceShown, 0) << "asked by an earlier version";
  EXPECT_TRUE(window->rightButton->enabled);
  Click(*window->rightButton);
  EXPECT_EQ(Events(), (Lines{"StoreUpdateChoice 0", "Notify 0 0"}));
  EXPECT_EQ(window->failurePanel, nullptr);
}

TEST_F(Flow, AReleasePlayerAsksHowUpdatesAreToCome) {
  host.flags = host_flag::ReleasePlayer;
  host.previousActiveXVersion = MString(L"12.0.0.0");
  Install();
  ASSERT_TRUE(BarStops());
  auto& panel = *window->progressPanel;
  EXPECT_EQ(panel.choiceShown, 1) << "an earlier version counts only where the host skips the choice";
  EXPECT_EQ(TextOf(*panel.titleText), "");
  EXPECT_EQ(panel.bar->parent, nullptr);
  EXPECT_EQ(panel.radios[0]->bounds, Rect::Of(97, 15 * panel.lineCount + 83, 15, 15));
  EXPECT_EQ(panel.radios[1]->bounds, Rect::Of(97, 122, 15, 15)) << "quirk: these rows stand fast";
  Click(*panel.radioLabels[2]);
  EXPECT_TRUE(panel.radios[2]->checked);
  EXPECT_FALSE(panel.radios[0]->checked);
  Click(*panel.radios[1]);
  Click(*window->rightButton);
  EXPECT_EQ(Events(), (Lines{"Notify 2 0", "StoreUpdateChoice 1", "Notify 0 0"}));
}

TEST_F(Flow, AnInstallerThatIsToldToLeavesByItself) {
  for (const auto& [settings, ticks] :
       {std::pair{L"AutoExitDelay;", 62}, {L"AutoExitDelay 15;", 0}, {L"AutoExitDelay 160;", 10}}) {
    ParseSettings(&host.settings, MString(settings));
    Install();
    EXPECT_EQ(window->installerSplash->autoExitTicks, ticks);
    ASSERT_TRUE(BarStops());
    EXPECT_TRUE(Waited([&] {
      return ticks == 0 ? window->rightButton->enabled : !host.events.empty() && host.events.back() == "Notify 0 0";
    })) << ticks;
    Close();
    Events();
    delete host.settings.documents;
    host.settings.documents = nullptr;
  }
}

TEST_F(Flow, FromUninstallToDone) {
  Open(kOpenUninstaller);
  EXPECT_EQ(Title(), "Uninstall Corva Lumen Player");
  EXPECT_EQ(TextOf(*window->rightButton->labelText), "UNINSTALL");
  EXPECT_EQ(ToUtf8(window->rightButton->label.View()), "UNINSTALL") << "what a screen reader says";
  Click(*window->rightButton);
  EXPECT_EQ(Active(), "progress");
  EXPECT_EQ(window->progressPanel->target, 0.0f);
  ASSERT_TRUE(BarStops());
  EXPECT_EQ(Events(), (Lines{"BeginRemoval", "Notify 3 0"}));
  EXPECT_EQ(TextOf(*window->progressPanel->titleText), "Corva Lumen Player uninstalled successfully.");
  Click(*window->rightButton);
  EXPECT_EQ(Events(), Lines{"Notify 0 0"});
}

TEST_F(Flow, MaintenanceRemovesPastTheConflictsAndReinstallDoesNothing) {
  host.conflictsBlockInstall = true;
  host.UseSettings(L"ActiveXConflicts { explorer; };");
  productMask = 8;
  Open(kOpenMaintain);
  EXPECT_EQ(Active(), "maintain");
  EXPECT_FALSE(IsWindowVisible(window->handle)) << "the host shows this one";
  window->rect = {0, 0, 450, 345};
  window->ApplyRect(false, true);
  window->Show(true);
  Click(*window->maintainPanel->reinstallButton);
  EXPECT_EQ(Active(), "maintain");
  EXPECT_EQ(Events(), Lines{});
  Click(*window->maintainPanel->uninstallButton);
  EXPECT_EQ(Active(), "progress");
}

TEST_F(Flow, HowEachPanelIsLeft) {
  const std::tuple<int64_t, uint32_t, const char*> rows[] = {{kOpenInstaller, control_id::LeftButton, "Notify 0 1039"},
                                                             {kOpenUninstaller, control_id::LeftButton, "Notify 0 0"},
                                                             {kOpenMaintain, control_id::RightButton, "Notify 0 0"},
                                                             {kOpenAutoUpdate, control_id::LeftButton, "Notify 0 -1"},
                                                             {kOpenAutoUpdate, control_id::RightButton, "Notify 4 0"}};
  for (const auto& [panel, button, told] : rows) {
    Open(panel);
    if (panel == kOpenMaintain) window->Show(true);
    Events();
    Post(button, kClicked);
    EXPECT_EQ(Events(), Lines{told}) << panel;
    Close();
  }
  Open(kOpenInstaller);
  Post(CommandEventId, kFinish, 77);
  EXPECT_EQ(Events(), Lines{"Notify 0 77"});
  SendMessageW(window->handle, WM_CLOSE, 0, 0);
  EXPECT_EQ(Events(), Lines{"Notify 0 1039"});
  EXPECT_EQ(window->failurePanel, nullptr);
  Post(FailureEventId, kShowLastError);
  EXPECT_EQ(Active(), "installer") << "the failure panel is gone by then";
}

TEST_F(Flow, TheFailurePanelShowsTheNewestError) {
  struct Row {
    std::vector<std::pair<uint32_t, uint32_t>> reports;  // severity and code
    std::string message, header, title;
  };
  const std::string install = "Install Corva Lumen Player 28.0";
  for (const Row& row :
       {Row{{}, "No error information is available.", "The installation encountered errors:", install},
        Row{{{1, 5}, {2, 6}, {3, 7}, {1, 8}}, "7: ", "The installation encountered errors:", install},
        Row{{{2, 1048}}, "1048: ", "The uninstaller needs your attention.", "Uninstall Corva Lumen Player"}}) {
    host.log.entries.clear();
    for (const auto& [severity, code] : row.reports) host.log.entries.push_back({severity, code, MString(L"")});
    Open(kOpenInstaller);
    Post(FailureEventId, kShowLastError);
    EXPECT_EQ(Active(), "failure");
    EXPECT_EQ(TextOf(*window->failurePanel->messageText), row.message);
    EXPECT_EQ(TextOf(*window->failurePanel->headerText), row.header);
    EXPECT_EQ(Title(), row.title);
    EXPECT_FALSE(window->rightButton->visible);
    EXPECT_TRUE(window->leftButton->visible);
    Events();
    Click(*window->leftButton);
    EXPECT_EQ(Events(), Lines{"Notify 0 -1"});
    Close();
  }
  EXPECT_EQ(host.log.readsPastTheEnd, 0u);
}

TEST_F(Flow, ConflictsHoldTheInstallUntilTheyAreClosed) {
  const testing_files::CleanDirectory folder(L"C:\\panel-test");
  host.conflictsBlockInstall = true;
  productMask = 8;
  host.UseSettings(L"ActiveXConflicts { one \"Number One\"; two; three; four; five; six; };");
  std::vector<std::unique_ptr<StartedProgram>> programs;
  for (const WideString name : {L"one", L"two", L"three", L"four", L"five", L"six"})
    programs.push_back(std::make_unique<StartedProgram>(folder.Path() + L"\\" + name + L".exe"));
  Install();
  EXPECT_EQ(Active(), "conflicts");
  auto& panel = *window->conflictsPanel;
  const auto shown = [&] {
    Lines lines;
    for (const auto& row : panel.offendingApps) {
      if (row->visible) lines.push_back(TextOf(*row->nameText));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  };
  EXPECT_EQ(shown().size(), 6u);
  EXPECT_EQ(TextOf(*panel.offendingApps[5]->nameText), "And 1 more");
  EXPECT_FALSE(window->rightButton->visible);
  programs.pop_back();
  EXPECT_TRUE(Waited([&] { return shown().size() == 5; })) << "exactly five need no sixth row";
  EXPECT_FALSE(panel.offendingApps[5]->visible);
  while (programs.size() > 1) programs.pop_back();
  EXPECT_TRUE(Waited([&] { return shown() == Lines{"Number One"}; }));
  EXPECT_EQ(Active(), "conflicts");
  programs.clear();
  EXPECT_TRUE(Waited([&] { return Active() == "progress"; }));
  EXPECT_TRUE(window->rightButton->visible);
  EXPECT_EQ(Events(), Lines{"NotifyConflictsCleared"});
}

TEST_F(Flow, WithoutConflictsTheHostIsToldAndWithAConflictOneMayQuit) {
  host.conflictCheckIsOptional = false;
  productMask = 8;
  Open(kOpenUninstaller);
  Click(*window->rightButton);
  EXPECT_EQ(Active(), "progress");
  EXPECT_EQ(Events(), Lines{"NotifyConflictsCleared"});
  Close();
  host.conflictCheckIsOptional = true;
  host.conflictsBlockInstall = true;
  host.UseSettings(L"ActiveXConflicts { panelquit; };");
  const testing_files::CleanDirectory folder(L"C:\\panel-test");
  const StartedProgram program(folder.Path() + L"\\panelquit.exe");
  Open(kOpenUninstaller);
  Click(*window->rightButton);
  EXPECT_EQ(Active(), "conflicts");
  Click(*window->leftButton);
  EXPECT_EQ(Events(), Lines{"Notify 0 -1"});
}

TEST_F(Flow, TheUpdateIsOfferedAsTheHostSays) {
  const struct {
    const wchar_t* data;
    uint32_t source;
    bool skips;
    Lines events;
    int32_t width, height;
    std::string text;
  } rows[] = {
      {nullptr, 0, false, {}, 500, 270, "This update addresses product security and is recommended."},
      {L"message Hello; size 600 300; autoUpdateMode 2;", 0, true, {"SetAutoUpdateChoice 2"}, 600, 300, "Hello"},
      {L"message Hello; size 520; autoUpdateMode 7;", 4, false, {"SetAutoUpdateChoice 0"}, 520, 270, "Hello"},
      {L"message Hello; size 4294967295 -5;", 0, false, {}, 1 << 30, 0, "Hello"},
      {L"message No; autoUpdateMode 2;", 12, false, {"SetAutoUpdateChoice 0", "Notify 4 0"}, 100, 100, ""},
  };
  for (const auto& row : rows) {
    host.updateDialogData = MString(row.data);
    host.installSource = row.source;
    host.skipsUpdateChoice = row.skips;
    Open(kOpenAutoUpdate);
    EXPECT_EQ(Events(), row.events);
    EXPECT_EQ(IsWindowVisible(window->handle) != FALSE, row.width != 100);
    EXPECT_EQ(window->rect.right, row.width);
    EXPECT_EQ(window->rect.bottom, row.height);
    EXPECT_EQ(TextOf(*window->autoUpdatePanel->bodyText), row.text);
    EXPECT_EQ(window->leftButton->visible, !row.skips);
    EXPECT_EQ(window->leftButton->bounds.Width(), 200);
    Close();
  }
}

TEST_F(Flow, TheUpdaterPostponesAndADownloadSessionSaysSo) {
  host.flags = 130;
  host.installSource = 4;
  host.sessionMode = 1;
  Build();
  EXPECT_EQ(TextOf(*window->leftButton->labelText), "REMIND ME LATER");
  EXPECT_EQ(TextOf(*window->rightButton->labelText), "DOWNLOAD");
}

// Whoever cannot wait does no harm.
TEST_F(Flow, ImpatientClicksAndPanelsOutOfTurn) {
  Install();
  Click(*window->rightButton);
  Click(*window->leftButton);
  EXPECT_EQ(Active(), "progress");
  EXPECT_EQ(Events(), Lines{});
  onWork = [&] {
    ui->PostEvent(FailureEventId, kShowLastError, 0);
    ui->PostEvent(control_id::RightButton, kClicked, 0);
    ui->PostEvent(TickEventId, 4, 0);
    ui->PostEvent(TickEventId, 200, 0);
  };
  ASSERT_TRUE(Waited([&] { return Active() == "failure"; }));
  for (const int64_t panel : {kOpenInstaller, kOpenMaintain, kOpenUninstaller, kOpenAutoUpdate}) {
    Post(CommandEventId, kOpenPanel, panel);
    Post(control_id::FirstPanelButton, kClicked);
    Post(control_id::SecondPanelButton, kClicked);
    Post(control_id::RightButton, kClicked);
    Post(TickEventId, 4);
    Post(TickEventId, 200);
    Post(FailureEventId, kShowLastError);
    Post(WindowEventId, kWindowResized);
  }
  EXPECT_EQ(Active(), "failure");
  Post(CommandEventId, kOpenPanel, kOpenInstaller);
  Events();
  Post(control_id::LeftButton, kClicked);
  EXPECT_EQ(Events(), Lines{"Notify 0 1039"}) << "a splash that was left is empty, but its QUIT works";
}

TEST_F(Flow, AHostThatRunsMessagesAtWork) {
  host.UseSettings(L"AutoExitDelay 16;");
  for (const auto& [panel, fails] :
       {std::pair{kOpenInstaller, false}, {kOpenInstaller, true}, {kOpenUninstaller, true}}) {
    bool worked = false;
    onWork = [&, fails = fails] {
      Post(fails ? FailureEventId : TickEventId, fails ? kShowLastError : 4u);
      EXPECT_NE(Events().back(), "Notify 0 0") << "a tick ended the work";
      worked = true;
    };
    Open(panel);
    Post(control_id::RightButton, kClicked);
    EXPECT_TRUE(Waited([&] { return worked; }));
    EXPECT_EQ(Active(), fails ? "failure" : "progress");
    Close();
  }
}

TEST_F(Flow, WithoutDrawingObjectsTheInstallGoesOnUnseen) {
  for (const std::string from : {"the window", "the splash", "the bar", "the end"}) {
    SCOPED_TRACE(from);
    std::vector<GdiObject> taken;
    const auto runOut = [&](const char* here) {
      if (from != here) return;
      while (HBRUSH brush = CreateSolidBrush(0)) taken.emplace_back(brush);
      EXPECT_GT(taken.size(), 1000u);
    };
    runOut("the window");
    Open(kOpenInstaller);
    runOut("the splash");
    InvalidateRect(window->handle, nullptr, FALSE);
    driver::PumpInput(window->handle);
    window->installerSplash->licenseCheckbox->checked = true;
    Post(control_id::FirstPanelButton, kClicked);
    Post(control_id::RightButton, kClicked);
    EXPECT_EQ(Active(), "progress");
    runOut("the bar");
    ASSERT_TRUE(BarStops());
    runOut("the end");
    InvalidateRect(window->handle, nullptr, FALSE);
    driver::PumpInput(window->handle);
    Post(control_id::RightButton, kClicked);
    EXPECT_EQ(Events(), (Lines{"Notify 2 0", "Notify 0 0"}));
    Close();
  }
}

// The window stands in pixels, whatever else changes: another display, another language, another place.
TEST_F(Flow, ADisplayLanguageOrPlaceThatChangesDisturbsNothing) {
  const auto disturb = [&] {
    const HWND handle = window->handle;
    RECT place = {}, suggested = {0, 0, 1500, 1000};
    GetClientRect(handle, &place);
    SetThreadLocale(MAKELCID(MAKELANGID(LANG_JAPANESE, SUBLANG_DEFAULT), SORT_DEFAULT));
    SendMessageW(handle, WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&suggested));
    SendMessageW(handle, WM_DISPLAYCHANGE, 32, MAKELPARAM(640, 480));
    SendMessageW(handle, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"intl"));
    SendMessageW(handle, WM_INPUTLANGCHANGE, 0, 0);
    ShowWindow(handle, SW_MINIMIZE);
    ShowWindow(handle, SW_RESTORE);
    for (const int where : {-32000, 32000, 40})
      SetWindowPos(handle, nullptr, where, where, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    driver::PumpInput(handle);
    RECT after = {};
    GetClientRect(handle, &after);
    EXPECT_TRUE(EqualRect(&place, &after)) << Active();
  };
  const LCID before = GetThreadLocale();
  Open(kOpenInstaller);
  disturb();
  Click(*window->installerSplash->licenseLabel);
  disturb();
  Click(*window->rightButton);
  EXPECT_EQ(Active(), "progress");
  disturb();
  ASSERT_TRUE(BarStops());
  disturb();
  Click(*window->rightButton);
  EXPECT_EQ(Events(), (Lines{"Notify 2 0", "Notify 0 0"}));
  Post(FailureEventId, kShowLastError);
  disturb();
  SetThreadLocale(before);
}

TEST_F(Flow, AWholeInstallByKeyboardAlone) {
  Open(kOpenInstaller);
  const HWND handle = window->handle;
  SetForegroundWindow(handle);
  SetFocus(handle);
  driver::MoveTo(handle, {5, 300});  // a pointer on its way over the window would interrupt what a key presses
  // Tab finds the box, Space checks it, Tab goes on to INSTALL.
  const auto tabTo = [&](const MRegion* wanted) {
    for (int i = 0; i < 6 && window->focusRegion != wanted; ++i) {
      driver::Stroke(handle, VK_TAB, window->focusRegion == nullptr);
    }
    return window->focusRegion == wanted;
  };
  ASSERT_TRUE(tabTo(window->installerSplash->licenseCheckbox.get()));
  EXPECT_TRUE(window->ringVisible);
  EXPECT_TRUE(window->focusRing->visible);
  driver::Stroke(handle, VK_SPACE);
  EXPECT_TRUE(window->rightButton->enabled);
  ASSERT_TRUE(tabTo(window->rightButton.get()));
  driver::Stroke(handle, VK_RETURN);
  EXPECT_EQ(Active(), "progress");
  ASSERT_TRUE(BarStops());
  ASSERT_TRUE(tabTo(window->rightButton.get()));
  driver::Stroke(handle, VK_RETURN);
  EXPECT_EQ(Events(), (Lines{"Notify 2 0", "Notify 0 0"}));
}

}  // namespace
