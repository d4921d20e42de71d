// The shim's operations that make and end the installer's window.
#include <windows.h>

#include <new>

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "ui/panels/MInstallerWindow.h"
#include "ui/toolkit/MorphUI.h"

namespace {

// What a host holds as its MorphUI. The window ends before what it belongs to.
class InstallerUI final : public MorphUI {
 public:
  InstallerUI(HostCallbacks* owner, HMODULE resources) : MorphUI(owner, resources), installerWindow(this) {
    SetWindow(&installerWindow);
    // The last of its parts. A window that memory did not suffice for cannot show a panel.
    if (installerWindow.restartIcon == nullptr) throw std::bad_alloc();
  }

 private:
  MInstallerWindow installerWindow;
};

}  // namespace

MorphUI* LumenBrokerShim::CreateUI() noexcept {
  try {
    return new InstallerUI(host, host->resourceModule);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void LumenBrokerShim::DestroyUI(void* /*ignored*/, MorphUI* ui) noexcept {
  delete static_cast<InstallerUI*>(ui);
}
