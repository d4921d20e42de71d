// The platform's enterprise data protection, declared by hand: the toolchain has no headers for these interfaces. Slot
// order, identifiers and enumerators are the platform's published ones. Functions of the runtime are bound at run time,
// since older systems lack it.
#pragma once

#include <windows.h>

#include <inspectable.h>

#include <cstdint>
#include <utility>

#include "engine/ComSupport.h"
#include "engine/DllHelpers.h"

namespace enterprise {

enum class AsyncState : int32_t { Started = 0, Completed = 1, Canceled = 2, Error = 3 };

enum class ProtectionStatus : int32_t {
  Unknown = 0,
  Unprotected = 1,
  Revoked = 2,
  Protected = 3,
  ProtectedByOtherUser = 4,
  ProtectedToOtherEnterprise = 5,
  NotProtectable = 6,
  ProtectedToOtherIdentity = 7,
  LicenseExpired = 8,
  AccessSuspended = 9,
  FileInUse = 10,
};

enum class AuditAction : int32_t { Decrypt = 0, CopyToLocation = 1, SendToRecipient = 2, Other = 3 };
enum class Evaluation : int32_t { Allowed = 0, Blocked = 1, ConsentRequired = 2 };

struct IStorageItem : IInspectable {};
struct IStorageFile : IInspectable {};

struct IFileProtectionInfo : IInspectable {
  virtual HRESULT STDMETHODCALLTYPE get_Status(ProtectionStatus* status) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_IsRoamable(boolean* roamable) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Identity(HSTRING* identity) = 0;
};

struct IProtectionPolicyAuditInfo : IInspectable {};

template <class Handler, class Results>
struct AsyncOperation : IInspectable {
  virtual HRESULT STDMETHODCALLTYPE put_Completed(Handler* handler) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Completed(Handler** handler) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetResults(Results* results) = 0;
};

struct IStorageFileOperation;
struct IStorageFileHandler : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Invoke(IStorageFileOperation* operation, AsyncState state) = 0;
};
struct IStorageFileOperation : AsyncOperation<IStorageFileHandler, IStorageFile*> {};

struct IProtectionInfoOperation;
struct IProtectionInfoHandler : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Invoke(IProtectionInfoOperation* operation, AsyncState state) = 0;
};
struct IProtectionInfoOperation : AsyncOperation<IProtectionInfoHandler, IFileProtectionInfo*> {};

struct IEvaluationOperation;
struct IEvaluationHandler : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Invoke(IEvaluationOperation* operation, AsyncState state) = 0;
};
struct IEvaluationOperation : AsyncOperation<IEvaluationHandler, Evaluation> {};

struct IStorageFileStatics : IInspectable {
  virtual HRESULT STDMETHODCALLTYPE GetFileFromPathAsync(HSTRING path, IStorageFileOperation** operation) = 0;
};

struct IFileProtectionManagerStatics : IInspectable {
  virtual HRESULT STDMETHODCALLTYPE ProtectAsync(IStorageItem* item, HSTRING identity, IInspectable** operation) = 0;
  virtual HRESULT STDMETHODCALLTYPE CopyProtectionAsync(IStorageItem* from, IStorageItem* to,
                                                        IInspectable** operation) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetProtectionInfoAsync(IStorageItem* source,
                                                           IProtectionInfoOperation** operation) = 0;
};

struct IProtectionPolicyAuditInfoFactory : IInspectable {
  virtual HRESULT STDMETHODCALLTYPE Create(AuditAction action, HSTRING data, HSTRING source, HSTRING target,
                                           IProtectionPolicyAuditInfo** info) = 0;
};

struct IProtectionPolicyManagerInterop2 : IInspectable {
  virtual HRESULT STDMETHODCALLTYPE RequestAccessForAppWithWindowAsync(HWND window, HSTRING source, HSTRING package,
                                                                       REFIID iid, void** operation) = 0;
  virtual HRESULT STDMETHODCALLTYPE RequestAccessWithAuditingInfoForWindowAsync(HWND window, HSTRING source,
                                                                                HSTRING target, IUnknown* audit,
                                                                                REFIID iid, void** operation) = 0;
};

constexpr wchar_t kStorageFileClass[] = L"Windows.Storage.StorageFile";
constexpr wchar_t kFileProtectionManagerClass[] = L"Windows.Security.EnterpriseData.FileProtectionManager";
constexpr wchar_t kPolicyManagerClass[] = L"Windows.Security.EnterpriseData.ProtectionPolicyManager";
constexpr wchar_t kAuditInfoClass[] = L"Windows.Security.EnterpriseData.ProtectionPolicyAuditInfo";

