// Real class keys: their deletion, and the repair of their access lists.
#include <windows.h>

#include <aclapi.h>
#include <gtest/gtest.h>

#include "engine/ProductIds.h"
#include "engine/Registry.h"
#include "install/ClassKeys.h"
#include "tests/support/AccessText.h"

namespace {

const std::string kClasses = "Software\\Classes\\";
const std::string kProgramId = kClasses + "TidewaterLumen.TidewaterLumen";
const std::string kFirstBroker = kClasses + "CLSID\\" LUMEN_BROKER_CLASS_ID_1;
const std::string kFactory = kClasses + "CLSID\\" LUMEN_FACTORY_CLASS_ID;
const std::string kFileType = kClasses + ".fgl";

bool Exists(const std::string& path) {
  return OpenKey(HKEY_LOCAL_MACHINE, path.c_str(), KEY_READ).IsValid();
}
RegistryKey Make(const std::string& path) {
  return CreateKey(HKEY_LOCAL_MACHINE, path.c_str(), KEY_ALL_ACCESS);
}
}  // namespace

TEST(DeleteClassKeys, EachSelectionTakesItsOwn) {
  for (const std::string& key : {kProgramId + "\\CLSID", kProgramId + ".11", kFirstBroker, kFactory, kFileType}) {
    ASSERT_TRUE(Make(key)) << key;
  }
  EXPECT_TRUE(DeleteClassKeys(ClassKeySelection::Machine));
  EXPECT_FALSE(Exists(kFirstBroker));
  EXPECT_TRUE(Exists(kFactory));
  EXPECT_TRUE(Exists(kProgramId));
  EXPECT_TRUE(DeleteClassKeys(ClassKeySelection::Control));
  EXPECT_FALSE(Exists(kFactory));
  EXPECT_FALSE(Exists(kProgramId));
  EXPECT_FALSE(Exists(kProgramId + ".11"));
  EXPECT_TRUE(Exists(kFileType)) << "a name of the class root is not deleted";
  RegDeleteKeyA(HKEY_LOCAL_MACHINE, kFileType.c_str());
  EXPECT_TRUE(DeleteClassKeys(ClassKeySelection::Control)) << "nothing left is a success";
}

TEST(RepairClassKeyAccess, GrantsToTheKeysThereAreAndKeepsTheirDenials) {
  const RegistryKey key = Make(kFactory);
  char room[256] = {};
  auto* const denial = reinterpret_cast<ACL*>(room);
  BYTE users[SECURITY_MAX_SID_SIZE] = {};
  DWORD size = sizeof(users);
  ASSERT_TRUE(InitializeAcl(denial, sizeof(room), ACL_REVISION));
  ASSERT_TRUE(CreateWellKnownSid(WinBuiltinUsersSid, nullptr, users, &size));
  ASSERT_TRUE(AddAccessDeniedAce(denial, ACL_REVISION, KEY_SET_VALUE, users));
  ASSERT_EQ(SetSecurityInfo(key.Get(), SE_REGISTRY_KEY, 4, nullptr, nullptr, denial, nullptr), 0u);
  RepairClassKeyAccess();
  ACL* list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ASSERT_EQ(GetSecurityInfo(key.Get(), SE_REGISTRY_KEY, 4, nullptr, nullptr, &list, nullptr, &descriptor), 0u);
  const auto entries = AccessEntries(AccessText(list));
  EXPECT_EQ(std::set<std::string>(entries.begin(), entries.end()),
            (std::set<std::string>{"(A;;KA;;;BA)", "(A;;KA;;;SY)", "(A;;KR;;;BU)", "(D;;DC;;;BU)"}));
  LocalFree(descriptor);
  EXPECT_FALSE(Exists(kProgramId)) << "the repair makes no keys";
  DeleteClassKeys(ClassKeySelection::Control);
}
