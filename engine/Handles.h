// One owning type for each family of platform handle. The raw close functions appear in this file and nowhere else.
// All are move-only; Get() lends, Release() gives up ownership, Reset() closes.
#pragma once

#include <windows.h>

#include <utility>

namespace handles {

template <class Traits>
class Owner {
 public:
  using Value = typename Traits::Value;

  Owner() = default;
  explicit Owner(Value value) : value_(value) {}
  Owner(Owner&& other) noexcept : value_(other.Release()) {}
  Owner& operator=(Owner&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }
  Owner(const Owner&) = delete;
  Owner& operator=(const Owner&) = delete;
  ~Owner() { Reset(); }

  [[nodiscard]] Value Get() const { return value_; }
  [[nodiscard]] bool IsValid() const { return Traits::IsValid(value_); }
  explicit operator bool() const { return IsValid(); }
  [[nodiscard]] Value Release() { return std::exchange(value_, Traits::Empty()); }
  void Reset(Value value = Traits::Empty()) {
    if (Traits::IsValid(value_)) Traits::Close(value_);
    value_ = value;
  }
  // For functions that fill in a handle. Closes what is held.
  [[nodiscard]] Value* Receive() {
    Reset();
    return &value_;
  }

 private:
  Value value_ = Traits::Empty();
};

// Null means none; INVALID_HANDLE_VALUE is treated as none too, since several functions mix the two.
struct KernelTraits {
  using Value = HANDLE;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value h) { return h != nullptr && h != INVALID_HANDLE_VALUE; }
  static void Close(Value h) { CloseHandle(h); }
};
struct FindTraits : KernelTraits {
  static void Close(Value h) { FindClose(h); }
};
struct KeyTraits {
  using Value = HKEY;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value key) { return key != nullptr; }
  static void Close(Value key) { RegCloseKey(key); }
};
struct LibraryTraits {
  using Value = HMODULE;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value library) { return library != nullptr && library != INVALID_HANDLE_VALUE; }
  static void Close(Value library) { FreeLibrary(library); }
};
struct ServiceTraits {
  using Value = SC_HANDLE;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value service) { return service != nullptr; }
  static void Close(Value service) { CloseServiceHandle(service); }
};
struct GdiTraits {
  using Value = HGDIOBJ;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value object) { return object != nullptr; }
  static void Close(Value object) { DeleteObject(object); }
};
struct MemoryDcTraits {
  using Value = HDC;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value dc) { return dc != nullptr; }
  static void Close(Value dc) { DeleteDC(dc); }
};
struct ViewTraits {
  using Value = void*;
  static Value Empty() { return nullptr; }
  static bool IsValid(Value view) { return view != nullptr; }
  static void Close(Value view) { UnmapViewOfFile(view); }
};

}  // namespace handles

using KernelHandle = handles::Owner<handles::KernelTraits>;  // process, thread, event, mutex, mapping, token, file
using FileHandle = KernelHandle;
using FindHandle = handles::Owner<handles::FindTraits>;
using RegistryKey = handles::Owner<handles::KeyTraits>;
using LibraryHandle = handles::Owner<handles::LibraryTraits>;
using ServiceHandle = handles::Owner<handles::ServiceTraits>;
using GdiObject = handles::Owner<handles::GdiTraits>;
using MemoryDc = handles::Owner<handles::MemoryDcTraits>;
using MappedView = handles::Owner<handles::ViewTraits>;

// Selects a GDI object into a device context and puts the old one back.
class SelectedObject {
 public:
  SelectedObject(HDC dc, HGDIOBJ object) : dc_(dc), old_(SelectObject(dc, object)) {}
  ~SelectedObject() {
    if (old_ != nullptr && old_ != HGDI_ERROR) SelectObject(dc_, old_);
  }
  SelectedObject(const SelectedObject&) = delete;
  SelectedObject& operator=(const SelectedObject&) = delete;

 private:
  HDC dc_;
  HGDIOBJ old_;
};
