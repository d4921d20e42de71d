#include "host/Gallery.h"

#include <windows.h>

#include <memory>
#include <vector>

#include "ui/toolkit/MImage.h"
#include "ui/toolkit/MProgressBar.h"
#include "ui/toolkit/MScale9Section.h"
#include "ui/toolkit/MTextArea.h"
#include "ui/toolkit/MTooltipArea.h"
#include "ui/toolkit/MWindow.h"
#include "ui/toolkit/MorphUI.h"
#include "ui/toolkit/Widgets.h"

namespace {

constexpr int32_t kWidth = 880, kHeight = 690, kBarHeight = 67;
constexpr uint32_t kBackground = RGB(50, 51, 51);
constexpr int32_t kThirdImage = 162;
constexpr uint32_t kCloseId = 100, kMoreId = 101, kFirstLiveId = 200, kBoxId = 300, kFirstRadioId = 310;
constexpr int32_t kTicksPerStep = 4;

enum Text : uint32_t {
  kNone = 0,
  kAccept = 4,
  kInstalling = 5,
  kRemove = 11,
  kInstall = 18,
  kLicense = 19,
  kReinstall = 20,
  kUninstall = 21,
  kUpdate = 22,
  kUpdateAvailable = 25,
  kUpdateTitle = 33,
  kRemindLater = 34,
  kClose = 35,
  kAcceptFirst = 38,
  kDownload = 39,
  kBrowserTip = 61,
  kUpdates = 80,
  kChooseMethod = 81,
  kAllowUpdates = 82,
  kNotifyOnly = 83,
  kNeverCheck = 84,
  kRestartBrowser = 89,
};

// Pieces of the images that are no part of a control.
enum class Sheet : uint8_t { Skin, Banner, Third };
struct PictureRow {
  Sheet sheet;
  SourceRect source;
  Rect place;
};
constexpr PictureRow kPictures[] = {
    {Sheet::Skin, {34, 0, 47, 71}, Rect::Of(20, 1, 47, 71)},  // logo
    {Sheet::Banner, {0, 0, 400, 130}, Rect::Of(97, 12, 400, 130)},
    {Sheet::Third, {0, 0, 72, 44}, Rect::Of(540, 84, 72, 44)},
    {Sheet::Skin, {39, 71, 42, 49}, Rect::Of(640, 80, 42, 49)},  // side image
    {Sheet::Skin, {0, 110, 33, 30}, Rect::Of(712, 90, 33, 30)},  // warning
    {Sheet::Skin, {5, 30, 13, 13}, Rect::Of(775, 99, 13, 13)},   // restart
    {Sheet::Skin, {20, 30, 13, 13}, Rect::Of(815, 99, 13, 13)},  // conflict
};

struct TextRow {
  uint32_t id;
  int32_t size;
  uint32_t format;
  Rect place;
  bool markup, bold;
  uint8_t alpha;
};
constexpr uint32_t kRight = 2, kEllipsis = 262144;
constexpr TextRow kTexts[] = {
    {kUpdateAvailable, 18, 0, Rect::Of(540, 16, 320, 46), false, true, 255},
    {kLicense, 16, kEllipsis, Rect::Of(117, 310, 380, 20), true, false, 255},
    {kChooseMethod, 16, 0, Rect::Of(97, 340, 400, 22), false, true, 255},
    {kBrowserTip, 15, 0, Rect::Of(540, 290, 320, 200), true, false, 255},
    {kInstalling, 16, 0, Rect::Of(97, 484, 330, 20), false, false, 255},
    {kUpdates, 13, 0, Rect::Of(97, 558, 400, 60), false, false, 128},
    {kRemove, 14, 0, Rect::Of(540, 558, 320, 60), false, false, 255},
};

struct FrozenButtonRow {
  uint32_t text;
  std::unique_ptr<MScale3Data> MButton::*look;
};
// Nothing moves these: each keeps the look of one state.
constexpr FrozenButtonRow kFrozenButtons[] = {
    {kInstall, &MButton::normalData},
    {kUninstall, &MButton::hoverData},
    {kReinstall, &MButton::pressedData},
    {kUpdate, &MButton::disabledData},
};

class GalleryWindow final : public MWindow {
 public:
  GalleryWindow(MorphUI* ui, HostCallbacks& theHost);
  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override;
  void SetFocusRegion(MRegion* region, bool showRing) override { PlaceFocus(region, showRing, ring.get()); }

