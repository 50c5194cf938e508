#pragma once
// Asking an application to quit before it is removed: SIGTERM to the user's processes whose
// executable belongs to it.

#include "core/apps/app_info.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace sondrel {

/// The processes under `procRoot` (normally "/proc") owned by the calling user, other than this
/// process, whose executable (/proc/PID/exe, or for an AppImage the APPIMAGE variable of its
/// environment) is one of `executables`; an entry ending in '/' matches every executable below
/// that folder. Blocking; any thread.
std::vector<pid_t> findAppProcesses(const std::vector<std::string>& executables,
                                    const std::string& procRoot = "/proc");

/// Sends SIGTERM to every process findAppProcesses gives for `app` (a polite quit request; it
/// does not wait for them to end) and returns how many were signalled.
int terminateAppProcesses(const AppInfo& app, const std::string& procRoot = "/proc");

} // namespace sondrel
