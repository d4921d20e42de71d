// clang-format off
#include <windows.h>
// clang-format on

#include "ui/panels/MUIPanelProgress.h"

#include "engine/HostCallbacks.h"
#include "install/VersionNumbers.h"
#include "ui/panels/MInstallerWindow.h"
#include "ui/toolkit/Widgets.h"

namespace {

constexpr uint32_t kOneLine = 262144;
constexpr uint32_t kRightAligned = 2;
constexpr uint32_t kTick = 4;  // message of the panel's own timer events
constexpr wchar_t kAskedSince[] = L"11.3.0.0";
constexpr std::array<uint32_t, 3> kRadioTexts = {82, 83, 84};

MScale3Data BarPieces(ImageRef skin, const SourceRect& left, const SourceRect& middle, const SourceRect& right) {
  return {skin, left, middle, right};
}

}  // namespace

MUIPanelProgress::MUIPanelProgress(MInstallerWindow* window) : MUIPanel(window) {
  handler = PostTick;
  handlerContext = this;
  const ImageRef skin = window->Skin();
  bar = std::make_unique<MProgressBar>(window, BarPieces(skin, {4, 44, 4, 33}, {8, 44, 1, 33}, {9, 44, 4, 33}),
                                       BarPieces(skin, {2, 77, 1, 29}, {3, 77, 1, 29}, {4, 77, 2, 29}));
  titleText = MakeText(16, Style::Plain, MString(), 0);
  statusText = MakeText(15, Style::Markup, MString(), kOneLine);
  percentText = MakeText(14, Style::Plain, MString(), kRightAligned);
  logo = MakeLogo();
  BuildChoice();
}

void MUIPanelProgress::BuildChoice() {
  headingText = MakeText(18, Style::Bold, Text(92), 0);
  bodyText = MakeText(16, Style::Plain, Text(94), 0);
  learnMoreLink = MakeText(16, Style::Markup, Text(85), kOneLine);
  learnMoreLink->linkTextColor = kWhiteLink;
  learnMoreLink->linkNormalColor = kGreyLink;
  learnMoreLink->linkHoverColor = kWhiteLink;
  radioGroup = std::make_unique<MRadioGroup>();
  for (size_t i = 0; i < radios.size(); ++i) {
    const auto value = static_cast<int32_t>(i);
    radios[i] = MakeRadio(installerWindow, installerWindow->Skin(), i == 0, value, radioGroup.get());
    radios[i]->controlId = static_cast<int32_t>(control_id::FirstRadio) + value;
    radios[i]->label = Text(kRadioTexts[i]);
    // A click on the words is a click on the button.
    radioLabels[i] = MakeText(16, Style::Plain, Text(kRadioTexts[i]), 0);
    radioLabels[i]->handler = radios[i]->handler;
    radioLabels[i]->handlerContext = radios[i]->handlerContext;
  }
}

void MUIPanelProgress::Arm(float from, float to, float by, ProgressCallback function, void* context,
                           const MString& title) {
  if (titleText == nullptr) return;
  callback = function;
  callbackContext = context;
  current = from;
  target = to;
  step = by;
  running = 1;
  ShowText(*titleText, title);
}

bool MUIPanelProgress::HandleEvent(uint32_t id, uint32_t message, int64_t /*param*/) {
  if (titleText == nullptr) return false;  // it was left once; nothing of it is there any more
  if (id == WindowEventId) {
    if (message == kWindowCreated) Show();
    if (message == kWindowResized) Resize();
    if (message == kWindowHidden) Hide();
    return true;
  }
  if (id == TickEventId && message == kTick) {
    Tick();
    return true;
  }
  if (id == control_id::RightButton && message == kClicked) {
    Finish();
    return true;
  }
  return false;
}

bool MUIPanelProgress::PostTick(MRegion* /*region*/, MWindow* window, const Point* /*point*/, bool /*inside*/,
                                uint32_t message, void* /*context*/) {
  if (message == kTimerTick) window->PostEvent(TickEventId, kTick);
  return false;
}

void MUIPanelProgress::Show() {
  for (MRegion* const part : std::initializer_list<MRegion*>{statusText.get(), titleText.get(), percentText.get(),
                                                             bar.get(), logo.get(), headingText.get()}) {
    Attach(part);
  }
  MInstallerWindow& window = *installerWindow;
  window.leftButton->SetVisible(false);
  window.rightButton->SetVisible(true);
  window.SetButtonText(*window.rightButton, Text(16));
  window.SetButtonEnabled(*window.rightButton, false);
  window.AnimateToStandardHeight();
  Resize();
}

void MUIPanelProgress::Resize() {
  const int32_t w = Width();
  titleText->verticalOffset = 1;
  Place(*bar, Rect::Of(94, 87, w - 111, 33));
  Place(*titleText, Rect::Of(97, 40, w - 85, 25));
  Place(*statusText, Rect::Of(20, 230, w - 85, 40));
  Place(*percentText, Rect::Of(w - 80, 126, 60, 20));
  Place(*logo, Rect::Of(bounds.left + 10, 1, 47, 71));
  if (choiceShown != 0) {
    installerWindow->targetRect = {0, 0, installerWindow->rect.right, (lineCount + 22) * 15};
  }
}

