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

SAFEARRAY* MakeArray(VARTYPE type, std::vector<SAFEARRAYBOUND> bounds, int fill = 0) {
  SAFEARRAY* const array = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
  if (array != nullptr && fill != 0) FillMemory(array->pvData, bounds[0].cElements * array->cbElements, fill);
  return array;
}

std::vector<WideString> HostileTexts() {
  return {L"",
          L"x",
          WideString(70000, L'A'),
          L"<LOCAL_APPDATA>" + WideString(300, L'\\'),
          L"\\\\?\\C:\\..\\..\\x.sol",
          WideString(L"a\0b\0", 4) + static_cast<wchar_t>(0xD800),
          L"\\\\.\\nosuchdevice",
          L"C:*?|<>\"\\%2E.\\::$DATA"};
}

std::vector<SAFEARRAY*> HostileArrays() {
  return {nullptr,
          MakeArray(VT_UI1, {{0, 0}}),
          MakeArray(VT_UI1, {{1, 0}}, 0xFF),
          MakeArray(VT_UI1, {{16, 0}}, 0xFF),
          MakeArray(VT_UI1, {{44, 0}}, 0xFF),
          MakeArray(VT_UI1, {{48, 0}}, 0x28),
          MakeArray(VT_UI1, {{24, 0}}, 0x7F),
          MakeArray(VT_UI1, {{92, 0}}, 0x7F),
          MakeArray(VT_UI1, {{40961, 0}}, 0x4D),
          MakeArray(VT_UI1, {{8, LONG_MIN}}),
          MakeArray(VT_UI1, {{4, 0}, {4, 0}}),
          MakeArray(VT_I4, {{16, 0}}, 0xFF),
          MakeArray(VT_BSTR, {{8, 0}})};
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

// The arguments of one call, made from the type library's word for them.
class Call {
 public:
  Call(const FUNCDESC& function, const std::string& name, const Stock& stock) : offset(function.oVft) {
    for (SHORT i = 0; i < function.cParams; ++i) {
      const TYPEDESC& type = function.lprgelemdescParam[i].tdesc;
      VARIANT value = {};
      value.vt = VT_I8;
      if (type.vt == VT_PTR) {
        Out& out = outs.at(static_cast<size_t>(i));
        out.type = type.lptdesc->vt;
        // Read only where the argument also goes in; of print flags none may bring up a dialog.
        if (out.type == VT_UI4) out.value.ulVal = stock.number;
        if (name == "BrokerPrintDialog" && i == 3) out.value.ulVal |= kQuietPrinting;
        value.llVal =
            reinterpret_cast<LONG_PTR>(out.type == VT_VARIANT ? static_cast<void*>(&out.value) : &out.value.llVal);
      } else if (type.vt == VT_BSTR || type.vt == VT_LPWSTR) {
        value.llVal = reinterpret_cast<LONG_PTR>(stock.text);
      } else if (type.vt == VT_SAFEARRAY) {
        value.llVal = reinterpret_cast<LONG_PTR>(stock.array);
      } else {
        value.llVal = type.vt == VT_I8 ? static_cast<LONG_PTR>(static_cast<LONG>(stock.number)) : stock.number;
      }
      values.push_back(value);
    }
  }
  ~Call() {
    for (Out& out : outs) {
      if (out.type == VT_BSTR) SysFreeString(out.value.bstrVal);
      if (out.type == VT_SAFEARRAY && out.value.parray != nullptr) SafeArrayDestroy(out.value.parray);
      if (out.type == VT_VARIANT) VariantClear(&out.value);
    }
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  HRESULT Perform(IUnknown* object) {
    std::vector<VARTYPE> types(values.size(), VT_I8);
    std::vector<VARIANTARG*> pointers;
    for (VARIANT& value : values) pointers.push_back(&value);
    VARIANT result = {};
    const HRESULT called = DispCallFunc(object, static_cast<ULONG_PTR>(offset), CC_STDCALL, VT_I4,
                                        static_cast<UINT>(values.size()), types.data(), pointers.data(), &result);
    return FAILED(called) ? called : result.lVal;
  }

 private:
  struct Out {
    VARTYPE type = VT_EMPTY;
    VARIANT value = {};
  };
  SHORT offset;
  std::array<Out, 16> outs;
  std::vector<VARIANT> values;
};

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
      const HRESULT result = Call(function, name, stock).Perform(broker.Get());
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
  std::vector<BString> texts(1);  // the first is null
  for (const WideString& text : HostileTexts()) texts.emplace_back(WideView(text));
  std::vector<SAFEARRAY*> arrays = HostileArrays();
  // The lists are walked in steps that make each item of one meet most of the others.
  for (size_t round = 0; round < 16 && !HasFatalFailure(); ++round) {
    CallAll([&] {
      return Stock{kNumbers[round % std::size(kNumbers)], texts[round * 3 % texts.size()].Get(),
                   arrays[round * 5 % arrays.size()]};
    });
  }
  for (SAFEARRAY* const array : arrays) {
    if (array != nullptr) SafeArrayDestroy(array);
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
  const ByteArray texts(MakeArray(VT_BSTR, {{4, 0}}));
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
