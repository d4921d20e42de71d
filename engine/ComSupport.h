// COM vocabulary: a reference, a string, and the rules that keep both from leaking with this toolchain's headers.
#pragma once

#include <windows.h>

#include <oleauto.h>
#include <wrl/client.h>

#include <utility>

#include "engine/WideText.h"

using Microsoft::WRL::ComPtr;

// Takes over a reference that the caller owns. The toolchain's ComPtr::Attach adds a reference and would leak one.
template <class T>
ComPtr<T> Adopt(T* raw) {
  ComPtr<T> owner;
  *owner.ReleaseAndGetAddressOf() = raw;
  return owner;
}

// Owns a BSTR.
class BString {
 public:
  BString() = default;
  explicit BString(const wchar_t* text) : text_(text == nullptr ? nullptr : SysAllocString(text)) {}
  explicit BString(WideView text) : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  BString(BString&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  BString& operator=(BString&& other) noexcept {
    if (this != &other) {
      SysFreeString(text_);
      text_ = std::exchange(other.text_, nullptr);
    }
    return *this;
  }
  BString(const BString&) = delete;
  BString& operator=(const BString&) = delete;
  ~BString() { SysFreeString(text_); }

  [[nodiscard]] BSTR Get() const { return text_; }
  [[nodiscard]] UINT Length() const { return SysStringLen(text_); }
  [[nodiscard]] BSTR Release() { return std::exchange(text_, nullptr); }
  [[nodiscard]] BSTR* Receive() {
    SysFreeString(text_);
    text_ = nullptr;
    return &text_;
  }
  [[nodiscard]] WideView View() const { return {text_, Length()}; }

 private:
  BSTR text_ = nullptr;
};

// Enters a single-threaded apartment for a scope; Result() is what CoInitialize said. Leaves it only if it entered.
class ComInitializer {
 public:
  ComInitializer() : result_(CoInitialize(nullptr)) {}
  ~ComInitializer() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  ComInitializer(const ComInitializer&) = delete;
  ComInitializer& operator=(const ComInitializer&) = delete;

  [[nodiscard]] HRESULT Result() const { return result_; }
  [[nodiscard]] bool Succeeded() const { return SUCCEEDED(result_); }

 private:
  HRESULT result_;
};