// Owns a runtime string. A null one is the empty text.
class String {
 public:
  String() = default;
  explicit String(WideView text);
  String(const String&) = delete;
  String& operator=(const String&) = delete;
  ~String();

  // False when the text could not be made.
  [[nodiscard]] bool IsValid() const { return valid_; }
  [[nodiscard]] HSTRING Get() const { return handle_; }
  [[nodiscard]] HSTRING* Receive() { return &handle_; }
  // Valid while this object lives.
  [[nodiscard]] WideView View() const;

 private:
  HSTRING handle_ = nullptr;
  bool valid_ = true;
};

// The activation factory of a runtime class, or null.
[[nodiscard]] HRESULT GetFactory(const wchar_t* className, REFIID iid, void** factory);

template <class Interface>
[[nodiscard]] ComPtr<Interface> FactoryOf(const wchar_t* className) {
  ComPtr<Interface> factory;
  void* raw = nullptr;
  if (SUCCEEDED(GetFactory(className, __uuidof(Interface), &raw))) factory = Adopt(static_cast<Interface*>(raw));
  return factory;
}

}  // namespace enterprise

__CRT_UUID_DECL(enterprise::IStorageItem, 0x4207A996, 0xCA2F, 0x42F7, 0xBD, 0xE8, 0x8B, 0x10, 0x45, 0x7A, 0x7F, 0x30)
__CRT_UUID_DECL(enterprise::IStorageFile, 0xFA3F6186, 0x4214, 0x428C, 0xA6, 0x4C, 0x14, 0xC9, 0xAC, 0x73, 0x15, 0xEA)
__CRT_UUID_DECL(enterprise::IStorageFileStatics, 0x5984C710, 0xDAF2, 0x43C8, 0x8B, 0xB4, 0xA4, 0xD3, 0xEA, 0xCF, 0xD0,
                0x3F)
__CRT_UUID_DECL(enterprise::IFileProtectionManagerStatics, 0x5846FC9B, 0xE613, 0x426B, 0xBB, 0x38, 0x88, 0xCB, 0xA1,
                0xDC, 0x9A, 0xDB)
__CRT_UUID_DECL(enterprise::IFileProtectionInfo, 0x4EE96486, 0x147E, 0x4DD0, 0x8F, 0xAF, 0x52, 0x53, 0xED, 0x91, 0xAD,
                0x0C)
__CRT_UUID_DECL(enterprise::IProtectionPolicyAuditInfoFactory, 0x7ED4180B, 0x92E8, 0x42D5, 0x83, 0xD4, 0x25, 0x44, 0x0B,
                0x42, 0x35, 0x49)
__CRT_UUID_DECL(enterprise::IProtectionPolicyManagerInterop2, 0x157CFBE4, 0xA78D, 0x4156, 0xB3, 0x84, 0x61, 0xFD, 0xAC,
                0x41, 0xE6, 0x86)
// Parameterised interfaces: the identifier follows from the type's signature.
__CRT_UUID_DECL(enterprise::IStorageFileOperation, 0x5E52F8CE, 0xACED, 0x5A42, 0x95, 0xB4, 0xF6, 0x74, 0xDD, 0x84, 0x88,
                0x5E)
__CRT_UUID_DECL(enterprise::IStorageFileHandler, 0xE521C894, 0x2C26, 0x5946, 0x9E, 0x61, 0x2B, 0x5E, 0x18, 0x8D, 0x01,
                0xED)
__CRT_UUID_DECL(enterprise::IProtectionInfoOperation, 0x67E04591, 0x2D11, 0x5018, 0x9F, 0xF0, 0x0B, 0x85, 0x52, 0x0B,
                0x88, 0x8B)
__CRT_UUID_DECL(enterprise::IProtectionInfoHandler, 0x2918FFEA, 0xE091, 0x53E2, 0xBD, 0xE5, 0x61, 0x7C, 0x9B, 0xB3,
                0xD8, 0xFE)
__CRT_UUID_DECL(enterprise::IEvaluationOperation, 0xE8D81715, 0xC56C, 0x5A6B, 0xB7, 0x38, 0x5D, 0xF6, 0xC2, 0x77, 0x5B,
                0x7B)
__CRT_UUID_DECL(enterprise::IEvaluationHandler, 0x2833BA54, 0xA4E1, 0x5C2D, 0x8A, 0x7A, 0x13, 0x6E, 0x85, 0x10, 0xC7,
                0x8B)
