// sondrel-helper: removes or trashes paths with administrator rights for the calling user.
// Started by pkexec as "sondrel-helper remove|trash"; reads roots and paths NUL-separated from
// stdin (see core/removal/privileged_helper_client.h) and answers one line per path on stdout.
// Every path is checked again here against the calling user's home, taken from PKEXEC_UID and
// the password database (never from $HOME), and only what lies inside that home is touched.
//
// Test mode: when not started by pkexec (no PKEXEC_UID), "--home DIR [--data-home DIR]" name the
// home; the caller's own uid is used. Such a run has no more rights than its caller, so the
// options give nothing away; under pkexec they are refused.

#include "core/removal/path_safety.h"
#include "core/removal/permanent_removal.h"
#include "core/removal/privileged_helper_client.h"
#include "core/removal/trash.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <iostream>
#include <pwd.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace sondrel;

// Largest stdin accepted; a batch of paths is far smaller.
constexpr std::size_t kMaxInput = 64U << 20U;

enum HelperExit : int { kAllDone = 0, kSomeFailed = 1, kBadStart = 2 };

struct Caller {
    uid_t uid = 0;
    gid_t gid = 0;
    std::string home;
    std::string dataHome;
};

int refuseStart(const std::string& message) {
    std::cerr << "sondrel-helper: " << message << '\n';
    return kBadStart;
}

bool parseUid(const char* text, uid_t& uid) {
    if (text == nullptr || *text == '\0') {
        return false;
    }
    unsigned long long value = 0;
    for (const char* p = text; *p != '\0'; ++p) {
        if (*p < '0' || *p > '9' || value > 0xFFFFFFFFULL) {
            return false;
        }
        value = value * 10 + static_cast<unsigned long long>(*p - '0');
    }
    uid = static_cast<uid_t>(value);
    return value <= 0xFFFFFFFEULL;
}

// Gives the trashed item back to its user, without following links or leaving its file system.
void giveTreeTo(int dirFd, dev_t device, const Caller& caller) {
    const int copy = dup(dirFd);
    DIR* dir = copy >= 0 ? fdopendir(copy) : nullptr;
    if (dir == nullptr) {
        if (copy >= 0) {
            close(copy);
        }
        return;
    }
    while (const dirent* entry = readdir(dir)) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        fchownat(dirFd, entry->d_name, caller.uid, caller.gid, AT_SYMLINK_NOFOLLOW);
        const int child =
            openat(dirFd, entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (child >= 0) {
            struct stat info {};
            if (fstat(child, &info) == 0 && info.st_dev == device) {
                giveTreeTo(child, device, caller);
            }
            close(child);
        }
    }
    closedir(dir);
}

void giveItemTo(const std::string& path, const Caller& caller) {
    if (geteuid() == caller.uid) {
        return;
    }
    lchown(path.c_str(), caller.uid, caller.gid);
    const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd >= 0) {
        struct stat info {};
        if (fstat(fd, &info) == 0) {
            giveTreeTo(fd, info.st_dev, caller);
        }
        close(fd);
    }
}

// The roots the client asked for, narrowed to those inside the caller's home.
std::vector<std::string> narrowedRoots(const std::vector<std::string>& asked,
                                       const std::string& home) {
    std::vector<std::string> roots;
    for (const std::string& root : asked) {
        const std::optional<std::string> normal = normalizeAbsolutePath(root);
        if (normal && isWithinFolder(*normal, home)) {
            roots.push_back(*normal);
        } else {
            std::cerr << "sondrel-helper: ignoring a root outside the home\n";
        }
    }
    if (roots.empty()) {
        roots.push_back(home);
    }
    return roots;
}

