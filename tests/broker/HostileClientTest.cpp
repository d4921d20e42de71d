// A client that means harm: every method of the interface, called through the marshaller as any client calls it, with
// what no honest client sends. Whatever the answers are, they come from a server that lives, and that serves on.
#include <array>
#include <climits>
#include <iterator>
#include <string>
#include <vector>

#include "tests/broker/EveryMethod.h"
#include "tests/support/ByteArray.h"
#include "tests/support/DispatchCall.h"
#include "tests/support/TestFiles.h"

namespace {

using namespace testing_files;  // NOLINT(google-build-using-namespace): a test's own vocabulary

constexpr ULONG kQuietPrinting = 0x480;  // the default printer's device context, without a dialog or a warning

// One round's stock: every argument of a kind is the same.
struct Stock {
  ULONG number;
  BSTR text;
  SAFEARRAY* array;
};

const WideString kTexts[] = {L"",
                             L"x",
                             WideString(70000, L'A'),
                             L"<LOCAL_APPDATA>" + WideString(300, L'\\'),
                             L"\\\\?\\C:\\..\\..\\x.sol",
                             WideString(L"a\0b\0", 4) + static_cast<wchar_t>(0xD800),
                             L"\\\\.\\nosuchdevice",
                             L"C:*?|<>\"\\%2E.\\::$DATA"};

struct ArrayShape {
  VARTYPE type;
  SAFEARRAYBOUND bounds[2];  // the second only where it has elements
  int fill;
};
constexpr ArrayShape kArrays[] = {
    {VT_UI1, {{0, 0}}, 0},         {VT_UI1, {{1, 0}}, 0xFF},     {VT_UI1, {{16, 0}}, 0xFF},
    {VT_UI1, {{44, 0}}, 0xFF},     {VT_UI1, {{48, 0}}, 0x28},    {VT_UI1, {{24, 0}}, 0x7F},
    {VT_UI1, {{92, 0}}, 0x7F},     {VT_UI1, {{40961, 0}}, 0x4D}, {VT_UI1, {{8, LONG_MIN}}, 0},
    {VT_UI1, {{4, 0}, {4, 0}}, 0}, {VT_I4, {{16, 0}}, 0xFF},     {VT_BSTR, {{8, 0}}, 0}};

SAFEARRAY* MakeArray(ArrayShape shape) {
  SAFEARRAY* const array = SafeArrayCreate(shape.type, shape.bounds[1].cElements == 0 ? 1 : 2, shape.bounds);
  if (shape.fill != 0) FillMemory(array->pvData, size_t{shape.bounds[0].cElements} * array->cbElements, shape.fill);
  return array;
}

// What COM says when the server, rather than the method, has given up. The last is a fault that the marshaller of some
// platforms catches, and no other does.
bool TellsOfAFall(HRESULT result) {
  constexpr HRESULT kFalls[] = {RPC_E_SERVERFAULT,
                                RPC_E_SERVER_DIED,
                                RPC_E_SERVER_DIED_DNE,
                                RPC_E_DISCONNECTED,
                                CO_E_OBJNOTCONNECTED,
                                HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE),
                                HRESULT_FROM_WIN32(RPC_S_CALL_FAILED),
                                HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE),
                                HRESULT_FROM_WIN32(ERROR_NOACCESS)};
  return std::find(std::begin(kFalls), std::end(kFalls), result) != std::end(kFalls);
}

// Calls one method with arguments made from the type library's word for them.
HRESULT Call(IUnknown* object, const FUNCDESC& function, const std::string& name, const Stock& stock) {
  std::array<VARIANT, 16> values{}, outs{};
  std::array<VARIANTARG*, 16> pointers{};
  std::array<VARTYPE, 16> types{};
  types.fill(VT_I8);
  for (size_t i = 0; i < static_cast<size_t>(function.cParams); ++i) {
    const TYPEDESC& type = function.lprgelemdescParam[i].tdesc;
    VARIANT& out = outs.at(i);
    LONG_PTR& value = (pointers.at(i) = &values.at(i))->llVal;
    if (type.vt == VT_PTR) {
      // The type serves to free what came; a variant tells its own.
      const VARTYPE of = type.lptdesc->vt;
      value = reinterpret_cast<LONG_PTR>(of == VT_VARIANT ? static_cast<void*>(&out) : &out.llVal);
      if (of != VT_VARIANT) out.vt = of == VT_SAFEARRAY ? VARTYPE{VT_ARRAY | VT_UI1} : of;
      // Read only where the argument also goes in; of print flags none may bring up a dialog.
      if (of == VT_UI4) out.ulVal = stock.number;
      if (name == "BrokerPrintDialog" && i == 3) out.ulVal |= kQuietPrinting;
    } else if (type.vt == VT_BSTR || type.vt == VT_LPWSTR) {
      value = reinterpret_cast<LONG_PTR>(stock.text);
    } else if (type.vt == VT_SAFEARRAY) {
      value = reinterpret_cast<LONG_PTR>(stock.array);
    } else {
      value = type.vt == VT_I8 ? static_cast<LONG_PTR>(static_cast<LONG>(stock.number)) : stock.number;
    }
  }
  VARIANT result = {};
  const HRESULT called = DispCallFunc(object, static_cast<ULONG_PTR>(function.oVft), CC_STDCALL, VT_I4,
                                      static_cast<UINT>(function.cParams), types.data(), pointers.data(), &result);
  for (VARIANT& out : outs) VariantClear(&out);
  return FAILED(called) ? called : result.lVal;
}

