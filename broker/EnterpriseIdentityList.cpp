#include "broker/EnterpriseIdentityList.h"

#include <new>
#include <utility>

#include "engine/DllHelpers.h"
#include "engine/Handles.h"

namespace {

constexpr HRESULT kBufferTooSmall = static_cast<HRESULT>(0x8007007A);
constexpr ULONG kFirstGuess = 260;

KernelHandle OpenToken(EnterpriseIdentityList::Of whose) {
  HANDLE token = nullptr;
  const BOOL opened = whose == EnterpriseIdentityList::Of::CallingClient
                          ? OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)
                          : OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token);
  return KernelHandle(opened ? token : nullptr);
}

}  // namespace

EnterpriseIdentityList::EnterpriseIdentityList(Of whose) : impersonate(static_cast<uint32_t>(whose)) {
  if (Srpapi().SrpGetEnterpriseIds == nullptr) return;
  const bool impersonating = whose == Of::CallingClient;
  if (impersonating && FAILED(CoImpersonateClient())) return;
  if (const KernelHandle token = OpenToken(whose)) Read(token.Get());
  if (impersonating) CoRevertToSelf();
}

// Asks for the size first. The one other answer that is worth a second try is that a buffer must come along at once.
void EnterpriseIdentityList::Read(HANDLE token) {
  const auto ask = Srpapi().SrpGetEnterpriseIds;
  ULONG bytes = 0;
  ULONG found = 0;
  const HRESULT first = ask(token, &bytes, nullptr, &found);
  if (first == E_INVALIDARG) {
    bytes = kFirstGuess;
  } else if (first != kBufferTooSmall || found == 0) {
    return;
  }
  std::unique_ptr<unsigned char[]> block(new (std::nothrow) unsigned char[bytes]());
  if (!block) return;
  const ULONG capacity = bytes;
  found = 0;
  if (FAILED(ask(token, &bytes, reinterpret_cast<PCWSTR*>(block.get()), &found))) return;
  // No more pointers than the block can hold, whatever the platform counts.
  count = static_cast<uint32_t>(found <= capacity / sizeof(PCWSTR) ? found : capacity / sizeof(PCWSTR));
  identities = std::move(block);
}

const wchar_t* EnterpriseIdentityList::At(uint32_t index) const {
  if (index >= count) return nullptr;
  return reinterpret_cast<const wchar_t* const*>(identities.get())[index];
}

bool EnterpriseIdentityList::HasIdentity() const {
  return !First().empty();
}

WideView EnterpriseIdentityList::First() const {
  const wchar_t* const first = At(0);
  return first == nullptr ? WideView() : WideView(first);
}

bool EnterpriseIdentityList::Contains(WideView identity) const {
  for (uint32_t i = 0; i < count; ++i) {
    if (At(i) != nullptr && WideView(At(i)) == identity) return true;
  }
  return false;
}
