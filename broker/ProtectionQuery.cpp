#include "broker/ProtectionQuery.h"

#include <new>
#include <utility>

using enterprise::AsyncState;
using enterprise::ProtectionStatus;

namespace {

constexpr size_t kPathBound = 260;
constexpr DWORD kEventAccess = 0x1F0003;

bool CountsAsProtected(ProtectionStatus status) {
  return status == ProtectionStatus::Protected || status == ProtectionStatus::ProtectedByOtherUser ||
         status == ProtectionStatus::ProtectedToOtherEnterprise || status == ProtectionStatus::ProtectedToOtherIdentity;
}

}  // namespace

ProtectionQuery::ProtectionQuery(const wchar_t* filePath)
    : path(WideView(filePath).substr(0, kPathBound)),
      done(CreateEventExW(nullptr, nullptr, CREATE_EVENT_MANUAL_RESET, kEventAccess)) {}

void ProtectionQuery::Ask() {
  Task* const task = done ? GetTask() : nullptr;
  AddRef();  // the worker's
  if (task == nullptr || !task->Post(this)) {
    Release();
    status = Status::Failed;
    return;
  }
  for (;;) {
    const DWORD waited = WaitForSingleObject(done.Get(), INFINITE);
    if (waited == WAIT_OBJECT_0) return;
    const Status now = status;
    if (waited == WAIT_FAILED && (now == Status::FoundProtected || now == Status::Failed)) return;
  }
}

void ProtectionQuery::Run() {
  const auto files = enterprise::FactoryOf<enterprise::IStorageFileStatics>(enterprise::kStorageFileClass);
  const enterprise::String name(path);
  ComPtr<enterprise::IStorageFileOperation> operation;
  if (!files || !name.IsValid() || FAILED(files->GetFileFromPathAsync(name.Get(), &operation)) || !operation ||
      FAILED(operation->put_Completed(this))) {
    Fail();
  }
  Release();
}

HRESULT ProtectionQuery::Invoke(enterprise::IStorageFileOperation* operation, AsyncState state) {
  const HRESULT started = state == AsyncState::Completed ? StartInfoQuery(operation) : E_FAIL;
  if (SUCCEEDED(started)) return S_OK;
  Fail();
  return E_FAIL;
}

HRESULT ProtectionQuery::StartInfoQuery(enterprise::IStorageFileOperation* operation) {
  ComPtr<enterprise::IStorageFile> file;
  if (FAILED(operation->GetResults(&file)) || !file) return E_FAIL;
  const auto manager =
      enterprise::FactoryOf<enterprise::IFileProtectionManagerStatics>(enterprise::kFileProtectionManagerClass);
  // The query wants the item's interface, which the file's does not extend.
  ComPtr<enterprise::IStorageItem> item;
  ComPtr<enterprise::IProtectionInfoOperation> info;
  if (!manager || FAILED(file.As(&item)) || FAILED(manager->GetProtectionInfoAsync(item.Get(), &info)) || !info) {
    return E_FAIL;
  }
  status = Status::Running;
  return info->put_Completed(this);
}

HRESULT ProtectionQuery::Invoke(enterprise::IProtectionInfoOperation* operation, AsyncState state) {
  const HRESULT taken = state == AsyncState::Completed ? TakeInfo(operation) : E_FAIL;
  if (SUCCEEDED(taken)) return S_OK;
  Fail();
  return E_FAIL;
}

HRESULT ProtectionQuery::TakeInfo(enterprise::IProtectionInfoOperation* operation) try {
  ComPtr<enterprise::IFileProtectionInfo> info;
  ProtectionStatus found = ProtectionStatus::Unknown;
  if (FAILED(operation->GetResults(&info)) || !info || FAILED(info->get_Status(&found))) return E_FAIL;
  enterprise::String owner;
  if (!CountsAsProtected(found) || FAILED(info->get_Identity(owner.Receive()))) return E_FAIL;
  WideString text(owner.View());
  if (finished.exchange(true)) return E_FAIL;
  identity = std::move(text);
  isProtected = 1;
  Publish(Status::FoundProtected);
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

// Whoever ends the query first has the last word: what is published is not written again.
void ProtectionQuery::Fail() {
  if (!finished.exchange(true)) Publish(Status::Failed);
}

void ProtectionQuery::Publish(Status end) {
  status = end;
  SetEvent(done.Get());
}

HRESULT ProtectionQuery::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  if (iid == __uuidof(enterprise::IProtectionInfoHandler)) {
    *out = static_cast<enterprise::IProtectionInfoHandler*>(this);
  } else if (iid == __uuidof(IUnknown) || iid == __uuidof(IAgileObject) ||
             iid == __uuidof(enterprise::IStorageFileHandler)) {
    *out = static_cast<enterprise::IStorageFileHandler*>(this);
  } else {
    *out = nullptr;
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG ProtectionQuery::AddRef() {
  return ++refCount;
}

ULONG ProtectionQuery::Release() {
  const ULONG count = --refCount;
  if (count == 0) delete this;
  return count;
}
