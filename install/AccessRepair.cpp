#include "install/AccessRepair.h"

#include <windows.h>

#include <accctrl.h>
#include <aclapi.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

#include "engine/DllHelpers.h"
#include "engine/WideText.h"

namespace {

struct AccountRow {
  KnownAccount account;
  const char* name;  // in English, whatever the system speaks
  BYTE subAuthorities;
  DWORD first;
  DWORD second;
};
constexpr AccountRow kAccounts[] = {
    {KnownAccount::Administrators, "BUILTIN\\Administrators", 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS},
    {KnownAccount::System, "NT AUTHORITY\\SYSTEM", 1, SECURITY_LOCAL_SYSTEM_RID, 0},
    {KnownAccount::Users, "BUILTIN\\Users", 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_USERS},
};
constexpr DWORD kAccountNameRoom = 1024;
// Content only: the entry must not stand in the way of deleting the file or of clearing its read-only attribute.
constexpr DWORD kWriteGuard = FILE_WRITE_DATA | FILE_APPEND_DATA;

struct LocalMemory {
  void operator()(void* memory) const { LocalFree(memory); }
};

// An account's identity, for the length of one repair.
class Identity {
 public:
  Identity(const Advapi32DllHelper& advapi, SID_IDENTIFIER_AUTHORITY authority, const AccountRow& row)
      : advapi_(advapi) {
    if (!advapi_.AllocateAndInitializeSid(&authority, row.subAuthorities, row.first, row.second, 0, 0, 0, 0, 0, 0,
                                          &sid_)) {
      sid_ = nullptr;
    }
  }
  ~Identity() {
    if (sid_ != nullptr) advapi_.FreeSid(sid_);
  }
  Identity(const Identity&) = delete;
  Identity& operator=(const Identity&) = delete;
  [[nodiscard]] PSID Get() const { return sid_; }

 private:
  const Advapi32DllHelper& advapi_;
  PSID sid_ = nullptr;
};

// The access list of one object, as read.
struct AccessList {
  ACL* entries = nullptr;  // within `descriptor`
  std::unique_ptr<void, LocalMemory> descriptor;
};

// The functions of one repair. They come and go with it: most runs of the module never need them.
class Repair {
 public:
  explicit Repair(const wchar_t* path, SecuredObject type)
      : path_(path == nullptr ? L"" : path), type_(static_cast<SE_OBJECT_TYPE>(type)) {}

  [[nodiscard]] bool IsAvailable() const {
    return advapi_.IsAvailable() && advapi_.GetNamedSecurityInfoW != nullptr &&
           advapi_.SetNamedSecurityInfoW != nullptr && advapi_.SetEntriesInAclW != nullptr;
  }
  [[nodiscard]] const Advapi32DllHelper& Advapi() const { return advapi_; }

  [[nodiscard]] DWORD Read(AccessList* list) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error = advapi_.GetNamedSecurityInfoW(path_.c_str(), type_, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                                      &list->entries, nullptr, &descriptor);
    list->descriptor.reset(descriptor);
    return error;
  }
  [[nodiscard]] DWORD Write(ACL* entries) {
    return advapi_.SetNamedSecurityInfoW(path_.data(), type_, DACL_SECURITY_INFORMATION, nullptr, nullptr, entries,
                                         nullptr);
  }
  // Writes the list with one more entry.
  [[nodiscard]] DWORD WriteWith(ACL* entries, PSID sid, ACCESS_MODE mode, DWORD mask) {
    EXPLICIT_ACCESSW entry = {};
    entry.grfAccessPermissions = mask;
    entry.grfAccessMode = mode;
    entry.grfInheritance = NO_INHERITANCE;
    entry.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    entry.Trustee.ptstrName = static_cast<wchar_t*>(sid);
    ACL* merged = nullptr;
    const DWORD error = advapi_.SetEntriesInAclW(1, &entry, entries, &merged);
    if (error != ERROR_SUCCESS) return error;
    const std::unique_ptr<ACL, LocalMemory> owned(merged);
    return Write(merged);
  }

 private:
  Advapi32DllHelper advapi_;
  WideString path_;
  SE_OBJECT_TYPE type_;
};

// An allow or deny entry; these two have the same form.
struct Entry {
  bool denies;
  DWORD mask;
  PSID sid;
};

// Nothing for an entry of another form.
std::optional<Entry> EntryAt(const Advapi32DllHelper& advapi, ACL* entries, DWORD index) {
  void* raw = nullptr;
  if (!advapi.GetAce(entries, index, &raw)) return std::nullopt;
  auto* const entry = static_cast<ACCESS_ALLOWED_ACE*>(raw);
  const BYTE type = entry->Header.AceType;
  if (type != ACCESS_ALLOWED_ACE_TYPE && type != ACCESS_DENIED_ACE_TYPE) return std::nullopt;
  return Entry{type == ACCESS_DENIED_ACE_TYPE, entry->Mask, &entry->SidStart};
}

