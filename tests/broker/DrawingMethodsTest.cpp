// The methods that are one call each: which call, with which arguments, and how its result travels. The drawing
// library's functions are replaced one at a time and write down what reaches them.
#include <windows.h>

#include <utility>
#include <vector>

#include "tests/support/ImportHook.h"
#include "tests/support/MemoryCanvas.h"

namespace {

std::vector<int64_t> seen;
int64_t answer = 0;

template <class Result, class... Parameters>
Result WINAPI Fake(Parameters... parameters) {
  seen = {(int64_t)(parameters)...};  // NOLINT(google-readability-casting): pointers and numbers alike
  return (Result)(answer);            // NOLINT(google-readability-casting)
}

// A client's number as the call gets it: a handle whose top bit is set comes back negative, as do signed numbers.
template <class Parameter>
constexpr int64_t Widened(ULONG number) {
  return std::is_unsigned_v<Parameter> ? int64_t{number} : int64_t{static_cast<int32_t>(number)};
}

enum class Shape { Out, NotZero, Positive };

// An argument of a method: a number, large and like no other, or where the result goes.
struct Argument {
  size_t at;
  ULONG* out;
  operator ULONG() const { return static_cast<ULONG>(0x80100047 + at); }
  operator ULONG*() const { return out; }
};

// The function itself is named for its type alone. What the method has no argument for is null.
template <class Result, class... Parameters, class... Arguments>
void Check(const char* function, Result(WINAPI*)(Parameters...), Shape shape,
           HRESULT (STDMETHODCALLTYPE ILumenBroker3::*method)(Arguments...), ILumenBroker6* broker) {
  SCOPED_TRACE(function);
  constexpr bool kOut = (std::is_pointer_v<Arguments> || ...);
  EXPECT_EQ(shape == Shape::Out, kOut);
  for (const int64_t given : {int64_t{0}, int64_t{1}, int64_t{-1}, int64_t{0x7FFFFFFF}}) {
    ULONG out = 5;
    answer = given;
    seen.clear();
    const ImportHook hook(GetModuleHandleW(nullptr), function, &Fake<Result, Parameters...>);
    const HRESULT result = [&]<size_t... At>(std::index_sequence<At...>) {
      return (broker->*method)(Argument{At, &out}...);
    }
    (std::index_sequence_for<Arguments...>());
    [&]<size_t... At>(std::index_sequence<At...>) {
      constexpr size_t kGiven = sizeof...(Arguments) - (kOut ? 1 : 0);
      EXPECT_EQ(seen, (std::vector<int64_t>{(At < kGiven ? Widened<Parameters>(Argument{At, nullptr}) : 0)...}));
    }
    (std::index_sequence_for<Parameters...>());
    const bool succeeds = shape == Shape::Out || (shape == Shape::NotZero ? given != 0 : given > 0);
    EXPECT_EQ(result, succeeds ? S_OK : E_FAIL) << "the call gave " << given;
    EXPECT_EQ(out, kOut ? static_cast<ULONG>(given) : 5u);
  }
}

using DrawingMethods = CanvasTest;

TEST_F(DrawingMethods, EachIsOneCallAndItsShape) {
  using B = ILumenBroker3;
  ILumenBroker6* const b = broker.Get();
  Check("DeleteDC", DeleteDC, Shape::Out, &B::BrokerDeleteDC, b);
  Check("SaveDC", SaveDC, Shape::Out, &B::BrokerSaveDC, b);
  Check("RestoreDC", RestoreDC, Shape::NotZero, &B::BrokerRestoreDC, b);
  Check("StartPage", StartPage, Shape::Positive, &B::BrokerStartPage, b);
  Check("EndPage", EndPage, Shape::Positive, &B::BrokerEndPage, b);
  Check("EndDoc", EndDoc, Shape::Positive, &B::BrokerEndDoc, b);
  Check("IntersectClipRect", IntersectClipRect, Shape::Out, &B::BrokerIntersectClipRect, b);
  Check("SetPolyFillMode", SetPolyFillMode, Shape::Out, &B::BrokerSetPolyFillMode, b);
  Check("BeginPath", BeginPath, Shape::NotZero, &B::BrokerBeginPath, b);
  Check("EndPath", EndPath, Shape::NotZero, &B::BrokerEndPath, b);
  Check("MoveToEx", MoveToEx, Shape::NotZero, &B::BrokerMoveTo, b);
  Check("LineTo", LineTo, Shape::NotZero, &B::BrokerLineTo, b);
  Check("SelectClipPath", SelectClipPath, Shape::NotZero, &B::BrokerSelectClipPath, b);
  Check("SelectClipRgn", SelectClipRgn, Shape::Out, &B::BrokerSelectClipRgnNULL, b);
  Check("GetTextAlign", GetTextAlign, Shape::Out, &B::BrokerGetTextAlign, b);
  Check("SetTextAlign", SetTextAlign, Shape::Out, &B::BrokerSetTextAlign, b);
  Check("GetBkMode", GetBkMode, Shape::Out, &B::BrokerGetBkMode, b);
  Check("SetBkMode", SetBkMode, Shape::Out, &B::BrokerSetBkMode, b);
  Check("GetTextColor", GetTextColor, Shape::Out, &B::BrokerGetTextColor, b);
  Check("SetTextColor", SetTextColor, Shape::Out, &B::BrokerSetTextColor, b);
  Check("GetDeviceCaps", GetDeviceCaps, Shape::Out, &B::BrokerGetDeviceCaps, b);
  Check("SetTextCharacterExtra", SetTextCharacterExtra, Shape::Out, &B::BrokerSetTextCharacterExtra, b);
  Check("SetGraphicsMode", SetGraphicsMode, Shape::Out, &B::BrokerSetGraphicsMode, b);
  Check("GetObjectType", GetObjectType, Shape::Out, &B::BrokerGetObjectType, b);
  Check("GetCurrentObject", GetCurrentObject, Shape::Out, &B::BrokerGetCurrentObject, b);
  Check("SelectObject", SelectObject, Shape::Out, &B::BrokerSelectObject, b);
  Check("DeleteObject", DeleteObject, Shape::Out, &B::BrokerDeleteObject, b);
}

TEST_F(DrawingMethods, StateWithoutAnAbsoluteValueIsNotLookedFor) {
  ULONG state = 0;
  EXPECT_EQ(broker->BrokerSaveDC(dc, &state), S_OK);
  EXPECT_EQ(broker->BrokerRestoreDC(dc, 0x80000000), E_FAIL);
  EXPECT_EQ(broker->BrokerRestoreDC(dc, 0xFFFFFFFF), S_OK) << "the newest state";
}

}  // namespace
