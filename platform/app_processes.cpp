#include "platform/app_processes.h"

#include "core/apps/app_file_access.h"
#include "core/util/path_text.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

bool matches(const std::string& executable, const std::vector<std::string>& executables) {
    return std::any_of(executables.begin(), executables.end(), [&](const std::string& wanted) {
        return executable == wanted ||
               (!wanted.empty() && wanted.back() == '/' && startsWith(executable, wanted));
    });
}

// The APPIMAGE variable of a process's environment, "" when it has none or it is unreadable.
std::string appImageOf(const std::string& procEntry) {
    const auto environment = readSmallFile(joinPath(procEntry, "environ"), 1024 * 1024);
    if (!environment) {
        return "";
    }
    std::size_t start = 0;
    while (start < environment->size()) {
        auto end = environment->find('\0', start);
        if (end == std::string::npos) {
            end = environment->size();
        }
        if (environment->compare(start, 9, "APPIMAGE=") == 0) {
            return environment->substr(start + 9, end - start - 9);
        }
        start = end + 1;
    }
    return "";
}

} // namespace

std::vector<pid_t> findAppProcesses(const std::vector<std::string>& executables,
                                    const std::string& procRoot) {
    std::vector<pid_t> found;
    if (executables.empty()) {
        return found;
    }
    const uid_t me = getuid();
    const pid_t self = getpid();
    for (const FolderEntry& entry : listFolder(procRoot)) {
        if (entry.name.empty() || entry.name.find_first_not_of("0123456789") != std::string::npos) {
            continue;
        }
        const pid_t pid = static_cast<pid_t>(std::atoi(entry.name.c_str()));
        const std::string procEntry = joinPath(procRoot, entry.name);
        struct stat info {};
        if (pid == self || stat(procEntry.c_str(), &info) != 0 || info.st_uid != me) {
            continue;
        }
        char target[4096];
        const ssize_t length =
            readlink(joinPath(procEntry, "exe").c_str(), target, sizeof target - 1);
        std::string executable;
        if (length > 0) {
            executable.assign(target, static_cast<std::size_t>(length));
            const std::string deleted = " (deleted)";
            if (endsWith(executable, deleted)) {
                executable.resize(executable.size() - deleted.size());
            }
        }
        if (matches(executable, executables) || matches(appImageOf(procEntry), executables)) {
            found.push_back(pid);
        }
    }
    return found;
}

int terminateAppProcesses(const AppInfo& app, const std::string& procRoot) {
    int signalled = 0;
    for (const pid_t pid : findAppProcesses(app.executables, procRoot)) {
        if (kill(pid, SIGTERM) == 0) {
            ++signalled;
        }
    }
    return signalled;
}

} // namespace sondrel
