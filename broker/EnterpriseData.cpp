#include "broker/EnterpriseData.h"

namespace enterprise {

namespace {

constexpr wchar_t kRuntimeLibrary[] = L"combase.dll";

using CreateStringFunction = HRESULT WINAPI(PCWSTR, UINT32, HSTRING*);
using DeleteStringFunction = HRESULT WINAPI(HSTRING);
using StringBufferFunction = PCWSTR WINAPI(HSTRING, UINT32*);
using GetFactoryFunction = HRESULT WINAPI(HSTRING, REFIID, void**);

BoundFunction<CreateStringFunction> g_createString(kRuntimeLibrary, "WindowsCreateString");
BoundFunction<DeleteStringFunction> g_deleteString(kRuntimeLibrary, "WindowsDeleteString");
BoundFunction<StringBufferFunction> g_stringBuffer(kRuntimeLibrary, "WindowsGetStringRawBuffer");
BoundFunction<GetFactoryFunction> g_getFactory(kRuntimeLibrary, "RoGetActivationFactory");

}  // namespace

String::String(WideView text) {
  auto* const create = g_createString.Get();
  valid_ = create != nullptr && SUCCEEDED(create(text.data(), static_cast<UINT32>(text.size()), &handle_));
}

String::~String() {
  auto* const remove = g_deleteString.Get();
  if (handle_ != nullptr && remove != nullptr) remove(handle_);
}

WideView String::View() const {
  UINT32 length = 0;
  auto* const buffer = g_stringBuffer.Get();
  const wchar_t* const text = buffer == nullptr ? nullptr : buffer(handle_, &length);
  return text == nullptr ? WideView() : WideView(text, length);
}

HRESULT GetFactory(const wchar_t* className, REFIID iid, void** factory) {
  auto* const get = g_getFactory.Get();
  const String name{WideView(className)};
  if (get == nullptr || !name.IsValid()) return E_NOTIMPL;
  return get(name.Get(), iid, factory);
}

}  // namespace enterprise
