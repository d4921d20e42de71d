// A SAFEARRAY of bytes for a call.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstring>
#include <string>

class ByteArray {
 public:
  explicit ByteArray(const std::string& bytes)
      : array_(SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()))) {
    void* data = nullptr;
    SafeArrayAccessData(array_, &data);
    if (!bytes.empty()) std::memcpy(data, bytes.data(), bytes.size());
    SafeArrayUnaccessData(array_);
  }
  explicit ByteArray(SAFEARRAY* array) : array_(array) {}
  ~ByteArray() {
    if (array_ != nullptr) SafeArrayDestroy(array_);
  }
  ByteArray(const ByteArray&) = delete;
  ByteArray& operator=(const ByteArray&) = delete;
  [[nodiscard]] SAFEARRAY* Get() const { return array_; }
  [[nodiscard]] SAFEARRAY** Receive() { return &array_; }
  [[nodiscard]] std::string Text() const {
    void* data = nullptr;
    if (array_ == nullptr || FAILED(SafeArrayAccessData(array_, &data))) return "(null)";
    std::string text(static_cast<const char*>(data), array_->rgsabound[0].cElements);
    SafeArrayUnaccessData(array_);
    return text;
  }

 private:
  SAFEARRAY* array_;
};
