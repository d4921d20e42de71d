// The type library that the built files carry, read back as COM reads it and held against the published contract.
#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "tests/support/BrokerProcess.h"

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

// The interface's identifier and its class's, oldest first.
const wchar_t* const kGenerations[6][2] = {
    {L"{2E4BB6BE-A75F-4DC0-9500-68203655A2C4}", L"{D4304BCF-B8E9-4B35-BEA0-DC5B522670C2}"},
    {L"{DDF4CE26-4BDA-42BC-B0F0-0E75243AD285}", L"{0BE09CC1-42E0-11DD-AE16-0800200C9A66}"},
    {L"{1D4C8A81-B7AC-460A-8C23-98713C41D6B3}", L"{19114156-8E9A-4D4E-9EE9-17A0E48D3BBB}"},
    {L"{E3F2C3CB-5EB8-4A04-B22C-7E3B4B6AF30F}", L"{A483C63A-CDBC-426E-BF93-872502E8144E}"},
    {L"{6AE38AE0-750C-11E1-B0C4-0800200C9A66}", L"{73C9DFA0-750D-11E1-B0C4-0800200C9A66}"},
    {L"{299817DA-1FAC-4CE2-8F48-A108237013BD}", L"{B019E3BF-E7E5-453C-A2E4-D2C18CA0866F}"},
};
constexpr MEMBERID kFirstId = 0x60020000;  // of the first generation; each later one begins 0x10000 higher
constexpr SHORT kSlotsAhead = 7;           // IUnknown's three and IDispatch's four

GUID ToGuid(const wchar_t* text) {
  GUID id = {};
  EXPECT_EQ(CLSIDFromString(text, &id), S_OK);
  return id;
}

WideString NameOf(ITypeInfo* info) {
  BString name;
  EXPECT_EQ(info->GetDocumentation(MEMBERID_NIL, name.Receive(), nullptr, nullptr, nullptr), S_OK);
  return WideString(name.View());
}

// The vtable side of a dual interface, which the library describes by its dispatch side.
ComPtr<ITypeInfo> VtableSide(ITypeInfo* dispatch) {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
  EXPECT_EQ(dispatch->GetRefTypeInfo(reference, &info), S_OK);
  return info;
}

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
  const bool out = (flags & PARAMFLAG_FOUT) != 0;
  std::string text = name + " ";
  if (out && element.tdesc.vt != VT_PTR) text += "(no pointer) ";
  text += TypeText(out ? *element.tdesc.lptdesc : element.tdesc);
  if ((flags & PARAMFLAG_FIN) == 0) EXPECT_TRUE(out) << name;
  if (out) text += (flags & PARAMFLAG_FIN) != 0 ? " in out" : " out";
  if ((flags & PARAMFLAG_FOPT) != 0) text += " opt";
  if ((flags & PARAMFLAG_FHASDEFAULT) != 0) {
    text += " =" + std::to_string(element.paramdesc.pparamdescex->varDefaultValue.lVal);
  }
  return text;
}

struct Described {
  std::string name;
  std::string arguments;
};

Described Describe(ITypeInfo* info, const FUNCDESC& function) {
  BSTR names[16] = {};
  UINT count = 0;
  EXPECT_EQ(info->GetNames(function.memid, names, static_cast<UINT>(std::size(names)), &count), S_OK);
  EXPECT_EQ(count, static_cast<UINT>(function.cParams) + 1);
  Described described;
  for (UINT i = 0; i < count; ++i) {
    const std::string name = ToUtf8(WideView(names[i], SysStringLen(names[i])));
    SysFreeString(names[i]);
    if (i == 0) {
      described.name = name;
      continue;
    }
    if (i > 1) described.arguments += "; ";
    described.arguments += ArgumentText(function.lprgelemdescParam[i - 1], name);
  }
  return described;
}

// A VARIANT that goes out is the method's return value for scripts, and nothing else is.
void ExpectReturnValues(const FUNCDESC& function, const std::string& name) {
  for (SHORT i = 0; i < function.cParams; ++i) {
    const ELEMDESC& element = function.lprgelemdescParam[i];
    const bool variant = element.tdesc.vt == VT_PTR && element.tdesc.lptdesc->vt == VT_VARIANT;
    EXPECT_EQ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0, variant) << name;
  }
}

