#include "broker/ZoneMarks.h"

#include <windows.h>

#include <shobjidl.h>
#include <urlmon.h>

#include <iterator>

#include "engine/ComSupport.h"

namespace {

// Named by the platform's headers and defined by none of the toolchain's libraries.
constexpr CLSID kPersistentZoneIdentifier = {
    0x0968E258, 0x16C7, 0x4DBA, {0xAA, 0x86, 0x46, 0x2D, 0xD6, 0x1E, 0x31, 0xA3}};
constexpr DWORD kAnyServer = 23;  // in process, handler, local and remote

ComPtr<IZoneIdentifier> CreateZoneIdentifier() {
  ComPtr<IZoneIdentifier> zone;
  CoCreateInstance(kPersistentZoneIdentifier, nullptr, kAnyServer, __uuidof(IZoneIdentifier),
                   reinterpret_cast<void**>(zone.GetAddressOf()));
  return zone;
}

bool HasMark(const wchar_t* path) {
  const ComPtr<IZoneIdentifier> zone = CreateZoneIdentifier();
  ComPtr<IPersistFile> file;
  DWORD id = 0;
  return zone && SUCCEEDED(zone.As(&file)) && SUCCEEDED(file->Load(path, STGM_READ)) && SUCCEEDED(zone->GetId(&id)) &&
         id != 0;
}

}  // namespace

void LumenBrokerZoneIdentifier::Mark(const wchar_t* path) {
  if (HasMark(path)) return;
  const ComPtr<IZoneIdentifier> zone = CreateZoneIdentifier();
  ComPtr<IPersistFile> file;
  if (!zone || FAILED(zone->SetId(URLZONE_INTERNET)) || FAILED(zone.As(&file))) return;
  file->Save(path, TRUE);
}

void LumenBrokerAttachmentExecute::Mark(const wchar_t* path) {
  if (HasMark(path)) return;
  wchar_t full[MAX_PATH] = {};
  const DWORD length = GetFullPathNameW(path, static_cast<DWORD>(std::size(full)), full, nullptr);
  if (length == 0 || length >= std::size(full)) return;
  ComPtr<IAttachmentExecute> attachment;
  if (FAILED(CoCreateInstance(__uuidof(AttachmentServices), nullptr, kAnyServer, __uuidof(IAttachmentExecute),
                              reinterpret_cast<void**>(attachment.GetAddressOf())))) {
    return;
  }
  // No address is known; this much says that it came from the internet.
  if (SUCCEEDED(attachment->SetLocalPath(full)) && SUCCEEDED(attachment->SetSource(L"http://"))) attachment->Save();
}
