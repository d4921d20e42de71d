#include "host/ThreadLanguage.h"

#include <windows.h>

#include "host/Languages.h"

// Texts go by the language of the user interface, fonts and offsets by the locale's exact number; people in Austria or
// Hong Kong have locales that no table is named after, so both are set to those of the table.
void UseLanguage(uint32_t table) {
  const uint32_t chosen = table != 0 ? table : TableForUser(LANGIDFROMLCID(GetThreadLocale()));
  const uint32_t locale = LocaleOfTable(chosen);
  SetThreadLocale(MAKELCID(locale, SORT_DEFAULT));
  SetThreadUILanguage(static_cast<LANGID>(locale));
}
