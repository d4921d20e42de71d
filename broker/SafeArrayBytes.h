// The bytes of a SAFEARRAY argument, locked for a scope; and bytes as a reply.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

// One dimension, elements of one byte, lower bound 0. A null array is not well-formed.
[[nodiscard]] inline bool IsWellFormedByteArray(SAFEARRAY* array) {
  LONG lower = 0;
  return array != nullptr && SafeArrayGetDim(array) == 1 && SafeArrayGetElemsize(array) == 1 &&
         SUCCEEDED(SafeArrayGetLBound(array, 1, &lower)) && lower == 0;
}

class SafeArrayBytes {
 public:
  // Locks a well-formed array; any other, and one that cannot be locked, leaves this closed.
  explicit SafeArrayBytes(SAFEARRAY* array) {
    if (!IsWellFormedByteArray(array)) return;
    result_ = SafeArrayAccessData(array, &data_);
    if (FAILED(result_)) return;
    array_ = array;
    if (data_ != nullptr || array->rgsabound[0].cElements == 0) return;
    // Described but never allocated: it promises bytes that are not there.
    SafeArrayUnaccessData(array);
    array_ = nullptr;
    result_ = E_FAIL;
  }
  ~SafeArrayBytes() {
    if (array_ != nullptr) SafeArrayUnaccessData(array_);
  }
  SafeArrayBytes(const SafeArrayBytes&) = delete;
  SafeArrayBytes& operator=(const SafeArrayBytes&) = delete;

  [[nodiscard]] bool IsOpen() const { return array_ != nullptr; }
  // What locking said; E_FAIL for an array that is not well-formed.
  [[nodiscard]] HRESULT LockResult() const { return result_; }
  [[nodiscard]] std::span<const uint8_t> Bytes() const {
    if (array_ == nullptr) return {};
    return {static_cast<const uint8_t*>(data_), array_->rgsabound[0].cElements};
  }
  // The same, with absence told from emptiness.
  [[nodiscard]] std::optional<std::span<const uint8_t>> Argument() const {
    if (array_ == nullptr) return std::nullopt;
    return Bytes();
  }
  // The same, for the few callers that decode in place.
  [[nodiscard]] uint8_t* Data() const { return static_cast<uint8_t*>(data_); }

 private:
  SAFEARRAY* array_ = nullptr;
  void* data_ = nullptr;
  HRESULT result_ = E_FAIL;
};

// Gives `out`, whose content is not looked at, an array of its own with these bytes. E_OUTOFMEMORY leaves it alone.
[[nodiscard]] inline HRESULT ReplyWithBytes(std::span<const uint8_t> bytes, VARIANT* out) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  if (array == nullptr) return E_OUTOFMEMORY;
  std::memcpy(array->pvData, bytes.data(), bytes.size());
  VariantInit(out);
  out->vt = VT_ARRAY | VT_UI1;
  out->parray = array;
  return S_OK;
}
