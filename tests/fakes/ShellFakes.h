// Zone identifier and attachment services as COM classes of the test process, recording what they are asked.
#pragma once

#include <windows.h>

#include <shobjidl.h>
#include <urlmon.h>

#include <functional>
#include <string>
#include <vector>

#include "engine/ComSupport.h"
#include "tests/fakes/SlotFake.h"

namespace shell_fakes {

struct Record {
  std::vector<std::string> calls;
  DWORD zone = 0;          // what a load finds; 0 is no mark
  HRESULT loads = E_FAIL;  // of IPersistFile::Load
  std::string failing;     // the call that fails
  HRESULT failure = E_UNEXPECTED;
  std::function<void()> meanwhile;  // what arrives while the attachment services are at work

  HRESULT Note(const std::string& name, const std::string& argument) {
    calls.push_back(argument.empty() ? name : name + " " + argument);
    return name == failing ? failure : S_OK;
  }
};
inline Record g_record;

struct Zone final : SlotFake<IZoneIdentifier, IPersistFile> {
  Zone() {
    On(&IZoneIdentifier::GetId, [](void*, DWORD* zone) -> HRESULT { return *zone = g_record.zone, S_OK; });
    On(&IZoneIdentifier::SetId, [](void*, DWORD zone) { return g_record.Note("SetId", std::to_string(zone)); });
    On(&IPersistFile::Load, [](void*, LPCOLESTR, DWORD) { return g_record.loads; });
    On(&IPersistFile::Save, [](void*, LPCOLESTR path, BOOL remember) {
      return g_record.Note("ZoneSave", ToUtf8(path) + (remember ? " remember" : ""));
    });
  }
};

struct Attachment final : SlotFake<IAttachmentExecute> {
  Attachment() {
    On(&IAttachmentExecute::SetLocalPath,
       [](void*, LPCWSTR path) { return g_record.Note("SetLocalPath", ToUtf8(path)); });
    On(&IAttachmentExecute::SetSource, [](void*, LPCWSTR url) { return g_record.Note("SetSource", ToUtf8(url)); });
    On(&IAttachmentExecute::SetReferrer, [](void*, LPCWSTR url) { return g_record.Note("SetReferrer", ToUtf8(url)); });
    On(&IAttachmentExecute::Save, [](void*) {
      if (g_record.meanwhile) g_record.meanwhile();
      return g_record.Note("Save", "");
    });
  }
};

// Puts a class in the platform's place for a scope.
template <class Product>
class Registered {
 public:
  explicit Registered(REFCLSID clsid) {
    auto* const factory = new Factory;
    CoRegisterClassObject(clsid, factory->Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &number_);
    factory->Release();
  }
  ~Registered() { CoRevokeClassObject(number_); }
  Registered(const Registered&) = delete;
  Registered& operator=(const Registered&) = delete;

 private:
  struct Factory final : SlotFake<IClassFactory> {
    Factory() {
      this->On(&IClassFactory::CreateInstance, [](void*, IUnknown*, REFIID iid, void** out) {
        auto* const product = new Product;
        const HRESULT found = product->QueryInterface(iid, out);
        product->Release();
        return found;
      });
    }
  };
  DWORD number_ = 0;
};

constexpr CLSID kZoneClass = {0x0968E258, 0x16C7, 0x4DBA, {0xAA, 0x86, 0x46, 0x2D, 0xD6, 0x1E, 0x31, 0xA3}};

}  // namespace shell_fakes
