#include "ui/toolkit/MRadioGroup.h"

#include <algorithm>
#include <utility>

namespace {

constexpr uint32_t kFirstCapacity = 3;

}  // namespace

// The count is raised before the button is stored, so the place 0 stays empty.
void MRadioGroup::Add(MRadioButton* button) {
  if (buttons == nullptr) {
    capacity = kFirstCapacity;
    buttons = std::make_unique<MRadioButton*[]>(capacity);
  }
  ++count;
  if (count == capacity) {
    auto larger = std::make_unique<MRadioButton*[]>(size_t{capacity} * 2);
    std::copy_n(buttons.get(), capacity, larger.get());
    buttons = std::move(larger);
    capacity *= 2;
  }
  buttons[count] = button;
}

void MRadioGroup::Select(MRadioButton* button) {
  if (selected != nullptr) {
    selected->checked = false;
    selected->ShowLook(Look::Normal);
  }
  button->checked = true;
  selected = button;
}

MRadioButton::MRadioButton(MWindow* inWindow, Looks looks, CheckedLooks checkedLooks, bool startsChecked,
                           int32_t itsValue, MRadioGroup* inGroup)
    : MCheckboxButton(inWindow, std::move(looks), std::move(checkedLooks), startsChecked),
      value(itsValue),
      group(inGroup) {
  controlKind = kRadioControl;
  group->Add(this);
  if (startsChecked) group->Select(this);
}
