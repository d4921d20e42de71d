// Calls a method by its name, as a script does.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <algorithm>
#include <type_traits>
#include <vector>

// `arguments` in the method's own order; what is by reference in them is filled. DISP_E_EXCEPTION comes back as the
// method's own HRESULT, anything else as the dispatch side gave it.
[[nodiscard]] inline HRESULT CallByName(IDispatch* object, const wchar_t* name, std::vector<VARIANT> arguments) {
  DISPID id = 0;
  auto* names = const_cast<LPOLESTR>(name);
  const HRESULT found = object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &id);
  if (FAILED(found)) return found;
  std::reverse(arguments.begin(), arguments.end());
  DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  EXCEPINFO exception = {};
  const HRESULT called =
      object->Invoke(id, IID_NULL, LOCALE_NEUTRAL, DISPATCH_METHOD, &parameters, nullptr, &exception, nullptr);
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return called == DISP_E_EXCEPTION ? exception.scode : called;
}

// A BSTR, LONG, ULONG or ULONG*.
template <class Value>
VARIANT Argument(Value value) {
  VARIANT variant = {};
  if constexpr (std::is_same_v<Value, BSTR>) {
    variant.vt = VT_BSTR;
    variant.bstrVal = value;
  } else if constexpr (std::is_pointer_v<Value>) {
    variant.vt = VT_UI4 | VT_BYREF;
    variant.pulVal = value;
  } else {
    variant.vt = std::is_same_v<Value, LONG> ? VT_I4 : VT_UI4;
    variant.ulVal = static_cast<ULONG>(value);
  }
  return variant;
}
