// The controls as the skin draws them.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/MString.h"
#include "ui/toolkit/MButton.h"
#include "ui/toolkit/MRadioGroup.h"

// `skin` is the skin sheet. Each control asks for a native child window; none is attached or laid out yet. The caller
// owns what it gets.
[[nodiscard]] std::unique_ptr<MButton> MakeButton(MWindow* window, ImageRef skin, const MString& text);
[[nodiscard]] std::unique_ptr<MCheckboxButton> MakeCheckbox(MWindow* window, ImageRef skin, bool checked);
[[nodiscard]] std::unique_ptr<MRadioButton> MakeRadio(MWindow* window, ImageRef skin, bool checked, int32_t value,
                                                      MRadioGroup* group);
