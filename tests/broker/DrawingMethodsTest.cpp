// The methods that are one call each: which call, with which arguments, and how its result travels. The drawing
// library's functions are replaced one at a time and write down what reaches them.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "broker/CoLumenBrokerServer.h"
#include "tests/support/ImportHook.h"
#include "tests/support/MemoryCanvas.h"

namespace {

std::vector<int64_t> seen;
int64_t answer = 0;

template <class Value>
int64_t Widen(Value value) {
  if constexpr (std::is_pointer_v<Value>) {
    return static_cast<int64_t>(reinterpret_cast<intptr_t>(value));
  } else {
    return static_cast<int64_t>(value);
  }
}

template <class Result, class... Parameters>
Result WINAPI Fake(Parameters... parameters) {
  seen = {Widen(parameters)...};
  if constexpr (std::is_pointer_v<Result>) {
    return reinterpret_cast<Result>(answer);
  } else {
    return static_cast<Result>(answer);
  }
}

enum class Shape { Out, NotZero, Positive };
using Call = std::function<HRESULT(ILumenBroker6*, ULONG* out)>;

struct Row {
  const char* function;
  void* fake;
  Call call;
  std::vector<int64_t> arguments;
  Shape shape;
};

// The function itself is named for its type alone.
template <class Result, class... Parameters>
Row Thin(const char* function, Result(WINAPI*)(Parameters...), Shape shape, std::vector<int64_t> arguments, Call call) {
  return {function, reinterpret_cast<void*>(&Fake<Result, Parameters...>), std::move(call), std::move(arguments),
          shape};
}

// A handle whose top bit is set comes back negative; a number does where the call takes a signed one.
constexpr ULONG kDc = 0x80100047;
constexpr int64_t kWide = static_cast<int32_t>(0x80100047);
constexpr ULONG kNumber = 0xFFFFFFFE;
constexpr int64_t kSigned = -2;
constexpr int64_t kUnsigned = 0xFFFFFFFE;

using B = ILumenBroker6;
// clang-format off
const Row kRows[] = {
    Thin("DeleteDC", DeleteDC, Shape::Out, {kWide}, [](B* b, ULONG* o) { return b->BrokerDeleteDC(kDc, o); }),
    Thin("SaveDC", SaveDC, Shape::Out, {kWide}, [](B* b, ULONG* o) { return b->BrokerSaveDC(kDc, o); }),
    Thin("RestoreDC", RestoreDC, Shape::NotZero, {kWide, kSigned}, [](B* b, ULONG*) { return b->BrokerRestoreDC(kDc, kNumber); }),
    Thin("StartPage", StartPage, Shape::Positive, {kWide}, [](B* b, ULONG*) { return b->BrokerStartPage(kDc); }),
    Thin("EndPage", EndPage, Shape::Positive, {kWide}, [](B* b, ULONG*) { return b->BrokerEndPage(kDc); }),
    Thin("EndDoc", EndDoc, Shape::Positive, {kWide}, [](B* b, ULONG*) { return b->BrokerEndDoc(kDc); }),
    Thin("IntersectClipRect", IntersectClipRect, Shape::Out, {kWide, kSigned, 2, 3, 4}, [](B* b, ULONG* o) { return b->BrokerIntersectClipRect(kDc, kNumber, 2, 3, 4, o); }),
    Thin("SetPolyFillMode", SetPolyFillMode, Shape::Out, {kWide, kSigned}, [](B* b, ULONG* o) { return b->BrokerSetPolyFillMode(kDc, kNumber, o); }),
    Thin("BeginPath", BeginPath, Shape::NotZero, {kWide}, [](B* b, ULONG*) { return b->BrokerBeginPath(kDc); }),
    Thin("EndPath", EndPath, Shape::NotZero, {kWide}, [](B* b, ULONG*) { return b->BrokerEndPath(kDc); }),
    Thin("MoveToEx", MoveToEx, Shape::NotZero, {kWide, kSigned, 7, 0}, [](B* b, ULONG*) { return b->BrokerMoveTo(kDc, kNumber, 7); }),
    Thin("LineTo", LineTo, Shape::NotZero, {kWide, 7, kSigned}, [](B* b, ULONG*) { return b->BrokerLineTo(kDc, 7, kNumber); }),
    Thin("SelectClipPath", SelectClipPath, Shape::NotZero, {kWide, kSigned}, [](B* b, ULONG*) { return b->BrokerSelectClipPath(kDc, kNumber); }),
    Thin("SelectClipRgn", SelectClipRgn, Shape::Out, {kWide, 0}, [](B* b, ULONG* o) { return b->BrokerSelectClipRgnNULL(kDc, o); }),
    Thin("GetTextAlign", GetTextAlign, Shape::Out, {kWide}, [](B* b, ULONG* o) { return b->BrokerGetTextAlign(kDc, o); }),
    Thin("SetTextAlign", SetTextAlign, Shape::Out, {kWide, kUnsigned}, [](B* b, ULONG* o) { return b->BrokerSetTextAlign(kDc, kNumber, o); }),
    Thin("GetBkMode", GetBkMode, Shape::Out, {kWide}, [](B* b, ULONG* o) { return b->BrokerGetBkMode(kDc, o); }),
    Thin("SetBkMode", SetBkMode, Shape::Out, {kWide, kSigned}, [](B* b, ULONG* o) { return b->BrokerSetBkMode(kDc, kNumber, o); }),
    Thin("GetTextColor", GetTextColor, Shape::Out, {kWide}, [](B* b, ULONG* o) { return b->BrokerGetTextColor(kDc, o); }),
    Thin("SetTextColor", SetTextColor, Shape::Out, {kWide, kUnsigned}, [](B* b, ULONG* o) { return b->BrokerSetTextColor(kDc, kNumber, o); }),
    Thin("GetDeviceCaps", GetDeviceCaps, Shape::Out, {kWide, kSigned}, [](B* b, ULONG* o) { return b->BrokerGetDeviceCaps(kDc, kNumber, o); }),
    Thin("SetTextCharacterExtra", SetTextCharacterExtra, Shape::Out, {kWide, kSigned}, [](B* b, ULONG* o) { return b->BrokerSetTextCharacterExtra(kDc, kNumber, o); }),
    Thin("SetGraphicsMode", SetGraphicsMode, Shape::Out, {kWide, kSigned}, [](B* b, ULONG* o) { return b->BrokerSetGraphicsMode(kDc, kNumber, o); }),
    Thin("GetObjectType", GetObjectType, Shape::Out, {kWide}, [](B* b, ULONG* o) { return b->BrokerGetObjectType(kDc, o); }),
    Thin("GetCurrentObject", GetCurrentObject, Shape::Out, {kWide, kUnsigned}, [](B* b, ULONG* o) { return b->BrokerGetCurrentObject(kDc, kNumber, o); }),
    Thin("SelectObject", SelectObject, Shape::Out, {kWide, kSigned}, [](B* b, ULONG* o) { return b->BrokerSelectObject(kDc, kNumber, o); }),
    Thin("DeleteObject", DeleteObject, Shape::Out, {kWide}, [](B* b, ULONG* o) { return b->BrokerDeleteObject(kDc, o); }),
};
// clang-format on
static_assert(std::size(kRows) == 27);

TEST(DrawingMethods, EachIsOneCallAndItsShape) {
  const ComInitializer apartment;
  const ComPtr<ILumenBroker6> broker = Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr));
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.function);
    for (const int64_t given : {int64_t{0}, int64_t{1}, int64_t{-1}, int64_t{0x7FFFFFFF}}) {
      constexpr ULONG kUntouched = 0x5A5A5A5A;
      ULONG out = kUntouched;
      HRESULT result = E_UNEXPECTED;
      seen.clear();
      answer = given;
      {
        const ImportHook hook(GetModuleHandleW(nullptr), row.function, row.fake);
        result = row.call(broker.Get(), &out);
      }
      EXPECT_EQ(seen, row.arguments);
      const bool succeeds = row.shape == Shape::Out || (row.shape == Shape::NotZero ? given != 0 : given > 0);
      EXPECT_EQ(result, succeeds ? S_OK : E_FAIL) << "the call gave " << given;
      EXPECT_EQ(out, row.shape == Shape::Out ? static_cast<ULONG>(given) : kUntouched);
    }
  }
}

TEST(DrawingMethods, StateWithoutAnAbsoluteValueIsNotLookedFor) {
  const ComInitializer apartment;
  const ComPtr<ILumenBroker6> broker = Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr));
  const MemoryCanvas canvas;
  ULONG state = 0;
  EXPECT_EQ(broker->BrokerSaveDC(canvas.Wire(), &state), S_OK);
  EXPECT_EQ(broker->BrokerRestoreDC(canvas.Wire(), 0x80000000), E_FAIL);
  EXPECT_EQ(broker->BrokerRestoreDC(canvas.Wire(), 0xFFFFFFFF), S_OK) << "the newest state";
}

}  // namespace
