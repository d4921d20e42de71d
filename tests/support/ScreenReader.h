// Says of a control of another process's window what a screen reader says: its name, what it is, and how it stands.
#pragma once

#include <windows.h>

#include <oleacc.h>

#include <string>

#include "engine/ComSupport.h"
#include "engine/DllHelpers.h"
#include "engine/WideText.h"

// "INSTALL, button, focused"; empty when the control gives no answer, or says it is elsewhere than it is. The caller's
// thread has COM initialised.
[[nodiscard]] inline std::string Spoken(HWND control) {
  static BoundFunction<decltype(::AccessibleObjectFromWindow)> find(L"oleacc.dll", "AccessibleObjectFromWindow");
  ComPtr<IAccessible> object;
  if (FAILED(find.Get()(control, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                        reinterpret_cast<void**>(object.GetAddressOf()))))
    return {};
  VARIANT self = {}, role = {}, state = {};
  self.vt = VT_I4;
  BString name;
  RECT place = {}, heard = {};
  if (object->get_accName(self, name.Receive()) != S_OK || object->get_accRole(self, &role) != S_OK ||
      object->get_accState(self, &state) != S_OK || !GetWindowRect(control, &place) ||
      object->accLocation(&heard.left, &heard.top, &heard.right, &heard.bottom, self) != S_OK)
    return {};
  heard.right += heard.left;
  heard.bottom += heard.top;
  if (name.Get() == nullptr || EqualRect(&heard, &place) == FALSE) return {};
  const char* const kind = role.lVal == ROLE_SYSTEM_PUSHBUTTON    ? ", button"
                           : role.lVal == ROLE_SYSTEM_CHECKBUTTON ? ", check box"
                           : role.lVal == ROLE_SYSTEM_RADIOBUTTON ? ", choice"
                                                                  : ", text";
  std::string spoken = ToUtf8(name.View()) + kind;
  if ((state.lVal & STATE_SYSTEM_CHECKED) != 0) spoken += ", checked";
  if ((state.lVal & STATE_SYSTEM_FOCUSED) != 0) spoken += ", focused";
  return spoken;
}
