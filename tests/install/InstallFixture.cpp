#include "tests/install/InstallFixture.h"

#include "broker/BrokerRegistration.h"
#include "engine/ProductKeys.h"
#include "install/ClassKeys.h"

void InstallFixture::SetUp() {
  ClearMachine();
  folder.emplace(L"C:\\lumen tests");
  shim = Start(&host);
  ASSERT_NE(shim, nullptr);
  host.shim = shim;
}

void InstallFixture::TearDown() {
  shim->Destroy(1);
  folder.reset();
  ClearMachine();
}

void InstallFixture::ClearMachine() {
  WriteBrokerRegistration(nullptr, false);
  // The platform's own keys, which a new prefix lacks until something registers, and which nobody takes away.
  for (const char* key : {"Internet Explorer\\Low Rights\\ElevationPolicy",
                          "Windows\\CurrentVersion\\Control Panel\\Extended Properties"}) {
    (void)CreateKey(HKEY_LOCAL_MACHINE, ("Software\\Microsoft\\" + std::string(key)).c_str(), KEY_READ);
  }
  (void)CreateKey(HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce", KEY_READ);
  (void)DeleteClassKeys(ClassKeySelection::Machine);
  for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    RegDeleteTreeW(root, L"Software\\Halcyonics");
    RegDeleteTreeW(root, L"Software\\Mozilla");
    RegDeleteTreeW(root, L"Software\\Opera Software");
  }
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\MozillaPlugins");
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\TidewaterLumen.TidewaterLumen");
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Internet Explorer\\ActiveX Compatibility");
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Code Store Database");
  for (const uint32_t kind : kAllKinds) {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, WidenAscii(GetUninstallEntryKey(kind)).c_str());
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, WidenAscii(GetOldUninstallKey(kind)).c_str());
  }
  for (const char* const name : {"LumenPlayerHelper.exe", "LumenPlayerApp.exe"}) {
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, (kImageOptions + name).c_str());
  }
}

MString InstallFixture::Player(const char* file) const {
  const MString path = PathOf(file);
  EXPECT_TRUE(CopyFileW((L"players\\" + WidenAscii(file)).c_str(), path.Data(), FALSE)) << file << GetLastError();
  return path;
}

MString InstallFixture::File(const char* name, size_t bytes) const {
  const MString path = PathOf(name);
  testing_files::WriteWhole(path.Data(), std::string(bytes, 'x'));
  return path;
}

MString InstallFixture::PathOf(const char* name) const {
  return MString(WideView(folder->Path() + L"\\" + WidenAscii(name)));
}

void InstallFixture::SetText(const std::string& key, const char* name, const char* text, HKEY root) {
  const RegistryKey opened = CreateKey(root, key.c_str(), KEY_WRITE);
  ASSERT_EQ(WriteText(opened.Get(), name, text), ERROR_SUCCESS);
}

void InstallFixture::SetNumber(const std::string& key, const char* name, uint32_t number, HKEY root) {
  const RegistryKey opened = CreateKey(root, key.c_str(), KEY_WRITE);
  ASSERT_EQ(WriteNumber(opened.Get(), name, number), ERROR_SUCCESS);
}

bool InstallFixture::KeyExists(const std::string& key, HKEY root) {
  return OpenKey(root, key.c_str(), KEY_READ).IsValid();
}
