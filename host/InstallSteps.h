// The large steps of an installation, which the console and the window go through in the same order. What fails is told
// to the message log, where the failure panel looks for it, and on the console.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "engine/MStringList.h"
#include "host/PayloadCopy.h"
#include "host/Session.h"

// Nothing when the kinds of the line may be installed here, or updated if that is the command.
[[nodiscard]] std::optional<HostExit> RefuseInstallation(const Session& session);
// The running programs that use the kinds; null when they cannot be listed.
[[nodiscard]] std::unique_ptr<MStringList> ProgramsInTheWay(const Session& session);
// Where each file of the kinds comes from and goes to, services last; a file that the payload may lack and lacks is
// left out.
[[nodiscard]] std::vector<FileToCopy> FilesToCopy(const Session& session);
// Copies, registers, sets services up.
[[nodiscard]] HostExit PerformInstallation(const Session& session);
// Gives the installed update service the mode that the user has chosen since.
void ApplyUpdateChoice(const Session& session);
