// The state behind the shim: the constants of this build and the lists that drive removal and conflict detection. Built
// once by Start, filled once by LoadEngineLists, destroyed with the shim. Host's thread only.
#pragma once

#include <cstdint>

#include "engine/DllHelpers.h"
#include "engine/MString.h"
#include "engine/MStringList.h"

class LumenBrokerShim;

class InstallEngine {
 public:
  // Sets the constants; reads nothing from the system.
  explicit InstallEngine(LumenBrokerShim* owner) : shim(owner) {}
  InstallEngine(const InstallEngine&) = delete;
  InstallEngine& operator=(const InstallEngine&) = delete;

  // Fills the lists from the host's settings and two directory listings. All of it runs whatever fails; true only when
  // every list that counts was read. The lists grow, so a second call doubles them.
  [[nodiscard]] bool LoadEngineLists();

  uint8_t initialized = 0;  // stays 0; nothing asks
  MString uninstallRoot{L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"};
  MString uninstallRootWow{L"SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"};
  MString productCode1{L"{FFB768E4-E427-4553-BC36-A11F5E62A94D}"};
  MString productCode2{L"{95A0B13E-F09A-425F-9D5F-E7C5EC470D06}"};
  MString productCode3{L"{1C5EC8F6-5C5F-421F-85BE-919B5D0CAD4C}"};
  MString productCode4{L"{14CAE90A-7395-4DF6-93AD-14AF6E52922B}"};
  MString version{L"28.0.0.126"};
  MStringList guidsAX;      // Add/Remove product ids
  MStringList guidsPlugin;  // also the Self ids of the PPAPI kind
  MStringList guidsPepper;
  MStringList filenamesAX;
  MStringList filenamesPlugin;
  MStringList reserved;  // never filled
  MStringList pluginDirectories;
  MStringList axPatterns;
  MStringList pluginPatterns;
  MStringList pepperPatterns;
  MStringList systemEntries;  // names in the player's system directory
  MStringList extraActiveXFiles;
  MStringList extraPluginFiles;
  MStringList extraPepperFiles;
  MStringList productManagerPatterns;
  MStringList productManagerEntries;  // names in the per-user product directory
  LumenBrokerShim* shim;              // not owned
  Kernel32DllHelper kernel32;
};

// Appends the names in `directory` to `list`, but for the first one the platform returns (".") so that ".." is among
// them, and whoever deletes by the list has to pass it over. A directory that cannot be listed is reported as 1113 and
// gives false.
[[nodiscard]] bool ListDirectory(MStringList* list, const MString& directory, LumenBrokerShim* shim);

// The player's directory among the 32-bit system files, with a last backslash.
[[nodiscard]] MString SystemPlayerDirectory();