 private:
  void Build();
  void AddBackground();
  void AddPictures();
  void AddTexts();
  void AddFrozenControls();
  void AddLiveButtons();
  void AddLiveMarks();
  void AddBars();
  void AddBottomBar();
  void Step();

  MString String(uint32_t id) const;
  ImageRef Image(Sheet sheet) const;
  template <class Region>
  Region* Add(std::unique_ptr<Region> region, const Rect& place, MRegion* in = nullptr);
  MTextArea* AddText(const MString& text, const TextRow& row, MRegion* in = nullptr);
  MButton* AddButton(uint32_t text, uint32_t id, const Rect& place, MRegion* in = nullptr);
  void Freeze(MButton& button, const MScale3Data* look);
  void ShareInput(MRegion& label, const MRegion& control);

  HostCallbacks& host;
  MImage skin, banner, third;
  MScale9Data backgroundData, ringData;
  MScale3Data barData;
  MRadioGroup group, frozenGroup;
  std::vector<std::unique_ptr<MRegion>> regions;
  std::unique_ptr<MScale9Section> ring;
  std::unique_ptr<MTooltipArea> tooltip;
  MSkinnedSection* content = nullptr;
  MCheckboxButton* accept = nullptr;
  MButton* gated = nullptr;
  MProgressBar* movingBar = nullptr;
  MTextArea* percent = nullptr;
  int32_t ticks = 0;
};

GalleryWindow::GalleryWindow(MorphUI* ui, HostCallbacks& theHost) : MWindow(ui), host(theHost) {
  backgroundColor = kBackground;
}

bool GalleryWindow::HandleEvent(uint32_t id, uint32_t message, int64_t /*param*/) {
  if (id == WindowEventId) {
    if (message == kWindowCreated) Build();
    if (message == kWindowFrame) Step();
    return true;
  }
  if (message != kClicked) return false;
  if (id == kCloseId) ExitInstaller(0);
  if (id == kBoxId) {
    gated->SetEnabled(accept->checked);
    gated->data = accept->checked ? gated->normalData.get() : gated->disabledData.get();
    gated->labelText->alpha = accept->checked ? 255 : 128;
    gated->labelText->Layout();
    gated->Layout();
    tooltip->SetActive(!accept->checked);
  }
  return true;
}

// Regions are asked and drawn in the order they are added: what lies on top comes last, what takes input is its own.
void GalleryWindow::Build() {
  skin.Load(host.resourceModule, image_id::Skin);
  banner.Load(host.resourceModule, image_id::Banner);
  third.Load(host.resourceModule, kThirdImage);
  rect = {0, 0, kWidth, kHeight};
  ApplyRect(false, true);
  title = String(kUpdateTitle);
  ApplyTitle();
  AddBackground();
  AddPictures();
  AddTexts();
  AddFrozenControls();
  AddLiveButtons();
  AddLiveMarks();
  AddBars();
  AddBottomBar();
  ringData = MScale9Data(skin.Ref(), 13, 44, {7, 1, 7}, {7, 1, 7});
  ring = std::make_unique<MScale9Section>(this, &ringData);
  ring->visible = false;
  Attach(ring.get());
  Show(true);
}

void GalleryWindow::AddBackground() {
  content = Add(std::make_unique<MSkinnedSection>(), Rect::Of(0, 0, kWidth, kHeight - kBarHeight));
  backgroundData = MScale9Data(skin.Ref(), 155, 0, {1, 412, 1}, {173, 1, 1}, kDrawCopy);
  Add(std::make_unique<MScale9Section>(this, &backgroundData), content->bounds, content);
}

void GalleryWindow::AddPictures() {
  for (const PictureRow& row : kPictures) {
    Add(std::make_unique<MSkinnedSection>(Image(row.sheet), row.source), row.place, content);
  }
}

void GalleryWindow::AddTexts() {
  for (const TextRow& row : kTexts) AddText(String(row.id), row, content);
}

void GalleryWindow::AddFrozenControls() {
  int32_t left = 97;
  for (const FrozenButtonRow& row : kFrozenButtons) {
    MButton* const button = AddButton(row.text, 0, Rect::Of(left, 156, 140, 33), content);
    if (row.look == &MButton::disabledData) button->labelText->alpha = 128;
    button->labelText->Layout();
    Freeze(*button, (button->*row.look).get());
    left += 181;
  }
  left = 540;
  for (const bool round : {false, true}) {
    for (const bool checked : {false, true}) {
      for (const bool hover : {false, true}) {
        std::unique_ptr<MCheckboxButton> mark;
        if (round) {
          mark = MakeRadio(this, skin.Ref(), false, 0, &frozenGroup);
        } else {
          mark = MakeCheckbox(this, skin.Ref(), false);
        }
        mark->drawFlags &= static_cast<uint8_t>(~kNativeChild);
        MCheckboxButton* const shown = Add(std::move(mark), Rect::Of(left, 258, 15, 15), content);
        shown->checked = checked;
        shown->ShowLook(hover ? Look::Hover : Look::Normal);
        shown->handler = nullptr;
        left += 42;
      }
    }
  }
}

void GalleryWindow::AddLiveButtons() {
  AddButton(kInstall, kFirstLiveId, Rect::Of(97, 204, 140, 33), content);
  AddButton(kDownload, kFirstLiveId + 1, Rect::Of(278, 204, 140, 33), content);
  AddButton(kRemindLater, kFirstLiveId + 2, Rect::Of(459, 204, 200, 33), content);
}

void GalleryWindow::AddLiveMarks() {
  accept = Add(MakeCheckbox(this, skin.Ref(), false), Rect::Of(97, 258, 15, 15), content);
  accept->controlId = kBoxId;
  accept->label = String(kAccept);
  MTextArea* const acceptText =
      AddText(accept->label, {kAccept, 16, kEllipsis, Rect::Of(117, 257, 380, 46), false, false, 255}, content);
  ShareInput(*acceptText, *accept);
  int32_t index = 0;
  for (const uint32_t id : {kAllowUpdates, kNotifyOnly, kNeverCheck}) {
    const int32_t top = 370 + 37 * index;
    MRadioButton* const radio =
        Add(MakeRadio(this, skin.Ref(), index == 0, index, &group), Rect::Of(97, top, 15, 15), content);
    radio->controlId = static_cast<int32_t>(kFirstRadioId) + index;
    radio->label = String(id);
    MTextArea* const text =
        AddText(radio->label, {id, 16, 0, Rect::Of(120, top - 1, 385, 36), false, false, 255}, content);
    ShareInput(*text, *radio);
    ++index;
  }
}

void GalleryWindow::AddBars() {
  const MScale3Data track = {skin.Ref(), {4, 44, 4, 33}, {8, 44, 1, 33}, {9, 44, 4, 33}};
  const MScale3Data fill = {skin.Ref(), {2, 77, 1, 29}, {3, 77, 1, 29}, {4, 77, 2, 29}};
  int32_t left = 97;
  for (const int32_t value : {40, 0, 1, 100}) {
    auto bar = std::make_unique<MProgressBar>(this, track, fill);
    bar->value = value;
    const int32_t width = left == 97 ? 400 : 93;
    MProgressBar* const added = Add(std::move(bar), Rect::Of(left, 508, width, 33), content);
    if (left == 97) movingBar = added;
    left += left == 97 ? 443 : 113;
  }
  percent = AddText(MString(L"40 %"), {kNone, 14, kRight, Rect::Of(437, 484, 60, 20), false, false, 255}, content);
}

void GalleryWindow::AddBottomBar() {
  barData = {skin.Ref(), {1, 0, 1, 68}, {2, 0, 1, 68}, {3, 0, 1, 68}};
  MScale3Section* const bar =
      Add(std::make_unique<MScale3Section>(this, &barData), Rect::Of(0, kHeight - kBarHeight - 1, kWidth, kBarHeight));
  Add(std::make_unique<MSkinnedSection>(skin.Ref(), SourceRect{5, 30, 13, 13}), Rect::Of(97, 28, 13, 13), bar);
  AddText(String(kRestartBrowser), {kRestartBrowser, 16, 0, Rect::Of(117, 25, 330, 20), false, false, 255}, bar);
  gated = AddButton(kUpdate, kMoreId, Rect::Of(kWidth - 312, 18, 140, 33), bar);
  AddButton(kClose, kCloseId, Rect::Of(kWidth - 156, 18, 140, 33), bar);
  tooltip = std::make_unique<MTooltipArea>(this, handle, gated->nativeWindow, host.resourceModule);
  tooltip->bounds = gated->bounds.AtOrigin();
  tooltip->SetText(String(kAcceptFirst));
  HandleEvent(kBoxId, kClicked, 0);
}

void GalleryWindow::Step() {
  if (movingBar == nullptr || ++ticks % kTicksPerStep != 0) return;
  movingBar->value = (movingBar->value + 1) % 101;
  movingBar->Layout();
  MString text = MString::FromNumber(movingBar->value);
  text.Append(MString(L" %"));
  percent->SetText(text);
  percent->Layout();
}

MString GalleryWindow::String(uint32_t id) const {
  MString text;
  morph->GetString(&text, id);
  return MString::Replace(text, MString(L"^"), MString(L"28.0"));
}

ImageRef GalleryWindow::Image(Sheet sheet) const {
  switch (sheet) {
    case Sheet::Banner: return banner.Ref();
    case Sheet::Third: return third.Ref();
    default: return skin.Ref();
  }
}

template <class Region>
Region* GalleryWindow::Add(std::unique_ptr<Region> region, const Rect& place, MRegion* in) {
  Region* const added = region.get();
  added->bounds = place;
  in == nullptr ? Attach(added) : in->Attach(added);
  added->Layout();
  regions.push_back(std::move(region));
  return added;
}

MTextArea* GalleryWindow::AddText(const MString& text, const TextRow& row, MRegion* in) {
  auto area = std::make_unique<MTextArea>(this, row.size, row.markup, row.bold);
  area->format = row.format;
  area->alpha = row.alpha;
  area->SetText(text);
  return Add(std::move(area), row.place, in);
}

MButton* GalleryWindow::AddButton(uint32_t text, uint32_t id, const Rect& place, MRegion* in) {
  auto button = MakeButton(this, skin.Ref(), String(text));
  button->controlId = static_cast<int32_t>(id);
  if (id == 0) button->drawFlags &= static_cast<uint8_t>(~kNativeChild);
  MButton* const added = Add(std::move(button), place, in);
  added->labelText->Layout();
  added->Layout();
  return added;
}

void GalleryWindow::Freeze(MButton& button, const MScale3Data* look) {
  button.handler = nullptr;
  button.data = look;
  button.Layout();
  if (look == button.pressedData.get()) button.labelText->bounds.Offset({0, 1});
}

void GalleryWindow::ShareInput(MRegion& label, const MRegion& control) {
  label.handler = control.handler;
  label.handlerContext = control.handlerContext;
}

}  // namespace

bool RunGallery(HostCallbacks& host) {
  MorphUI ui(&host, host.resourceModule);
  GalleryWindow window(&ui, host);
  if (window.handle == nullptr) return false;  // nobody could end its loop
  ui.SetWindow(&window);
  const int32_t code = ui.RunMessageLoop();
  return code == 0 || code == kExitClosedByUser;
}
