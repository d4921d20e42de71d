// The whole surface that a host sees: 51 operations in a fixed order, returned by Start. All run on the host's thread.
//
// Operations report details through HostCallbacks::ReportMessage and answer with a bool. Nothing throws: a text for
// which there is no memory ends the process. MString arguments are copies that the operation owns; an MString result is
// written into storage of the caller's. Lists that are returned belong to the engine: never free them.
#pragma once

#include <windows.h>

#include <cstdint>

#include "engine/MString.h"

class HostCallbacks;
class InstallEngine;
class MorphUI;
class MStringList;

// <windows.h> makes a macro of this name, which would rename the operation.
#undef LoadString

class LumenBrokerShim {
 public:
  explicit LumenBrokerShim(HostCallbacks* hostCallbacks);

  // Ends the shim and its engine; with bit 0 of `flag` also frees the shim. Nothing may be called afterwards.
  virtual void Destroy(uint32_t flag) noexcept;
  // The text `id` of resourceModule. If missing: the host's fallback when `useHost`, else "MISSING LOCALIZATION".
  virtual MString* LoadString(MString* out, uint32_t id, uint8_t useHost) noexcept;
  // The installer window, not yet shown; null when there is no memory for it. Ended by DestroyUI, before Destroy.
  virtual MorphUI* CreateUI() noexcept;
  virtual void DestroyUI(void* ignored, MorphUI* ui) noexcept;
  // Whether the installed release type is `expected`; true when nothing is installed or no kind is named. Of several
  // kinds the last one decides, in the order ActiveX, plug-in, PPAPI.
  virtual bool ReleaseTypeMatches(uint32_t kinds, uint32_t expected) noexcept;
  // Whether this build may be installed over what is there. On refusal `code` is 1161 (release type), 1013 (version,
  // mode 1) or 1162 (version, any other mode); otherwise it is left alone.
  virtual bool CheckInstallAllowed(uint32_t kinds, uint32_t* code, uint32_t mode) noexcept;
  // Windows 6.0 or later with the policy EnableLUA above 0.
  virtual bool IsUacEnabled() noexcept;
  // Takes back what made one kind known: the control's and broker's registration and their class keys, or the plug-in's
  // entry; in every case also the Add/Remove entry and packages of earlier versions. False when some of the kind's own
  // registration is left.
  virtual bool UninstallProduct(uint32_t kind, MString file, uint8_t removeSafeVersions) noexcept;
  // Makes one kind known to the system; its files are in place. False when the control could not be registered: then
  // neither the Add/Remove entry nor the inventory is written. Failures of those two are reported and do not count.
  virtual bool RegisterProduct(uint32_t kind, MString playerPath, MString uninstallerPath, MString ignored,
                               uint8_t writeUninstallEntry) noexcept;
  // Removes the update service of a player that is no release player from `directory`. A failure is reported as 1100.
  virtual bool RemoveUpdateService(void* ignored, MString directory) noexcept;
  // Takes an installed kind away: its registration, files, inventory, services and task. `directory` is the system
  // directory with the applet and the settings manager. With `setNotify` the update service is set to notify before it
  // goes. Every step runs and failures are reported; true when none was.
  // Files in use are left to the next restart and do not count.
  virtual bool RemoveProductKind(uint32_t kind, MString directory, uint8_t removeSafeVersions,
                                 uint8_t setNotify) noexcept;
  // These delete the files that the settings name or give patterns of: in `directory`, and for the plug-in in the
  // browsers' plug-in directories. With all three kinds RemovePatternFiles also deletes add-on products. True.
  virtual bool RemoveNamedFiles(uint32_t kinds, MString directory) noexcept;
  // Deletes `path` in the way that the ending of `name` asks for: a control unregisters itself first. True.
  virtual bool RemoveOneFile(MString name, MString path) noexcept;
  virtual bool RemovePatternFiles(uint32_t kinds, MString directory) noexcept;
  // Asks the browser to read its elevation policies again. False when the platform has no such operation.
  virtual bool RefreshElevationPolicy() noexcept;
  // Writes the broker's COM registration for `path`, protects that file and has running browsers read their policies
  // again, when `kind` is the ActiveX kind; other kinds do nothing. True.
  virtual bool RegisterBrokerServer(MString path, uint32_t kind) noexcept;
  // Has the control at `path` register itself, a second time after StopPlayers when it fails, and protects the file.
  // False, reported as 1032 to 1034, when it did not register.
  virtual bool RegisterActiveXControl(MString path) noexcept;
  // Writes the NPAPI plug-in's entry; failures are reported. True.
  virtual bool RegisterPluginEntry(MString path) noexcept;
  // Has the registered control unregister itself and deletes its class keys; with the flag also the list of safe
  // versions. False when no control is registered.
  virtual bool UnregisterActiveXControl(uint8_t removeSafeVersions, MString ignored) noexcept;
  // Reports that players are being stopped, and gives administrators access to the control's class keys. True.
  virtual bool StopPlayers() noexcept;
  // Runs the broker server on the calling thread until its last client has gone; the result is an exit code.
  virtual uint32_t RunBroker() noexcept;
  virtual InstallEngine* GetEngine() noexcept;
  virtual MStringList* GetAXFilenames() noexcept;
  virtual MStringList* GetPluginFilenames() noexcept;
  virtual MStringList* GetPluginDirectories() noexcept;
  virtual MStringList* GetAXFilenamePatterns() noexcept;
  virtual MStringList* GetPluginFilenamePatterns() noexcept;
  virtual MStringList* GetPepperFilenamePatterns() noexcept;
  virtual MStringList* GetProductManagerPatterns() noexcept;
  virtual MStringList* GetProductManagerEntries() noexcept;
  // Stores the shown names of what FindConflicts finds for the next run; false when there is nothing to store.
  virtual bool StoreConflicts(uint32_t value) noexcept;
  // True when conflicts were stored. Asking clears the store.
  virtual bool HasStoredConflicts() noexcept;
  // The running programs that stand in the way of the kinds, as pairs of a key and the name to show; the caller deletes
  // the list. Null when the processes cannot be listed. With the ActiveX kind it also ends the control's helper
  // process.
  virtual MStringList* FindConflicts(uint32_t kinds) noexcept;
  virtual MStringList* GetExtraActiveXFiles() noexcept;
  virtual MStringList* GetExtraPluginFiles() noexcept;
  virtual MStringList* GetExtraPepperFiles() noexcept;
  virtual bool AddExtraActiveXFile(MString name) noexcept;
  virtual bool AddExtraPluginFile(MString name) noexcept;
  virtual bool AddExtraPepperFile(MString name) noexcept;
  // Fills the engine's lists from the host's settings. Once: a second call doubles every list.
  virtual bool LoadEngineLists() noexcept;
  // Remembers the version of the stored update text as rejected; false when there is none or it cannot be written.
  virtual bool MarkUpdateRejected() noexcept;
  // Adds the stored update text's description to `out`; false when there is none.
  virtual bool ReadUpdateDescription(MStringList* out) noexcept;
  // Each fills `out` from a server's update text; false when the text lacks it.
  virtual bool ExtractMetaBlock(MString text, MString* out) noexcept;
  virtual bool ExtractUpdateVersion(MString text, MString* out) noexcept;
  // Stores the name of a running browser for OpenUrl; true when one was found.
  virtual bool FindDefaultBrowser() noexcept;
  // Opens the first value of the setting "ExpressInstallURL"; false when there is none.
  virtual bool OpenExpressInstallUrl(HWND window) noexcept;
  // Opens `url` in the browser that the selected product belongs to, else in the user's own. `window` may be null.
  virtual bool OpenUrl(HWND window, MString url) noexcept;
  // Starts the settings applet of 64-bit systems when it is there. Always false: callers go on to their own fallback.
  virtual bool OpenControlPanelApplet() noexcept;
  // A media player of version 6 that the installer must not run beside.
  virtual bool IsBadRealPlayer() noexcept;
  // 0 not installed, 1 older than this build, 2 the same, 3 newer.
  virtual uint32_t GetInstalledVersionState(uint32_t kind) noexcept;
  // Tells a failed registration from one never attempted.
  virtual uint8_t WasRegistrationReached() noexcept;

  HostCallbacks* host;              // not owned
  InstallEngine* engine = nullptr;  // owned
  MString browserName;
  uint8_t registrationReached = 0;

 protected:
  ~LumenBrokerShim();
};

// The module's one export. Null when the shim cannot be allocated.
extern "C" LumenBrokerShim* Start(HostCallbacks* host);