void MUIPanelProgress::Hide() {
  titleText->Detach();
  statusText->Detach();
  percentText->Detach();
  bar->Detach();
  for (const auto& radio : radios) radio->Detach();  // which takes the focus ring away
  titleText.reset();
  statusText.reset();
  percentText.reset();
  bar.reset();
  logo.reset();
  bodyText.reset();
  learnMoreLink.reset();
  for (auto& radio : radios) radio.reset();
  for (auto& words : radioLabels) words.reset();
  headingText.reset();
  radioGroup.reset();
}

void MUIPanelProgress::Tick() {
  if (atWork) return;  // the host runs messages while it works; the bar waits for it all the same
  if (running == 0) return Tell(kProgressIdleTick);
  if ((step > 0 && current < target) || (step <= 0 && current > target)) return Advance();
  Stop();
}

void MUIPanelProgress::Advance() {
  current += step;
  bar->value = static_cast<int32_t>(current);
  bar->Layout();
  ShowText(*percentText, Insert(Text(15), MString::FromNumber(bar->value)));
}

void MUIPanelProgress::Stop() {
  running = 0;
  ReplaceTitle();
  atWork = true;
  Tell(kProgressReachedTarget);
  atWork = false;
  if (titleText == nullptr) return;  // what the host did led elsewhere
  ShowText(*percentText, MString(L""));
  titleText->verticalOffset = 1;
  titleText->Layout();
  const bool asked = WasAskedBefore() && installerWindow->Host().SkipsUpdateChoice();
  if (!asked && IsReleasePlayer()) ShowUpdateChoice();
}

// From here on the title may have a link in it.
void MUIPanelProgress::ReplaceTitle() {
  titleText->Detach();
  auto marked = std::make_unique<MTextArea>(installerWindow, 16, true, true);
  marked->SetText(titleText->text);
  marked->drawFlags = titleText->drawFlags;
  marked->format = titleText->format;
  marked->bounds = titleText->bounds;
  marked->visible = titleText->visible;
  titleText = std::move(marked);
  Attach(titleText.get());
}

// Only the first row follows the length of the texts above it; the other two stand where they stand.
void MUIPanelProgress::ShowUpdateChoice() {
  using namespace text_locale;
  choiceShown = 1;
  bar->Invalidate();  // it is wider than what is put in its place
  bar->Detach();
  const bool chinese = OffsetIn({TraditionalChinese, SimplifiedChinese}, 1) != 0;
  const bool japanese = OffsetIn({Japanese}, 1) != 0;
  for (MTextArea* const text : {headingText.get(), bodyText.get(), learnMoreLink.get()}) {
    text->verticalOffset = chinese || japanese ? 3 : 0;
  }
  for (size_t i = 0; i < radioLabels.size(); ++i) {
    if (chinese || (japanese && i == 1)) radioLabels[i]->verticalOffset = 1;
  }
  const int32_t w = Width();
  lineCount = headingText->Render();
  Place(*headingText, {97, 15, w - 20, 33});
  Attach(bodyText.get());
  lineCount = bodyText->Render();
  Place(*bodyText, {97, 15 * lineCount + 25, w - 20, 15 * lineCount + 78});
  Attach(learnMoreLink.get());
  Place(*learnMoreLink, Rect::Of(97, (lineCount + 3) * 15, w - 100, 40));
  for (const auto& radio : radios) Attach(radio.get());
  PlaceRadio(0, 15 * lineCount + 83, 98);
  PlaceRadio(1, 122, 122);
  PlaceRadio(2, 146, 146);
}

void MUIPanelProgress::PlaceRadio(size_t which, int32_t radioTop, int32_t labelTop) {
  Attach(radioLabels[which].get());
  Place(*radios[which], Rect::Of(97, radioTop, 15, 15));
  Place(*radioLabels[which], {117, labelTop, Width() - 20, labelTop + 18});
}

void MUIPanelProgress::Finish() {
  if (IsReleasePlayer() && radioGroup->selected != nullptr) {
    installerWindow->Host().StoreUpdateChoice(static_cast<uint32_t>(radioGroup->selected->value));
  }
  Tell(kProgressDone);
}

void MUIPanelProgress::Tell(ProgressCode code) {
  if (callback != nullptr) (void)callback(this, code, 0, callbackContext);
}

bool MUIPanelProgress::IsReleasePlayer() const {
  return (installerWindow->Host().GetFlags() & host_flag::ReleasePlayer) != 0;
}

bool MUIPanelProgress::WasAskedBefore() const {
  HostCallbacks& host = installerWindow->Host();
  MString versions[3];
  host.GetPreviousActiveXVersion(&versions[0]);
  host.GetPreviousPluginVersion(&versions[1]);
  host.GetPreviousPepperVersion(&versions[2]);
  for (const MString& version : versions) {
    if (CompareVersionStrings(version, kAskedSince) > 0) return true;
  }
  return false;
}
