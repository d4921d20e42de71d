// The broker's methods as the type library of a built file describes them.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/BrokerProcess.h"

namespace every_method {

// The interface's identifier and its class's, oldest first.
inline const wchar_t* const kGenerations[6][2] = {
    {L"{2E4BB6BE-A75F-4DC0-9500-68203655A2C4}", L"{D4304BCF-B8E9-4B35-BEA0-DC5B522670C2}"},
    {L"{DDF4CE26-4BDA-42BC-B0F0-0E75243AD285}", L"{0BE09CC1-42E0-11DD-AE16-0800200C9A66}"},
    {L"{1D4C8A81-B7AC-460A-8C23-98713C41D6B3}", L"{19114156-8E9A-4D4E-9EE9-17A0E48D3BBB}"},
    {L"{E3F2C3CB-5EB8-4A04-B22C-7E3B4B6AF30F}", L"{A483C63A-CDBC-426E-BF93-872502E8144E}"},
    {L"{6AE38AE0-750C-11E1-B0C4-0800200C9A66}", L"{73C9DFA0-750D-11E1-B0C4-0800200C9A66}"},
    {L"{299817DA-1FAC-4CE2-8F48-A108237013BD}", L"{B019E3BF-E7E5-453C-A2E4-D2C18CA0866F}"},
};

inline ComPtr<ITypeLib> Load(const wchar_t* file) {
  ComPtr<ITypeLib> library;
  EXPECT_EQ(LoadTypeLib((broker_process::BuildFolder() + file).c_str(), &library), S_OK);
  return library;
}

inline ComPtr<ITypeInfo> Find(ITypeLib* library, const wchar_t* id) {
  GUID guid = {};
  EXPECT_EQ(CLSIDFromString(id, &guid), S_OK);
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(library->GetTypeInfoOfGuid(guid, &info), S_OK);
  return info;
}

inline ComPtr<ITypeInfo> Implemented(ITypeInfo* info, UINT index) {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> implemented;
  EXPECT_EQ(info->GetRefTypeOfImplType(index, &reference), S_OK);
  EXPECT_EQ(info->GetRefTypeInfo(reference, &implemented), S_OK);
  return implemented;
}

inline std::string NameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
  BString name;
  EXPECT_EQ(info->GetDocumentation(member, name.Receive(), nullptr, nullptr, nullptr), S_OK);
  return ToUtf8(name.View());
}

// Calls `visit` with each method in vtable order: its description, its generation from 1 and its number in that.
template <class Visit>
void ForEach(ITypeLib* library, Visit visit) {
  for (int generation = 1; generation <= 6; ++generation) {
    // The library describes a dual interface by its dispatch side; this is the other.
    const auto info = Implemented(Find(library, kGenerations[generation - 1][0]).Get(), static_cast<UINT>(-1));
    FUNCDESC* function = nullptr;
    for (int i = 0; SUCCEEDED(info->GetFuncDesc(static_cast<UINT>(i), &function)); ++i) {
      visit(info.Get(), *function, generation, i);
      info->ReleaseFuncDesc(function);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

}  // namespace every_method
