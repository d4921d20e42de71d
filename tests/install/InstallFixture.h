// A shim with a recording host on a machine where nothing is installed, and a folder for the files of a product.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "engine/LumenBrokerShim.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/TestFiles.h"

constexpr uint32_t kAllKinds[] = {product_kind::ActiveX, product_kind::Plugin, product_kind::Pepper};

struct KindRow {
  uint32_t kind;
  const char* name;
  const char* player;
};
constexpr KindRow kKindRows[] = {{product_kind::ActiveX, "activex", "LumenPlayer.ocx"},
                                 {product_kind::Plugin, "plugin", "nplumen.dll"},
                                 {product_kind::Pepper, "pepper", "pepperlumen.dll"}};

const std::string kImageOptions = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\";
constexpr char kAppletCategory[] =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Control Panel\\Extended Properties\\System.ControlPanel.Category";
// What reports say of the values below this.
const std::string kMachinePlayer = "Software\\Halcyonics\\LumenPlayer";

class InstallFixture : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // The keys that installing and removing touch, all gone; the broker's registration too.
  static void ClearMachine();
  // A copy of a sample player in the folder.
  MString Player(const char* file) const;
  // A file of that many bytes in the folder.
  MString File(const char* name, size_t bytes = 10) const;
  MString PathOf(const char* name) const;
  bool FileIsThere(const char* name) const { return testing_files::Exists(PathOf(name).Data()); }

  static void SetText(const std::string& key, const char* name, const char* text, HKEY root = HKEY_LOCAL_MACHINE);
  static void SetNumber(const std::string& key, const char* name, uint32_t number, HKEY root = HKEY_LOCAL_MACHINE);
  static bool KeyExists(const std::string& key, HKEY root = HKEY_LOCAL_MACHINE);

  RecordingHost host;
  LumenBrokerShim* shim = nullptr;
  std::optional<testing_files::CleanDirectory> folder;
};
