// The type library that the built files carry, read back as COM reads it and held against the published contract.
#include <iterator>
#include <string>

#include "tests/broker/EveryMethod.h"

namespace {

struct Method {
  int generation;
  const char* name;
  const char* arguments;
};
const Method kMethods[] = {
#include "tests/broker/InterfaceTable.inc"
};
static_assert(std::size(kMethods) == 102);

constexpr MEMBERID kFirstId = 0x60020000;  // of the first generation; each later one begins 0x10000 higher
constexpr size_t kSlotsAhead = 7;          // IUnknown's three and IDispatch's four

std::string TypeText(const TYPEDESC& type) {
  switch (type.vt) {
    case VT_I4: return "I4";
    case VT_UI4: return "UI4";
    case VT_I8: return "LONG_PTR";
    case VT_BSTR: return "BSTR";
    case VT_LPWSTR: return "LPWSTR";
    case VT_VARIANT: return "VARIANT";
    case VT_SAFEARRAY: return type.lptdesc->vt == VT_UI1 ? "BYTES" : "SAFEARRAY?";
    default: return "VT" + std::to_string(type.vt);
  }
}

// An argument as the contract writes it. Everything that goes out is one pointer away.
std::string ArgumentText(const ELEMDESC& element, const std::string& name) {
  const USHORT flags = element.paramdesc.wParamFlags;
  const bool out = (flags & PARAMFLAG_FOUT) != 0, in = (flags & PARAMFLAG_FIN) != 0;
  std::string text = name + " ";
  if (out && element.tdesc.vt != VT_PTR) text += "(no pointer) ";
  text += TypeText(out ? *element.tdesc.lptdesc : element.tdesc);
  if (out) text += in ? " in out" : " out";
  if (!out && !in) text += " (no direction)";
  if ((flags & PARAMFLAG_FOPT) != 0) text += " opt";
  if ((flags & PARAMFLAG_FHASDEFAULT) != 0) {
    text += " =" + std::to_string(element.paramdesc.pparamdescex->varDefaultValue.lVal);
  }
  // A VARIANT that goes out is the method's return value for scripts, and nothing else is.
  const bool variant = out && element.tdesc.lptdesc->vt == VT_VARIANT;
  EXPECT_EQ((flags & PARAMFLAG_FRETVAL) != 0, variant) << name;
  return text;
}

std::string ArgumentsText(ITypeInfo* info, const FUNCDESC& function) {
  BSTR names[16] = {};
  UINT count = 0;
  EXPECT_EQ(info->GetNames(function.memid, names, static_cast<UINT>(std::size(names)), &count), S_OK);
  EXPECT_EQ(count, static_cast<UINT>(function.cParams) + 1);
  std::string text;
  for (UINT i = 0; i < count; ++i) {
    if (i > 1) text += "; ";
    if (i > 0) text += ArgumentText(function.lprgelemdescParam[i - 1], ToUtf8(names[i]));
    SysFreeString(names[i]);
  }
  return text;
}

class TypeLibrary : public testing::TestWithParam<const wchar_t*> {
 protected:
  const ComPtr<ITypeLib> library = every_method::Load(GetParam());
};

TEST_P(TypeLibrary, SixGenerationsKeepTheirTwelveIdentifiers) {
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
  wchar_t id[40] = {};
  StringFromGUID2(attributes->guid, id, 40);
  EXPECT_EQ(ToUtf8(id), "{FAB3E735-69C7-453B-A446-B6823C6DF1C9}");
  EXPECT_EQ(attributes->wMajorVerNum * 100 + attributes->wMinorVerNum, 100);
  library->ReleaseTLibAttr(attributes);
  for (int i = 0; i < 6; ++i) {
    const std::string number = i == 0 ? "" : std::to_string(i + 1);
    const ComPtr<ITypeInfo> coclass = every_method::Find(library.Get(), every_method::kGenerations[i][1]);
    EXPECT_EQ(every_method::NameOf(coclass.Get()), "LumenBrokerImp" + number);
    EXPECT_EQ(every_method::NameOf(every_method::Implemented(coclass.Get(), 0).Get()), "ILumenBroker" + number);
  }
}

TEST_P(TypeLibrary, MethodsStandAsPublished) {
  size_t number = 0;
  every_method::ForEach(library.Get(), [&](ITypeInfo* info, const FUNCDESC& function, int generation, int index) {
    ASSERT_LT(number, std::size(kMethods));
    const Method& expected = kMethods[number];
    EXPECT_EQ(every_method::NameOf(info, function.memid), expected.name);
    EXPECT_EQ(ArgumentsText(info, function), expected.arguments) << expected.name;
    EXPECT_EQ(generation, expected.generation) << expected.name;
    EXPECT_EQ(function.oVft, static_cast<SHORT>((kSlotsAhead + number) * sizeof(void*))) << expected.name;
    EXPECT_EQ(function.memid, kFirstId + (generation - 1) * 0x10000 + index) << expected.name;
    EXPECT_EQ(function.elemdescFunc.tdesc.vt, VT_HRESULT) << expected.name;
    ++number;
  });
  EXPECT_EQ(number, std::size(kMethods));
}

INSTANTIATE_TEST_SUITE_P(BuiltFiles, TypeLibrary, testing::Values(L"\\bin\\LumenUtil.dll", L"\\bin\\LumenHost.exe"));

}  // namespace
