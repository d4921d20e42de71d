// Radio buttons of which one is chosen.
#pragma once

#include <cstdint>
#include <memory>

#include "ui/toolkit/MButton.h"

class MRadioButton;

class MRadioGroup {
 public:
  MRadioGroup() = default;
  MRadioGroup(const MRadioGroup&) = delete;
  MRadioGroup& operator=(const MRadioGroup&) = delete;

  MRadioButton* selected = nullptr;
  std::unique_ptr<MRadioButton*[]> buttons;  // not owned; kept, never read
  uint32_t count = 0;
  uint32_t capacity = 0;

  void Add(MRadioButton* button);
  // Clears the button chosen so far and checks this one.
  void Select(MRadioButton* button);
};

class MRadioButton : public MCheckboxButton {
 public:
  // Joins the group, and is its choice if it starts checked. The group must outlive the button's use.
  MRadioButton(MWindow* inWindow, Looks looks, CheckedLooks checkedLooks, bool startsChecked, int32_t itsValue,
               MRadioGroup* inGroup);

  int32_t value;
  MRadioGroup* group;
};
