// What the commands work with: the command line, the answers to the module, and the module itself.
#pragma once

#include <optional>
#include <string>

#include "engine/ProductKind.h"
#include "host/CommandLine.h"
#include "host/HostedModule.h"
#include "host/ReferenceHost.h"

struct Session {
  const HostCommandLine& line;
  ReferenceHost& host;
  const HostedModule& module;
};

// Says a line, unless the command is to be silent.
void Tell(const Session& session, const std::string& text);
// Says why a command ends here, and gives back its exit code. Also in silence.
[[nodiscard]] HostExit End(HostExit code, const std::string& why);
// Tells the message log what the user must be told, and the console in the words of the failure panel. Gives back
// `exit`.
[[nodiscard]] HostExit Fail(const Session& session, HostExit exit, ReportCode code,
                            const WideString& text = WideString());
// The module's own text in the user's language, without marks, `value` in the place of "^".
[[nodiscard]] std::string ModuleText(const Session& session, uint32_t id, const std::string& value = std::string());
// What the failure panel would show of a report.
[[nodiscard]] std::string ShownText(const Session& session, Severity severity, ReportCode code,
                                    const WideString& text = WideString());

// The directory of the player's files, and the system directory that it lies in; each with its last backslash.
[[nodiscard]] WideString PlayerDirectory();
[[nodiscard]] WideString SystemDirectory();

// The folder beside this program that players are installed from, with its last backslash.
[[nodiscard]] WideString PayloadFolder(const Session& session);

// The kinds whose players are in that folder; ActiveX when there is none, so that its absence is told.
[[nodiscard]] uint32_t KindsInPayload(const Session& session);

constexpr uint32_t kAllKinds = product_kind::ActiveX | product_kind::Plugin | product_kind::Pepper;
// Whether the registry knows any player of these kinds.
[[nodiscard]] bool AnyInstalled(uint32_t kinds);

// Held while the machine is being changed: one installer at a time, and only with administrative rights.
class ChangeLock {
 public:
  ChangeLock();
  // Nothing when the machine may be changed; else tells why not.
  [[nodiscard]] std::optional<HostExit> Refuse(const Session& session) const;

 private:
  KernelHandle mutex;
  std::optional<ReportCode> refusal;
};

// How many bytes of file operations wait for the next restart.
[[nodiscard]] size_t PendingOperations();
