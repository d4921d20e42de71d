// Access lists of files are kept in memory here, since this platform's stand-in makes them from Unix mode bits; keys
// have real ones.
#include "install/AccessRepair.h"

#include <windows.h>

#include <aclapi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "engine/Handles.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Texts.h"

namespace {

struct Account {
  char letter;
  const char* english;  // null: no account has this identity
  const char* german;
  std::vector<BYTE> sid;
};

std::vector<BYTE> Sid(BYTE authority, const std::vector<DWORD>& parts) {
  std::vector<BYTE> sid = {1, static_cast<BYTE>(parts.size()), 0, 0, 0, 0, 0, authority};
  for (const DWORD part : parts) {
    for (int shift = 0; shift < 32; shift += 8) sid.push_back(static_cast<BYTE>(part >> shift));
  }
  return sid;
}

const std::vector<Account> kAccounts = {
    {'A', "BUILTIN\\Administrators", "VORDEFINIERT\\Administratoren", Sid(5, {32, 544})},
    {'S', "NT AUTHORITY\\SYSTEM", "NT-AUTORIT\xC4T\\SYSTEM", Sid(5, {18})},
    {'U', "BUILTIN\\Users", "VORDEFINIERT\\Benutzer", Sid(5, {32, 545})},
    {'E', "\\Everyone", "\\Jeder", Sid(1, {0})},
    {'X', nullptr, nullptr, Sid(5, {21, 1, 2, 3, 1001})},
};

// The list of the one file: "+A 1f" allows administrators 1f, "-U 2" denies users 2.
Lines g_list;
bool g_hasList = true;
int g_writes = 0, g_merges = 0;
DWORD g_readError = 0, g_writeError = 0;
bool g_german = false;

template <class Test>
const Account* FindAccount(Test test) {
  const auto found = std::find_if(kAccounts.begin(), kAccounts.end(), test);
  return found == kAccounts.end() ? nullptr : &*found;
}
PSID SidOf(char letter) {
  return const_cast<BYTE*>(FindAccount([&](const Account& account) { return account.letter == letter; })->sid.data());
}
const Account* AccountOf(PSID sid) {
  return FindAccount([&](const Account& account) { return EqualSid(sid, const_cast<BYTE*>(account.sid.data())); });
}

DWORD WINAPI ReadList(LPCWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION what, PSID* /*owner*/, PSID* /*group*/,
                      PACL* list, PACL* /*audit*/, PSECURITY_DESCRIPTOR* descriptor) {
  EXPECT_STREQ(path, L"C:\\guarded.ocx");
  EXPECT_EQ(type, 1);
  EXPECT_EQ(what, 4u);
  if (g_readError != 0) return g_readError;
  constexpr DWORD kRoom = 1024;
  auto* const acl = static_cast<ACL*>(LocalAlloc(LPTR, kRoom));
  EXPECT_TRUE(InitializeAcl(acl, kRoom, ACL_REVISION));
  for (const std::string& line : g_list) {
    const DWORD mask = std::stoul(line.substr(3), nullptr, 16);
    EXPECT_TRUE(line[0] == '+' ? AddAccessAllowedAce(acl, ACL_REVISION, mask, SidOf(line[1]))
                               : AddAccessDeniedAce(acl, ACL_REVISION, mask, SidOf(line[1])));
  }
  *descriptor = acl;  // the caller frees this; the list lies within
  *list = g_hasList ? acl : nullptr;
  return 0;
}

Lines AsLines(ACL* acl) {
  Lines lines;
  for (DWORD i = 0; i < acl->AceCount; ++i) {
    void* raw = nullptr;
    EXPECT_TRUE(GetAce(acl, i, &raw));
    const auto* const entry = static_cast<ACCESS_ALLOWED_ACE*>(raw);
    const Account* const account = AccountOf(const_cast<DWORD*>(&entry->SidStart));
    char text[32] = {};
    std::snprintf(text, sizeof(text), "%c%c %lx", entry->Header.AceType == 0 ? '+' : '-',
                  account == nullptr ? '?' : account->letter, entry->Mask);
    lines.emplace_back(text);
  }
  return lines;
}

DWORD WINAPI WriteList(LPWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION what, PSID /*owner*/, PSID /*group*/,
                       PACL list, PACL /*audit*/) {
  EXPECT_STREQ(path, L"C:\\guarded.ocx");
  EXPECT_EQ(type, 1);
  EXPECT_EQ(what, 4u);
  ++g_writes;
  if (g_writeError == 0) g_list = AsLines(list);
  return g_writeError;
}

BOOL WINAPI NameOf(LPCSTR /*system*/, PSID sid, LPSTR name, LPDWORD nameRoom, LPSTR domain, LPDWORD domainRoom,
                   PSID_NAME_USE use) {
  const Account* const account = AccountOf(sid);
  if (account == nullptr || account->english == nullptr) return FALSE;
  const std::string whole = g_german ? account->german : account->english;
  const size_t slash = whole.find('\\');
  EXPECT_LT(whole.size(), *nameRoom);
  EXPECT_LT(whole.size(), *domainRoom);
  std::strcpy(domain, whole.substr(0, slash).c_str());
  std::strcpy(name, whole.substr(slash + 1).c_str());
  *use = SidTypeAlias;
  return TRUE;
}

decltype(&SetEntriesInAclW) g_merge = nullptr;
DWORD WINAPI Merge(ULONG count, PEXPLICIT_ACCESSW entries, PACL list, PACL* merged) {
  ++g_merges;
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(entries->grfInheritance, 0u);
  return g_merge(count, entries, list, merged);
}

decltype(&GetProcAddress) g_find = nullptr;
FARPROC WINAPI Find(HMODULE library, LPCSTR name) {
  const std::string_view wanted(name);
  if (wanted == "GetNamedSecurityInfoW") return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&ReadList));
  if (wanted == "SetNamedSecurityInfoW") return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&WriteList));
  if (wanted == "SetEntriesInAclW") {
    g_merge = reinterpret_cast<decltype(g_merge)>(reinterpret_cast<void*>(g_find(library, name)));
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Merge));
  }
  return g_find(library, name);
}