class TypeLibrary : public testing::TestWithParam<const wchar_t*> {
 protected:
  void SetUp() override {
    const WideString path = broker_process::BuildFolder() + GetParam();
    ASSERT_EQ(LoadTypeLib(path.c_str(), &library), S_OK);
  }
  ComPtr<ITypeInfo> Find(const GUID& id) {
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(library->GetTypeInfoOfGuid(id, &info), S_OK);
    return info;
  }
  // Calls `visit` with each method of one generation, in vtable order.
  template <class Visit>
  void ForEachMethod(int generation, Visit visit) {
    const ComPtr<ITypeInfo> info = VtableSide(Find(ToGuid(kGenerations[generation - 1][0])).Get());
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    const UINT count = attributes->cFuncs;
    info->ReleaseTypeAttr(attributes);
    for (UINT i = 0; i < count; ++i) {
      FUNCDESC* function = nullptr;
      ASSERT_EQ(info->GetFuncDesc(i, &function), S_OK);
      visit(info.Get(), i, *function);
      info->ReleaseFuncDesc(function);
    }
  }

  ComPtr<ITypeLib> library;
};

TEST_P(TypeLibrary, LibraryHasItsIdentifierAndVersion) {
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
  EXPECT_TRUE(IsEqualGUID(attributes->guid, ToGuid(L"{FAB3E735-69C7-453B-A446-B6823C6DF1C9}")));
  EXPECT_EQ(attributes->wMajorVerNum, 1);
  EXPECT_EQ(attributes->wMinorVerNum, 0);
  library->ReleaseTLibAttr(attributes);
}

TEST_P(TypeLibrary, SixGenerationsKeepTheirTwelveIdentifiers) {
  for (int i = 0; i < 6; ++i) {
    const WideString number = i == 0 ? WideString() : WideString(1, static_cast<wchar_t>(L'1' + i));
    const ComPtr<ITypeInfo> coclass = Find(ToGuid(kGenerations[i][1]));
    EXPECT_EQ(NameOf(coclass.Get()), L"LumenBrokerImp" + number);
    EXPECT_EQ(NameOf(Find(ToGuid(kGenerations[i][0])).Get()), L"ILumenBroker" + number);
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> implemented;
    ASSERT_EQ(coclass->GetRefTypeOfImplType(0, &reference), S_OK);
    ASSERT_EQ(coclass->GetRefTypeInfo(reference, &implemented), S_OK);
    EXPECT_EQ(NameOf(implemented.Get()), L"ILumenBroker" + number);
  }
}

TEST_P(TypeLibrary, MethodsStandAsPublished) {
  size_t number = 0;
  for (int ordinal = 1; ordinal <= 6; ++ordinal) {
    ForEachMethod(ordinal, [&](ITypeInfo* info, UINT index, const FUNCDESC& function) {
      ASSERT_LT(number, std::size(kMethods));
      const Method& expected = kMethods[number];
      const Described described = Describe(info, function);
      EXPECT_EQ(described.name, expected.name);
      EXPECT_EQ(described.arguments, expected.arguments) << expected.name;
      EXPECT_EQ(ordinal, expected.generation) << expected.name;
      EXPECT_EQ(function.oVft, static_cast<SHORT>((kSlotsAhead + number) * sizeof(void*))) << expected.name;
      EXPECT_EQ(function.memid, kFirstId + (ordinal - 1) * 0x10000 + static_cast<MEMBERID>(index)) << expected.name;
      EXPECT_EQ(function.elemdescFunc.tdesc.vt, VT_HRESULT) << expected.name;
      ExpectReturnValues(function, expected.name);
      ++number;
    });
  }
  EXPECT_EQ(number, std::size(kMethods));
}

INSTANTIATE_TEST_SUITE_P(BuiltFiles, TypeLibrary, testing::Values(L"\\bin\\LumenUtil.dll", L"\\bin\\LumenHost.exe"));

}  // namespace
