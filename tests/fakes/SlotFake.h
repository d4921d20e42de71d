// COM objects of which a test writes only the methods that matter; every other one answers E_NOTIMPL.
//
//   struct Zone final : SlotFake<IZoneIdentifier, IPersistFile> {
//     Zone() { On(&IPersistFile::Load, [](void*, LPCOLESTR, DWORD) -> HRESULT { return S_OK; }); }
//   };
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <tuple>
#include <type_traits>

template <class... Interfaces>
class SlotFake {
 public:
  SlotFake() {
    for (Face& face : faces_) {
      face.table = face.slots;
      face.owner = this;
      std::fill(std::begin(face.slots), std::end(face.slots), Slot([](void*) -> HRESULT { return E_NOTIMPL; }));
      face.slots[0] =
          Slot([](void* at, REFIID iid, void** out) -> HRESULT { return Of(at)->QueryInterface(iid, out); });
      face.slots[1] = Slot([](void* at) -> ULONG { return ++Of(at)->references_; });
      face.slots[2] = Slot([](void* at) -> ULONG { return Of(at)->Release(); });
    }
  }
  virtual ~SlotFake() = default;
  SlotFake(const SlotFake&) = delete;
  SlotFake& operator=(const SlotFake&) = delete;

  // An interface that is not among them gets the first one.
  HRESULT QueryInterface(REFIID iid, void** out) {
    const IID ids[] = {__uuidof(Interfaces)...};
    const auto at = static_cast<size_t>(std::find(std::begin(ids), std::end(ids), iid) - ids);
    *out = &faces_[at % std::size(ids)];
    ++references_;
    return S_OK;
  }
  ULONG Release() {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  // The first interface.
  [[nodiscard]] auto* Get() { return reinterpret_cast<std::tuple_element_t<0, std::tuple<Interfaces...>>*>(faces_); }

 protected:
  // The object behind an interface.
  static SlotFake* Of(void* face) { return static_cast<Face*>(face)->owner; }
  // Gives a method its body, a function without captures that gets the interface's address first.
  template <class Result, class Base, class... Arguments>
  void On(Result (STDMETHODCALLTYPE Base::*method)(Arguments...),
          std::type_identity_t<Result (*)(void*, Arguments...)> body) {
    size_t offset = 0;  // with this toolchain a pointer to a virtual function begins with its table offset and 1
    std::memcpy(&offset, &method, sizeof(offset));
    const bool has[] = {std::is_base_of_v<Base, Interfaces>...};
    faces_[std::find(has, std::end(has), true) - has].slots[offset / sizeof(void*)] = reinterpret_cast<void*>(body);
  }

 private:
  struct Face {
    void** table;
    SlotFake* owner;
    void* slots[32];
  };
  template <class Body>
  static void* Slot(Body body) {
    return reinterpret_cast<void*>(+body);
  }

  Face faces_[sizeof...(Interfaces)];
  std::atomic<ULONG> references_{1};
};
