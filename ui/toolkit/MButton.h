// A push button with a label. It reports what happens to it to its window, as ControlMessage of its control id.
#pragma once

#include <memory>

#include "ui/toolkit/ButtonStates.h"
#include "ui/toolkit/MScale3Section.h"

class MTextArea;

// Ends a region by way of its base, so that what holds one need not know all of it.
struct RegionDeleter {
  void operator()(MRegion* region) const { delete region; }
};

class MButton : public MScale3Section {
 public:
  // Owns its looks, each of which may be null. Shows the normal one.
  struct Looks {
    std::unique_ptr<MScale3Data> normal;
    std::unique_ptr<MScale3Data> hover;
    std::unique_ptr<MScale3Data> pressed;
    std::unique_ptr<MScale3Data> disabled;
  };
  MButton(MWindow* inWindow, Looks looks);
  ~MButton() override;
  // Also puts the label back to where it belongs while the button is not pressed.
  void Layout() override;

  std::unique_ptr<MScale3Data> normalData;
  std::unique_ptr<MScale3Data> hoverData;
  std::unique_ptr<MScale3Data> pressedData;
  std::unique_ptr<MScale3Data> disabledData;
  uint8_t pressState = kIdle;
  std::unique_ptr<MTextArea, RegionDeleter> labelText;

  // Takes a label and draws it after the three pieces. It is no child: it has no native window and takes no input.
  void SetLabel(std::unique_ptr<MTextArea> text);
  // As for any region; a button that is disabled also forgets the pointer.
  void SetEnabled(bool on);
  // Takes on a look, that of the checked state where there is one, and lays the button out.
  void ShowLook(Look look);

 private:
  static bool Handle(MRegion* region, MWindow* inWindow, const Point* point, bool inside, uint32_t message,
                     void* context);
  void OnPointer(const ButtonStep& step, MRegion* region, MWindow* inWindow);
  [[nodiscard]] const MScale3Data* LookData(Look look) const;
  void MoveLabel(Point to);
  void ChangeByClick();
};

// A box that is checked and cleared by clicks.
class MCheckboxButton : public MButton {
 public:
  struct CheckedLooks {
    std::unique_ptr<MScale3Data> normal;
    std::unique_ptr<MScale3Data> hover;
    std::unique_ptr<MScale3Data> pressed;
  };
  MCheckboxButton(MWindow* inWindow, Looks looks, CheckedLooks checkedLooks, bool startsChecked);

  std::unique_ptr<MScale3Data> checkedNormalData;
  std::unique_ptr<MScale3Data> checkedHoverData;
  std::unique_ptr<MScale3Data> checkedPressedData;
  bool checked;
};
