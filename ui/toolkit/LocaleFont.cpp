#include "ui/toolkit/LocaleFont.h"

namespace {

struct LocaleRow {
  uint32_t locale;
  const char* face;
  int32_t smaller;
};
// Korean texts keep the Latin face: the platform finds their glyphs elsewhere.
constexpr LocaleRow kRows[] = {{1028, "Mingliu", 3}, {1041, "Mincho", 2}, {2052, "SimSun", 3}};

}  // namespace

FontChoice ChooseFont(uint32_t locale, int32_t size) {
  for (const LocaleRow& row : kRows) {
    if (row.locale == locale) return {row.face, size - row.smaller};
  }
  return {"Arial", size};
}