class HostileClient : public BrokerSuiteTest {
 protected:
  void TearDown() override {
    BrokerSuiteTest::TearDown();
    // One of the methods enters the server to run at the next logon.
    RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce",
                       L"LumenPlayerUpdate");
  }

  [[nodiscard]] bool IsRunning() const { return WaitForSingleObject(server.Get(), 0) == WAIT_TIMEOUT; }
  // A new file each time: the one before may still be open.
  ULONG OpenFile() {
    const WideString path = directory.Path() + L"\\" + WidenAscii(std::to_string(++files)) + L".sol";
    ULONG cookie = 0;
    EXPECT_EQ(broker->BrokerCreateFile(BString(WideView(path)).Get(), 0, 1, &cookie), S_OK);
    return cookie;
  }
  ULONG OpenSearch() {
    ULONG cookie = 0, attributes = 0;
    BString leaf;
    const BString all(WideView(directory.Path() + L"\\*"));
    EXPECT_EQ(broker->BrokerFindFirstFile(all.Get(), leaf.Receive(), &attributes, &cookie), S_OK);
    return cookie;
  }
  void ExpectService() {
    const ULONG cookie = OpenFile();
    ULONG written = 0;
    EXPECT_EQ(broker->BrokerWriteFile(cookie, ByteArray("still here").Get(), &written), S_OK);
    EXPECT_EQ(written, 10u);
    EXPECT_EQ(broker->BrokerCloseHandle(cookie), S_OK);
  }
  // Calls every method with what `next` stocks for it. Stops at the first that brings the server down.
  template <class Next>
  void CallAll(Next next) {
    const ComPtr<ITypeLib> library = every_method::Load(L"\\bin\\LumenUtil.dll");
    every_method::ForEach(library.Get(), [&](ITypeInfo* info, const FUNCDESC& function, int, int) {
      const std::string name = every_method::NameOf(info, function.memid);
      const Stock stock = next();
      const HRESULT result = Call(broker.Get(), function, name, stock);
      ++called;
      ASSERT_TRUE(IsRunning() && !TellsOfAFall(result))
          << name << " with " << stock.number << " answered " << std::hex << result;
    });
  }

  CleanDirectory directory{PlayerDirectory()};
  size_t called = 0;
  size_t files = 0;
};

TEST_F(HostileClient, NothingThatAMethodIsGivenBringsTheServerDown) {
  constexpr ULONG kNumbers[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 8193, 0x20000001, 0xFFFF0000};
  // The lists are walked in steps that make each item of one meet most of the others; the first of either is null.
  for (size_t round = 0; round < 16 && !HasFatalFailure(); ++round) {
    const size_t textAt = round * 3 % (std::size(kTexts) + 1), arrayAt = round * 5 % (std::size(kArrays) + 1);
    const BString text(textAt == 0 ? WideView() : WideView(kTexts[textAt - 1]));
    const ByteArray array(arrayAt == 0 ? nullptr : MakeArray(kArrays[arrayAt - 1]));
    CallAll([&] {
      return Stock{kNumbers[round % std::size(kNumbers)], textAt == 0 ? nullptr : text.Get(), array.Get()};
    });
  }
  EXPECT_EQ(called, 16u * 102u);
  ExpectService();
}

// A cookie does not know what it stands for, so each sort reaches every method.
TEST_F(HostileClient, CookiesOfEverySortServeAsEveryOther) {
  const BString text(L"x");
  ByteArray bytes(std::string(128, 'M'));
  for (const bool file : {true, false}) {
    CallAll([&] { return Stock{file ? OpenFile() : OpenSearch(), text.Get(), bytes.Get()}; });
    if (HasFatalFailure()) return;
  }
  ExpectService();
}

TEST_F(HostileClient, ReplyThatNoCallCanCarryIsRefused) {
  const BString big(WideView(directory.Path() + L"\\big.sol"));
  WriteWhole(WideString(big.View()), "content");
  ULONG cookie = 0;
  ASSERT_EQ(broker->BrokerCreateFile(big.Get(), 1, 0, &cookie), S_OK);
  for (const ULONG size : {0xFFFFFFFFu, 0xFFFFFFF0u, 0x80000000u}) {
    ULONG read = 0;
    ByteArray data(nullptr);
    const HRESULT result = broker->BrokerReadFile(cookie, size, &read, data.Receive());
    EXPECT_TRUE(FAILED(result) && !TellsOfAFall(result)) << size << " answered " << std::hex << result;
    ASSERT_TRUE(IsRunning());
  }
  ExpectService();
}

// The dispatch side, where a script may pass anything at all.
TEST_F(HostileClient, ScriptsMayPassAnything) {
  ComPtr<IDispatch> script;
  ASSERT_EQ(broker.As(&script), S_OK);
  VARIANT null = {};
  null.vt = VT_NULL;
  VARIANT wrongArray = {};
  wrongArray.vt = VT_ARRAY | VT_BSTR;
  const ByteArray texts(MakeArray({VT_BSTR, {{4, 0}}, 0}));
  wrongArray.parray = texts.Get();
  const BString text(L"x");
  for (const wchar_t* name : {L"BrokerCreateFile", L"BrokerWriteFile", L"BrokerReadFile", L"BrokerLcdDispatchMessage",
                              L"BrokerGetFileAttributesEx", L"BrokerDelayScreensaver"}) {
    for (const VARIANT& value : {VARIANT{}, null, wrongArray, Argument(text.Get()), Argument(0xFFFFFFFFul)}) {
      for (size_t count = 0; count <= 12; ++count) {
        const HRESULT result = CallByName(script.Get(), name, std::vector<VARIANT>(count, value));
        ASSERT_TRUE(IsRunning() && !TellsOfAFall(result)) << ToUtf8(name) << std::hex << result;
      }
    }
  }
  ExpectService();
}

}  // namespace
