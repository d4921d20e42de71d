// Deletion of real class keys.
#include <windows.h>

#include <aclapi.h>
#include <gtest/gtest.h>

#include "engine/ProductIds.h"
#include "engine/Registry.h"
#include "install/ClassKeys.h"

namespace {

bool Exists(const std::string& path) {
  return OpenKey(HKEY_LOCAL_MACHINE, path.c_str(), KEY_READ).IsValid();
}
const std::string kClasses = "Software\\Classes\\";
const std::string kProgramId = kClasses + "TidewaterLumen.TidewaterLumen";
const std::string kFirstBroker = kClasses + "CLSID\\" LUMEN_BROKER_CLASS_ID_1;
const std::string kFactory = kClasses + "CLSID\\" LUMEN_FACTORY_CLASS_ID;
const std::string kFileType = kClasses + ".fgl";

}  // namespace

TEST(DeleteMachineKey, PassesByWhatIsNotUnderTheMachine) {
  const std::string key = kClasses + "LumenDeleteTest";
  ASSERT_TRUE(CreateKey(HKEY_LOCAL_MACHINE, (key + "\\below").c_str(), KEY_ALL_ACCESS));
  for (const char* other : {"CLASSES_ROOT\\LumenDeleteTest", "machine\\Software\\Classes\\LumenDeleteTest", ""}) {
    EXPECT_FALSE(DeleteMachineKey(other).has_value()) << other;
    EXPECT_TRUE(Exists(key));
  }
  EXPECT_EQ(DeleteMachineKey(("MACHINE\\" + key).c_str()), ERROR_SUCCESS);
  EXPECT_FALSE(Exists(key));
  EXPECT_EQ(DeleteMachineKey(("MACHINE\\" + key).c_str()), ERROR_FILE_NOT_FOUND);
}

TEST(DeleteClassKeys, EachSelectionTakesItsOwn) {
  for (const std::string& key : {kProgramId + "\\CLSID", kProgramId + ".11", kFirstBroker, kFactory, kFileType}) {
    ASSERT_TRUE(CreateKey(HKEY_LOCAL_MACHINE, key.c_str(), KEY_ALL_ACCESS)) << key;
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

TEST(DeleteClassKeys, AKeyThatStaysDoesNotStopTheWalk) {
  RegistryKey denied = CreateKey(HKEY_LOCAL_MACHINE, kFirstBroker.c_str(), KEY_ALL_ACCESS);
  ASSERT_TRUE(CreateKey(HKEY_LOCAL_MACHINE, (kClasses + "CLSID\\" LUMEN_CONTROL_CLASS_ID).c_str(), KEY_ALL_ACCESS));
  ACL nobody = {};
  ASSERT_TRUE(InitializeAcl(&nobody, sizeof(nobody), ACL_REVISION));
  ASSERT_EQ(
      SetSecurityInfo(denied.Get(), SE_REGISTRY_KEY, DACL_SECURITY_INFORMATION, nullptr, nullptr, &nobody, nullptr),
      static_cast<DWORD>(ERROR_SUCCESS));
  EXPECT_FALSE(DeleteClassKeys(ClassKeySelection::Machine));
  EXPECT_FALSE(Exists(kClasses + "CLSID\\" LUMEN_CONTROL_CLASS_ID));
  ASSERT_EQ(
      SetSecurityInfo(denied.Get(), SE_REGISTRY_KEY, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr, nullptr),
      static_cast<DWORD>(ERROR_SUCCESS));
  denied.Reset();
  EXPECT_TRUE(DeleteClassKeys(ClassKeySelection::Machine));
}

TEST(RepairClassKeyAccess, GivesUsersReadingToTheKeysThereAre) {
  const RegistryKey key = CreateKey(HKEY_LOCAL_MACHINE, kFactory.c_str(), KEY_ALL_ACCESS);
  RepairClassKeyAccess();
  ACL* list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ASSERT_EQ(GetSecurityInfo(key.Get(), SE_REGISTRY_KEY, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list, nullptr,
                            &descriptor),
            static_cast<DWORD>(ERROR_SUCCESS));
  bool full = false;
  bool reading = false;
  for (DWORD i = 0; list != nullptr && i < list->AceCount; ++i) {
    void* raw = nullptr;
    GetAce(list, i, &raw);
    auto* const entry = static_cast<ACCESS_ALLOWED_ACE*>(raw);
    full |= entry->Mask == KEY_ALL_ACCESS && IsWellKnownSid(&entry->SidStart, WinBuiltinAdministratorsSid);
    reading |= entry->Mask == KEY_READ && IsWellKnownSid(&entry->SidStart, WinBuiltinUsersSid);
  }
  EXPECT_TRUE(full);
  EXPECT_TRUE(reading);
  LocalFree(descriptor);
  EXPECT_FALSE(Exists(kProgramId)) << "the repair makes no keys";
  DeleteClassKeys(ClassKeySelection::Control);
}
