#include "ui/toolkit/LocaleLayout.h"

namespace {

struct LocaleRow {
  uint32_t locale;
  const char* face;
  int32_t smaller;
  LocaleOffsets offsets;
};
// The rows differ more than one would expect: Korean keeps the Latin face and moves some texts only, and Japanese moves
// the second label alone. All of it is what the panels were laid out for.
constexpr LocaleRow kRows[] = {
    {1028, "Mingliu", 3, {3, 3, 1, 3, {1, 1, 1}}},
    {1041, "Mincho", 2, {3, 3, 1, 3, {0, 1, 0}}},
    {1042, "Arial", 0, {0, 3, 1, 0, {0, 0, 0}}},
    {2052, "SimSun", 3, {3, 3, 1, 3, {1, 1, 1}}},
};
constexpr LocaleRow kOthers = {0, "Arial", 0, {}};

const LocaleRow& RowOf(uint32_t locale) {
  for (const LocaleRow& row : kRows) {
    if (row.locale == locale) return row;
  }
  return kOthers;
}

}  // namespace

FontChoice ChooseFont(uint32_t locale, int32_t size) {
  const LocaleRow& row = RowOf(locale);
  return {row.face, size - row.smaller};
}

const LocaleOffsets& OffsetsOf(uint32_t locale) {
  return RowOf(locale).offsets;
}