// Runs `act` against the list in memory.
template <class Act>
uint32_t WithList(const Lines& list, Act act) {
  g_find = &GetProcAddress;
  const HMODULE module = GetModuleHandleW(nullptr);
  const ImportHook find(module, "GetProcAddress", &Find);
  const ImportHook name(module, "LookupAccountSidA", &NameOf);
  g_list = list;
  g_writes = g_merges = 0;
  const uint32_t error = act(L"C:\\guarded.ocx");
  // Where a new entry goes, and whether it joins an equal one, is the platform's business.
  std::sort(g_list.begin(), g_list.end());
  g_list.erase(std::unique(g_list.begin(), g_list.end()), g_list.end());
  return error;
}

constexpr DWORD kFull = 0x1F01FF;
constexpr DWORD kRead = 0x1200A9;

}  // namespace

TEST(EnsureAccess, AFileLosesWhatDeniesTheAccountAndGainsWhatIsMissing) {
  struct Row {
    const char* why;
    KnownAccount account;
    DWORD mask;
    bool german;
    int merges;
    Lines before, after;
  };
  constexpr auto kSystem = KnownAccount::System;
  constexpr auto kAdministrators = KnownAccount::Administrators;
  constexpr auto kUsers = KnownAccount::Users;
  const Row rows[] = {
      {"an empty list", kAdministrators, kFull, false, 1, {}, {"+A 1f01ff"}},
      {"granted already", kAdministrators, kFull, false, 0, {"+A 1f01ff", "+U 1"}, {"+A 1f01ff", "+U 1"}},
      {"granted in another language: once more", kAdministrators, kFull, true, 1, {"+A 1f01ff"}, {"+A 1f01ff"}},
      {"granted to another", kSystem, kFull, false, 1, {"+A 1f01ff"}, {"+A 1f01ff", "+S 1f01ff"}},
      {"only a deny has this mask", kUsers, kRead, false, 1, {"-U 1200a9"}, {"+U 1200a9"}},
      {"denied anything", kUsers, kRead, false, 0, {"-U 2", "+U 1200a9", "-U 1f01ff"}, {"+U 1200a9"}},
      {"denied to others", kUsers, kRead, false, 1, {"-A 2", "-X 2"}, {"+U 1200a9", "-A 2", "-X 2"}},
      {"identities without a name", kUsers, kRead, false, 1, {"+X 1200a9"}, {"+U 1200a9", "+X 1200a9"}},
      {"names in another language: denials still go", kUsers, kRead, true, 1, {"-U 2"}, {"+U 1200a9"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    g_german = row.german;
    EXPECT_EQ(WithList(row.before,
                       [&row](const wchar_t* path) {
                         return EnsureAccess(path, SecuredObject::File, row.account, row.mask);
                       }),
              0u);
    EXPECT_EQ(g_list, row.after);
    EXPECT_EQ(g_merges, row.merges);
    EXPECT_EQ(g_writes, 1) << "the list is written back also when nothing was missing";
  }
}

TEST(EnsureAccess, FailuresAreThePlatformsOwn) {
  const auto ensure = [](const wchar_t* path) {
    return EnsureAccess(path, SecuredObject::File, KnownAccount::Users, kRead);
  };
  g_german = false;
  g_readError = 1234;
  EXPECT_EQ(WithList({}, ensure), 1234u);
  EXPECT_EQ(g_writes, 0);
  g_readError = 0;
  g_writeError = 4321;
  EXPECT_EQ(WithList({}, ensure), 4321u);
  EXPECT_EQ(g_writes, 1);
  g_writeError = 0;
  g_hasList = false;  // everyone may do everything; a list of one grant would take that away
  EXPECT_EQ(WithList({}, ensure), 0u);
  EXPECT_EQ(g_writes, 0);
  g_hasList = true;
  EXPECT_EQ(EnsureAccess(L"C:\\missing.ocx", SecuredObject::File, KnownAccount::Users, kRead),
            static_cast<uint32_t>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(EnsureAccess(L"C:\\x", SecuredObject::File, static_cast<KnownAccount>(1), kRead),
            static_cast<uint32_t>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(EnsureAccess(nullptr, SecuredObject::File, KnownAccount::Users, kRead),
            static_cast<uint32_t>(ERROR_INVALID_PARAMETER));
}

TEST(WriteGuard, ComesOnceAndGoesAlone) {
  EXPECT_EQ(WithList({"+A 1f01ff", "-U 6"}, &AddWriteGuard), 0u);
  const Lines guarded = g_list;
  EXPECT_EQ(guarded, (Lines{"+A 1f01ff", "-E 6", "-U 6"}));
  EXPECT_EQ(WithList(guarded, &AddWriteGuard), 0u);
  EXPECT_EQ(g_writes, 0);
  EXPECT_EQ(WithList(guarded, &RemoveWriteGuard), 0u);
  EXPECT_EQ(g_list, (Lines{"+A 1f01ff", "-U 6"}));
  EXPECT_EQ(WithList({"+A 1f01ff", "-E 1", "+E 6"}, &RemoveWriteGuard), 0u) << "other entries are no guard";
  EXPECT_EQ(g_writes, 0);
}

TEST(EnsureAccess, ARealFileStaysUsable) {
  const testing_files::CleanDirectory folder(L"C:\\access-test");
  const WideString path = folder.Path() + L"\\file.txt";
  testing_files::WriteWhole(path, "content");
  for (const auto account : {KnownAccount::Administrators, KnownAccount::System, KnownAccount::Users}) {
    EXPECT_EQ(EnsureAccess(path.c_str(), SecuredObject::File, account, kFull), 0u);
  }
  EXPECT_EQ(AddWriteGuard(path.c_str()), 0u);
  EXPECT_EQ(RemoveWriteGuard(path.c_str()), 0u);
  EXPECT_EQ(testing_files::ReadWhole(path), "content");
  SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);  // where mode bits stand for the list, the guard is this
  EXPECT_TRUE(DeleteFileW(path.c_str()));
}

TEST(EnsureAccess, ARealKeyGainsTheGrantAndKeepsItsDenials) {
  HKEY opened = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\LumenAccessTest", 0, nullptr, 0, KEY_ALL_ACCESS,
                            nullptr, &opened, nullptr),
            ERROR_SUCCESS);
  RegistryKey key(opened);
  const auto lines = [&key] {
    ACL* acl = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_EQ(GetSecurityInfo(key.Get(), SE_REGISTRY_KEY, 4, nullptr, nullptr, &acl, nullptr, &descriptor), 0u);
    Lines found = AsLines(acl);
    LocalFree(descriptor);
    return found;
  };
  char room[512] = {};
  auto* const acl = reinterpret_cast<ACL*>(room);
  ASSERT_TRUE(InitializeAcl(acl, sizeof(room), ACL_REVISION));
  ASSERT_TRUE(AddAccessDeniedAce(acl, ACL_REVISION, KEY_SET_VALUE, SidOf('U')));
  ASSERT_TRUE(AddAccessAllowedAce(acl, ACL_REVISION, KEY_ALL_ACCESS, SidOf('E')));
  ASSERT_EQ(SetSecurityInfo(key.Get(), SE_REGISTRY_KEY, 4, nullptr, nullptr, acl, nullptr), 0u);
  for (const wchar_t* name : {L"MACHINE\\Software\\Classes\\LumenAccessTest", L"CLASSES_ROOT\\LumenAccessTest"}) {
    EXPECT_EQ(EnsureAccess(name, SecuredObject::RegistryKey, KnownAccount::Users, KEY_READ), 0u);
    const Lines found = lines();
    EXPECT_EQ(std::count(found.begin(), found.end(), "-U 2"), 1);
    EXPECT_GE(std::count(found.begin(), found.end(), "+U 20019"), 1);
    EXPECT_EQ(std::count(found.begin(), found.end(), "+E f003f"), 1);
  }
  RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\LumenAccessTest");
  EXPECT_EQ(EnsureAccess(L"MACHINE\\Software\\Classes\\LumenAccessTest", SecuredObject::RegistryKey,
                         KnownAccount::Users, KEY_READ),
            static_cast<uint32_t>(ERROR_FILE_NOT_FOUND));
}
