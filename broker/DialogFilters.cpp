#include "broker/DialogFilters.h"

#include <span>

#include "broker/FilterArray.h"

namespace {

static_assert(sizeof(COMDLG_FILTERSPEC) == 16);

// Access to an array's data for a scope.
class ArrayAccess {
 public:
  explicit ArrayAccess(SAFEARRAY* array) : array_(array), result_(SafeArrayAccessData(array, &data_)) {}
  ~ArrayAccess() {
    if (SUCCEEDED(result_)) SafeArrayUnaccessData(array_);
  }
  ArrayAccess(const ArrayAccess&) = delete;
  ArrayAccess& operator=(const ArrayAccess&) = delete;

  [[nodiscard]] HRESULT Result() const { return result_; }
  [[nodiscard]] uint8_t* Data() const { return static_cast<uint8_t*>(data_); }

 private:
  SAFEARRAY* array_;
  void* data_ = nullptr;
  HRESULT result_;
};

}  // namespace

HRESULT CheckFilterArguments(ULONG pairs, ULONG length, SAFEARRAY* array) {
  FilterArguments arguments = {pairs, length, array != nullptr, 0, 0};
  // Bytes or nothing: elements without a size have no bytes to read, and larger ones may be texts or objects, which the
  // decoding in place would make into pointers of the client's. Any such array passes for one without elements.
  if (array != nullptr && SafeArrayGetElemsize(array) == 1) {
    arguments.dimensions = SafeArrayGetDim(array);
    if (arguments.dimensions > 0) arguments.elements = array->rgsabound[0].cElements;
  }
  return CheckFilterArguments(arguments);
}

HRESULT ParseFilterArray(ULONG pairs, SAFEARRAY* array, FilterSpecs& specs) {
  const ArrayAccess access(array);
  if (FAILED(access.Result())) return access.Result();
  if (access.Data() == nullptr) return E_INVALIDARG;  // described but never allocated
  const HRESULT decoded = DecodeFilters({access.Data(), array->rgsabound[0].cElements}, pairs);
  if (FAILED(decoded)) return decoded;
  const size_t size = pairs * sizeof(COMDLG_FILTERSPEC);
  specs.reset(static_cast<COMDLG_FILTERSPEC*>(HeapAlloc(GetProcessHeap(), 0, size)));
  if (!specs) return E_OUTOFMEMORY;
  const auto* field = reinterpret_cast<const wchar_t*>(access.Data());
  for (COMDLG_FILTERSPEC& spec : std::span(specs.get(), pairs)) {
    spec.pszName = TakeField(field);
    spec.pszSpec = TakeField(field);
  }
  return S_OK;
}
