// The file filters of a call as clients send them, and what they get for them.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

#include "engine/WideText.h"

// The bytes of a text with its terminator.
inline std::string FilterBytes(WideView text) {
  const WideString terminated(text);
  const auto* const bytes = reinterpret_cast<const char*>(terminated.c_str());
  return {bytes, (terminated.size() + 1) * sizeof(wchar_t)};
}

// What a dialog gave, joined by "|"; "(empty)" without a list. Clears it.
inline std::string TakeEntries(VARIANT& entries) {
  std::string chosen = entries.vt == (VT_ARRAY | VT_VARIANT) ? "" : "(empty)";
  for (ULONG i = 0; chosen != "(empty)" && i < entries.parray->rgsabound[0].cElements; ++i) {
    const VARIANT& element = static_cast<const VARIANT*>(entries.parray->pvData)[i];
    chosen += (i == 0 ? "" : "|") + (element.vt == VT_BSTR ? ToUtf8(element.bstrVal) : "(no text)");
  }
  VariantClear(&entries);
  return chosen;
}
