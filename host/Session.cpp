#include "host/Session.h"

// clang-format off
#include <windows.h>
#include <shlobj.h>
// clang-format on

#include "engine/InstallEngine.h"
#include "engine/ProductKeys.h"
#include "engine/Registry.h"
#include "engine/SystemPaths.h"
#include "host/Console.h"
#include "host/ConsoleText.h"
#include "host/PayloadList.h"

namespace {

constexpr wchar_t kInstallerMutex[] = L"Global\\CorvaLumenPlayerSetup";
constexpr wchar_t kSessionManager[] = L"SYSTEM\\CurrentControlSet\\Control\\Session Manager";

}  // namespace

void Tell(const Session& session, const std::string& text) {
  if (!session.line.silent) Say(text + "\n");
}

HostExit End(HostExit code, const std::string& why) {
  SayError("LumenHost: " + why + "\n");
  return code;
}

HostExit Fail(const Session& session, HostExit exit, ReportCode code, const WideString& text) {
  session.host.Tell(Severity::MustTell, code, text);
  return End(exit, ShownText(session, Severity::MustTell, code, text) + " (code " +
                       std::to_string(static_cast<uint32_t>(code)) + ")");
}

std::string ModuleText(const Session& session, uint32_t id, const std::string& value) {
  MString text;
  session.module->LoadString(&text, id, 1);
  const WideString plain = WithoutMarks(MString::Replace(text, L"^", MString(WideView(FromUtf8(value)))).View());
  const size_t end = plain.find(wchar_t{0});  // the table's texts end in a zero unit
  return ToUtf8(WideView(plain).substr(0, end));
}

std::string ShownText(const Session& session, Severity severity, ReportCode code, const WideString& text) {
  MString shown;
  session.host.Log().Format(&shown, &session.host, static_cast<uint32_t>(severity), static_cast<uint32_t>(code),
                            MString(WideView(text)), 0);
  const WideString plain = WithoutMarks(shown.View());
  return ToUtf8(WideView(plain).substr(0, plain.find(wchar_t{0})));
}

WideString SystemDirectory() {
  return GetSystem32Path().value_or(WideString()) + L"\\";
}

WideString PlayerDirectory() {
  return WideString(SystemPlayerDirectory().View());
}

WideString PayloadFolder(const Session& session) {
  const auto named = SettingValues(session.host.GetSettings(), L"Host.PayloadFolder");
  const WideString own = OwnPath();
  return own.substr(0, own.rfind(L'\\') + 1) + (named.empty() ? L"payload" : named.front()) + L"\\";
}

uint32_t KindsInPayload(const Session& session) {
  uint32_t kinds = 0;
  for (const uint32_t kind : EachKind(kAllKinds)) {
    const WideString player = PlayerName(session.host.GetSettings(), kind);
    const WideString path = PayloadFolder(session) + player;
    if (!player.empty() && GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) kinds |= kind;
  }
  return kinds == 0 ? product_kind::ActiveX : kinds;
}

bool AnyInstalled(uint32_t kinds) {
  for (const uint32_t kind : EachKind(kinds)) {
    if (OpenKey(HKEY_LOCAL_MACHINE, GetProductKey(kind).c_str(), KEY_READ)) return true;
  }
  return false;
}

ChangeLock::ChangeLock() {
  if (!IsUserAnAdmin()) {
    refusal = ReportCode::AdministratorWanted;
    return;
  }
  mutex.Reset(CreateMutexW(nullptr, FALSE, kInstallerMutex));
  if (!mutex || GetLastError() == ERROR_ALREADY_EXISTS) refusal = ReportCode::AnotherInstallerActive;
}

std::optional<HostExit> ChangeLock::Refuse(const Session& session) const {
  if (!refusal) return std::nullopt;
  return Fail(session, HostExit::Refused, *refusal);
}

size_t PendingOperations() {
  DWORD bytes = 0;
  const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, kSessionManager, L"PendingFileRenameOperations",
                                      RRF_RT_REG_MULTI_SZ, nullptr, nullptr, &bytes);
  return status == ERROR_SUCCESS ? bytes : 0;
}