// Handles one path; returns the failure message, empty on success.
std::string handle(HelperVerb verb, const std::string& path, const Caller& caller,
                   const std::vector<std::string>& roots) {
    if (path.empty()) {
        return "empty path";
    }
    const PathVerdict verdict = checkRemovablePath(path, caller.home, roots);
    if (verdict != PathVerdict::allowed) {
        return "refused: " + std::string(describe(verdict));
    }
    if (!pathExists(path)) {
        return {};
    }
    if (verb == HelperVerb::remove) {
        const RemovalReport report = removePermanently(path, caller.dataHome + "/Trash");
        if (report.removed) {
            return {};
        }
        return report.failures.empty() ? "not removed" : report.failures.front().reason;
    }
    clearImmutableFlags(path);
    TrashContext context;
    context.home = caller.home;
    context.dataHome = caller.dataHome;
    context.uid = caller.uid;
    context.gid = caller.gid;
    const TrashResult result = moveToTrash(path, context);
    if (!result.ok) {
        return result.error;
    }
    giveItemTo(result.trashedPath, caller);
    return pathExists(path) ? "still present after the move" : "";
}

int run(int argc, char** argv) {
    if (argc < 2) {
        return refuseStart("usage: sondrel-helper remove|trash < NUL-separated paths");
    }
    const std::string verbName = argv[1];
    HelperVerb verb = HelperVerb::remove;
    if (verbName == "trash") {
        verb = HelperVerb::trash;
    } else if (verbName != "remove") {
        return refuseStart("unknown verb");
    }
    std::string testHome;
    std::string testDataHome;
    for (int i = 2; i < argc; ++i) {
        const std::string arg = argv[i];
        if ((arg == "--home" || arg == "--data-home") && i + 1 < argc) {
            (arg == "--home" ? testHome : testDataHome) = argv[++i];
        } else {
            return refuseStart("unknown argument");
        }
    }

    Caller caller;
    if (const char* pkexecUid = std::getenv("PKEXEC_UID")) {
        if (!testHome.empty() || !testDataHome.empty()) {
            return refuseStart("test options are not accepted under pkexec");
        }
        if (!parseUid(pkexecUid, caller.uid)) {
            return refuseStart("PKEXEC_UID is not a user id");
        }
        const passwd* entry = getpwuid(caller.uid);
        if (entry == nullptr || entry->pw_dir == nullptr) {
            return refuseStart("the calling user has no home folder");
        }
        caller.gid = entry->pw_gid;
        caller.home = entry->pw_dir;
    } else {
        if (testHome.empty()) {
            return refuseStart("not started by pkexec (test mode needs --home DIR)");
        }
        caller.uid = getuid();
        caller.gid = getgid();
        caller.home = testHome;
    }
    const std::optional<std::string> home = normalizeAbsolutePath(caller.home);
    if (!home || *home == "/") {
        return refuseStart("the home folder is not a clean absolute path");
    }
    caller.home = *home;
    caller.dataHome = testDataHome.empty() ? caller.home + "/.local/share" : testDataHome;
    if (!normalizeAbsolutePath(caller.dataHome) ||
        !isWithinFolder(*normalizeAbsolutePath(caller.dataHome), caller.home)) {
        return refuseStart("the data folder must lie inside the home");
    }

    std::string input;
    char buffer[65536];
    ssize_t got = 0;
    while ((got = read(STDIN_FILENO, buffer, sizeof buffer)) != 0) {
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return refuseStart("cannot read the paths");
        }
        input.append(buffer, static_cast<std::size_t>(got));
        if (input.size() > kMaxInput) {
            return refuseStart("too much input");
        }
    }
    std::vector<std::string> askedRoots;
    std::vector<std::string> paths;
    if (!decodeHelperInput(input, askedRoots, paths)) {
        return refuseStart("malformed input");
    }
    const std::vector<std::string> roots = narrowedRoots(askedRoots, caller.home);

    int status = kAllDone;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const std::string failure = handle(verb, paths[i], caller, roots);
        if (!failure.empty()) {
            status = kSomeFailed;
        }
        std::cout << formatHelperResultLine(i, failure.empty(), failure) << std::flush;
    }
    return status;
}

} // namespace

int main(int argc, char** argv) {
    umask(077);
    return run(argc, argv);
}
