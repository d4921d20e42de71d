// Access lists of files are kept in memory here, since this platform's stand-in makes them from Unix mode bits; keys
// have real ones, which ClassKeyRepairTest.cpp looks at.
#include "install/AccessRepair.h"

#include <windows.h>

#include <accctrl.h>
#include <gtest/gtest.h>
#include <sddl.h>

#include <cstring>
#include <optional>

#include "tests/support/AccessText.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestFiles.h"

namespace {

// The list of the one file, in the platform's own notation: "D:(A;;FA;;;BA)(D;;DC;;;BU)".
std::string g_list;
int g_writes = 0;
bool g_german = false;

void ExpectTheFile(LPCWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION what) {
  EXPECT_STREQ(path, L"C:\\guarded.ocx");
  EXPECT_EQ(type, SE_FILE_OBJECT);
  EXPECT_EQ(what, 4u);
}

DWORD WINAPI ReadList(LPCWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION what, PSID* /*owner*/, PSID* /*group*/,
                      PACL* list, PACL* /*audit*/, PSECURITY_DESCRIPTOR* descriptor) {
  ExpectTheFile(path, type, what);
  BOOL given = TRUE, defaulted = FALSE;
  EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA(g_list.c_str(), 1, descriptor, nullptr));
  EXPECT_TRUE(GetSecurityDescriptorDacl(*descriptor, &given, list, &defaulted));
  return 0;
}

DWORD WINAPI WriteList(LPWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION what, PSID /*owner*/, PSID /*group*/,
                       PACL list, PACL /*audit*/) {
  ExpectTheFile(path, type, what);
  ++g_writes;
  SECURITY_DESCRIPTOR written = {};
  InitializeSecurityDescriptor(&written, SECURITY_DESCRIPTOR_REVISION);
  SetSecurityDescriptorDacl(&written, TRUE, list, FALSE);
  g_list = AccessText(&written);
  return 0;
}

// Names as a German system has them.
BOOL WINAPI NameInGerman(LPCSTR /*system*/, PSID sid, LPSTR name, LPDWORD /*nameRoom*/, LPSTR domain,
                         LPDWORD /*domainRoom*/, PSID_NAME_USE use) {
  const bool users = IsWellKnownSid(sid, WinBuiltinUsersSid);
  std::strcpy(domain, "VORDEFINIERT");
  std::strcpy(name, users ? "Benutzer" : "Administratoren");
  *use = SidTypeAlias;
  return TRUE;
}

decltype(&GetProcAddress) g_find = nullptr;
FARPROC WINAPI Find(HMODULE library, LPCSTR name) {
  const std::string_view wanted(name);
  if (wanted == "GetNamedSecurityInfoW") return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&ReadList));
  if (wanted == "SetNamedSecurityInfoW") return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&WriteList));
  return g_find(library, name);
}

// Runs `act` against the list in memory.
template <class Act>
uint32_t WithList(const std::string& list, Act act) {
  g_find = &GetProcAddress;
  const HMODULE module = GetModuleHandleW(nullptr);
  const ImportHook find(module, "GetProcAddress", &Find);
  std::optional<ImportHook> german;
  if (g_german) german.emplace(module, "LookupAccountSidA", &NameInGerman);
  g_list = list;
  g_writes = 0;
  return act(L"C:\\guarded.ocx");
}

constexpr DWORD kFull = 0x1F01FF;
constexpr DWORD kRead = 0x1200A9;

}  // namespace

TEST(EnsureAccess, AFileLosesWhatDeniesTheAccountAndGainsWhatIsMissing) {
  constexpr auto kAdministrators = KnownAccount::Administrators;
  constexpr auto kUsers = KnownAccount::Users;
  const struct {
    const char* why;
    KnownAccount account;
    DWORD mask;
    bool german;
    const char* before;
    const char* after;
  } rows[] = {
      {"an empty list", kAdministrators, kFull, false, "D:", "D:(A;;FA;;;BA)"},
      {"granted already", kAdministrators, kFull, false, "D:(A;;FA;;;BA)(A;;CC;;;BU)", "D:(A;;FA;;;BA)(A;;CC;;;BU)"},
      {"granted in another language", kAdministrators, kFull, true, "D:(A;;FA;;;BA)", "D:(A;;FA;;;BA)(A;;FA;;;BA)"},
      {"granted to another", KnownAccount::System, kFull, false, "D:(A;;FA;;;BA)", "D:(A;;FA;;;SY)(A;;FA;;;BA)"},
      {"only a deny has this mask", kUsers, kRead, false, "D:(D;;0x1200a9;;;BU)", "D:(A;;0x1200a9;;;BU)"},
      {"denied anything", kUsers, kRead, false, "D:(D;;DC;;;BU)(A;;0x1200a9;;;BU)(D;;FA;;;BU)", "D:(A;;0x1200a9;;;BU)"},
      {"denied to others", kUsers, kRead, false, "D:(D;;DC;;;BA)(D;;DC;;;S-1-5-21-1-2-3-1001)",
       "D:(D;;DC;;;BA)(D;;DC;;;S-1-5-21-1-2-3-1001)(A;;0x1200a9;;;BU)"},
      {"another language: denials still go", kUsers, kRead, true, "D:(D;;DC;;;BU)", "D:(A;;0x1200a9;;;BU)"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    g_german = row.german;
    const auto ensure = [&row](auto* path) { return EnsureAccess(path, SecuredObject::File, row.account, row.mask); };
    EXPECT_EQ(WithList(row.before, ensure), 0u);
    EXPECT_EQ(AccessEntries(g_list), AccessEntries(row.after));
    EXPECT_EQ(g_writes, 1) << "the list is written back also when nothing was missing";
  }
  g_german = false;
}

TEST(WriteGuard, ComesOnceAndGoesAlone) {
  const std::string others = "D:(D;;DCLC;;;BU)(A;;FA;;;BA)";
  EXPECT_EQ(WithList(others, &AddWriteGuard), 0u);
  const std::string guarded = g_list;
  EXPECT_EQ(AccessEntries(guarded), AccessEntries("(D;;DCLC;;;WD)" + others));
  EXPECT_EQ(WithList(guarded, &AddWriteGuard), 0u);
  EXPECT_EQ(g_writes, 0);
  EXPECT_EQ(WithList(guarded, &RemoveWriteGuard), 0u);
  EXPECT_EQ(AccessEntries(g_list), AccessEntries(others));
  EXPECT_EQ(WithList("D:(D;;CC;;;WD)(A;;DCLC;;;WD)", &RemoveWriteGuard), 0u) << "other entries are no guard";
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