// "domain\name" in the system's language, "unknown" for an identity without a name.
std::string AccountName(PSID sid) {
  char name[kAccountNameRoom] = {};
  char domain[kAccountNameRoom] = {};
  DWORD nameRoom = kAccountNameRoom;
  DWORD domainRoom = kAccountNameRoom;
  SID_NAME_USE use = SidTypeUnknown;
  if (!LookupAccountSidA(nullptr, sid, name, &nameRoom, domain, &domainRoom, &use)) return "unknown";
  std::string whole = std::string(domain) + "\\" + name;
  whole.resize(std::min<size_t>(whole.size(), kAccountNameRoom - 1));
  return whole;
}

// Deletes what denies the account anything; true when a grant of `mask` is there already. Accounts are compared by
// their English names: elsewhere the grant is not found and a further one is added, which does no harm.
bool CleanFileEntries(const Advapi32DllHelper& advapi, ACL* entries, const AccountRow& row, PSID sid, DWORD mask) {
  bool granted = false;
  for (DWORD index = entries->AceCount; index-- > 0;) {
    const std::optional<Entry> entry = EntryAt(advapi, entries, index);
    if (!entry) continue;
    if (!entry->denies && entry->mask == mask && AccountName(entry->sid) == row.name) granted = true;
    if (entry->denies && advapi.EqualSid(entry->sid, sid)) advapi.DeleteAce(entries, index);
  }
  return granted;
}

// Whether the list has the guard, and with `erase` deletes it. An entry that denies more or less is somebody else's.
bool FindGuard(const Advapi32DllHelper& advapi, ACL* entries, PSID everyone, bool erase) {
  bool found = false;
  for (DWORD index = entries->AceCount; index-- > 0;) {
    const std::optional<Entry> entry = EntryAt(advapi, entries, index);
    if (!entry || !entry->denies || entry->mask != kWriteGuard || !advapi.EqualSid(entry->sid, everyone)) continue;
    found = true;
    if (erase) advapi.DeleteAce(entries, index);
  }
  return found;
}

constexpr AccountRow kEveryone = {{}, "", 1, SECURITY_WORLD_RID, 0};

// Reads the object's list and hands it to `act` with the account's identity. What `act` gives is the result.
template <class Act>
DWORD RepairObject(const wchar_t* path, SecuredObject type, SID_IDENTIFIER_AUTHORITY authority, const AccountRow& row,
                   Act act) {
  if (path == nullptr) return ERROR_INVALID_PARAMETER;
  Repair repair(path, type);
  if (!repair.IsAvailable()) return ERROR_CALL_NOT_IMPLEMENTED;
  const Identity identity(repair.Advapi(), authority, row);
  if (identity.Get() == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
  AccessList list;
  if (const DWORD error = repair.Read(&list); error != ERROR_SUCCESS) return error;
  // No list at all means that everyone may do everything; a list of one entry would take that away.
  if (list.entries == nullptr) return ERROR_SUCCESS;
  return act(repair, list.entries, identity.Get());
}

}  // namespace

uint32_t EnsureAccess(const wchar_t* path, SecuredObject type, KnownAccount account, uint32_t mask) {
  const auto* const row = std::find_if(std::begin(kAccounts), std::end(kAccounts),
                                       [account](const AccountRow& known) { return known.account == account; });
  if (row == std::end(kAccounts)) return ERROR_INVALID_PARAMETER;
  return RepairObject(path, type, SECURITY_NT_AUTHORITY, *row, [=](Repair& repair, ACL* entries, PSID sid) {
    const bool granted = type == SecuredObject::File && CleanFileEntries(repair.Advapi(), entries, *row, sid, mask);
    return granted ? repair.Write(entries) : repair.WriteWith(entries, sid, GRANT_ACCESS, mask);
  });
}

uint32_t AddWriteGuard(const wchar_t* path) {
  return RepairObject(path, SecuredObject::File, SECURITY_WORLD_SID_AUTHORITY, kEveryone,
                      [](Repair& repair, ACL* entries, PSID everyone) -> DWORD {
                        if (FindGuard(repair.Advapi(), entries, everyone, false)) return ERROR_SUCCESS;
                        return repair.WriteWith(entries, everyone, DENY_ACCESS, kWriteGuard);
                      });
}

uint32_t RemoveWriteGuard(const wchar_t* path) {
  return RepairObject(path, SecuredObject::File, SECURITY_WORLD_SID_AUTHORITY, kEveryone,
                      [](Repair& repair, ACL* entries, PSID everyone) -> DWORD {
                        if (!FindGuard(repair.Advapi(), entries, everyone, true)) return ERROR_SUCCESS;
                        return repair.Write(entries);
                      });
}
