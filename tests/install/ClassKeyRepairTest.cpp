// Real class keys: their deletion, and the repair of their access lists.
#include <windows.h>

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
  PSECURITY_DESCRIPTOR denial = nullptr;
  ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA("D:(D;;DC;;;BU)", 1, &denial, nullptr));
  ASSERT_EQ(RegSetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, denial), ERROR_SUCCESS);
  LocalFree(denial);
  RepairClassKeyAccess();
  char room[1024] = {};
  DWORD size = sizeof(room);
  ASSERT_EQ(RegGetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, room, &size), ERROR_SUCCESS);
  const auto entries = AccessEntries(AccessText(room));
  EXPECT_EQ(std::set<std::string>(entries.begin(), entries.end()),
            (std::set<std::string>{"(A;;KA;;;BA)", "(A;;KA;;;SY)", "(A;;KR;;;BU)", "(D;;DC;;;BU)"}));
  EXPECT_FALSE(Exists(kProgramId)) << "the repair makes no keys";
  DeleteClassKeys(ClassKeySelection::Control);
}
