// The drawing methods that are one call each, as a table: the method, how its result travels, the call, its arguments.
#include "broker/CoLumenBrokerServer.h"
#include "broker/GdiRelay.h"

namespace {

// An argument of the call made from a client's 32 bits: a handle is sign-extended, a number stays as it is.
template <class Parameter>
Parameter From(ULONG value) {
  if constexpr (std::is_pointer_v<Parameter>) {
    return GdiHandleFrom<Parameter>(value);
  } else {
    return static_cast<Parameter>(value);
  }
}
template <class Parameter>
Parameter From(std::nullptr_t) {
  return nullptr;
}

// A result as a client's 32 bits: a handle loses its upper half.
template <class Result>
ULONG Wire(Result result) {
  if constexpr (std::is_pointer_v<Result>) {
    return WireFromGdi(result);
  } else {
    return static_cast<ULONG>(result);
  }
}

// The three shapes. The marshaller sees to it that there is an `out`.
template <class Result, class... Parameters, class... Arguments>
HRESULT Out(Result(WINAPI* call)(Parameters...), ULONG* out, Arguments... arguments) {
  *out = Wire(call(From<Parameters>(arguments)...));
  return S_OK;
}
template <class Result, class... Parameters, class... Arguments>
HRESULT NotZero(Result(WINAPI* call)(Parameters...), Arguments... arguments) {
  return call(From<Parameters>(arguments)...) != 0 ? S_OK : E_FAIL;
}
template <class Result, class... Parameters, class... Arguments>
HRESULT Positive(Result(WINAPI* call)(Parameters...), Arguments... arguments) {
  return call(From<Parameters>(arguments)...) > 0 ? S_OK : E_FAIL;
}

// The most negative number is no state's. A platform that looks at its absolute value, which it has none of, would go
// looking for the state where there is no memory.
HRESULT RestoreTo(ULONG dc, ULONG state) {
  return state == 0x80000000 ? E_FAIL : NotZero(RestoreDC, dc, state);
}

}  // namespace

using S = CoLumenBrokerServer;

// clang-format off
HRESULT S::BrokerDeleteDC(ULONG dc, ULONG* rc)                           { return Out(DeleteDC, rc, dc); }
HRESULT S::BrokerSaveDC(ULONG dc, ULONG* state)                          { return Out(SaveDC, state, dc); }
HRESULT S::BrokerRestoreDC(ULONG dc, ULONG state)                        { return RestoreTo(dc, state); }
HRESULT S::BrokerStartPage(ULONG dc)                                     { return Positive(StartPage, dc); }
HRESULT S::BrokerEndPage(ULONG dc)                                       { return Positive(EndPage, dc); }
HRESULT S::BrokerEndDoc(ULONG dc)                                        { return Positive(EndDoc, dc); }
HRESULT S::BrokerIntersectClipRect(ULONG dc, ULONG left, ULONG top, ULONG right, ULONG bottom, ULONG* rc) {
                                                      return Out(IntersectClipRect, rc, dc, left, top, right, bottom); }
HRESULT S::BrokerSetPolyFillMode(ULONG dc, ULONG mode, ULONG* rc)        { return Out(SetPolyFillMode, rc, dc, mode); }
HRESULT S::BrokerBeginPath(ULONG dc)                                     { return NotZero(BeginPath, dc); }
HRESULT S::BrokerEndPath(ULONG dc)                                       { return NotZero(EndPath, dc); }
HRESULT S::BrokerMoveTo(ULONG dc, ULONG x, ULONG y)                      { return NotZero(MoveToEx, dc, x, y, nullptr); }
HRESULT S::BrokerLineTo(ULONG dc, ULONG x, ULONG y)                      { return NotZero(LineTo, dc, x, y); }
HRESULT S::BrokerSelectClipPath(ULONG dc, ULONG mode)                    { return NotZero(SelectClipPath, dc, mode); }
HRESULT S::BrokerSelectClipRgnNULL(ULONG dc, ULONG* rc)                  { return Out(SelectClipRgn, rc, dc, nullptr); }
HRESULT S::BrokerGetTextAlign(ULONG dc, ULONG* rc)                       { return Out(GetTextAlign, rc, dc); }
HRESULT S::BrokerSetTextAlign(ULONG dc, ULONG align, ULONG* rc)          { return Out(SetTextAlign, rc, dc, align); }
HRESULT S::BrokerGetBkMode(ULONG dc, ULONG* rc)                          { return Out(GetBkMode, rc, dc); }
HRESULT S::BrokerSetBkMode(ULONG dc, ULONG mode, ULONG* rc)              { return Out(SetBkMode, rc, dc, mode); }
HRESULT S::BrokerGetTextColor(ULONG dc, ULONG* rc)                       { return Out(GetTextColor, rc, dc); }
HRESULT S::BrokerSetTextColor(ULONG dc, ULONG color, ULONG* rc)          { return Out(SetTextColor, rc, dc, color); }
HRESULT S::BrokerGetDeviceCaps(ULONG dc, ULONG index, ULONG* rc)         { return Out(GetDeviceCaps, rc, dc, index); }
HRESULT S::BrokerSetTextCharacterExtra(ULONG dc, ULONG extra, ULONG* rc) { return Out(SetTextCharacterExtra, rc, dc, extra); }
HRESULT S::BrokerSetGraphicsMode(ULONG dc, ULONG mode, ULONG* rc)        { return Out(SetGraphicsMode, rc, dc, mode); }
HRESULT S::BrokerGetObjectType(ULONG handle, ULONG* type)                { return Out(GetObjectType, type, handle); }
HRESULT S::BrokerGetCurrentObject(ULONG dc, ULONG type, ULONG* object)   { return Out(GetCurrentObject, object, dc, type); }
HRESULT S::BrokerSelectObject(ULONG dc, ULONG object, ULONG* old)        { return Out(SelectObject, old, dc, object); }
HRESULT S::BrokerDeleteObject(ULONG handle, ULONG* rc)                   { return Out(DeleteObject, rc, handle); }
// clang-format on
