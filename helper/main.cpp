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
#include "core/removal/removal_chains.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
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

// realpath() as a string, or nothing when the path cannot be resolved.
std::optional<std::string> resolved(const std::string& path) {
    char buffer[PATH_MAX];
    if (realpath(path.c_str(), buffer) == nullptr) {
        return std::nullopt;
    }
    return std::string(buffer);
}

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

// The roots the client asked for, resolved and narrowed to those inside the caller's home.
std::vector<std::string> narrowedRoots(const std::vector<std::string>& asked,
                                       const std::string& home) {
    std::vector<std::string> roots;
    for (const std::string& root : asked) {
        const std::optional<std::string> normal = normalizeAbsolutePath(root);
        const std::string resolvedRoot = normal ? resolved(*normal).value_or(*normal) : "";
        if (normal && isWithinFolder(*normal, home) && isWithinFolder(resolvedRoot, home)) {
            roots.push_back(resolvedRoot);
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
    // From here on only the resolved path is used, checked once more, and every folder on it is
    // opened without following links: swapping one for a link now makes the step fail.
    const std::string normal = *normalizeAbsolutePath(path);
    const std::size_t slash = normal.rfind('/');
    const std::optional<std::string> parent =
        resolved(slash == 0 ? std::string("/") : normal.substr(0, slash));
    if (!parent) {
        return "cannot find the item's folder";
    }
    const std::string item = (*parent == "/" ? "" : *parent) + normal.substr(slash);
    const PathVerdict again = checkRemovablePath(item, caller.home, roots);
    if (again != PathVerdict::allowed) {
        return "refused: " + std::string(describe(again));
    }
    if (verb == HelperVerb::remove) {
        const RemovalReport report = removePermanently(item, caller.dataHome + "/Trash", true);
        if (report.removed) {
            return {};
        }
        return report.failures.empty() ? "not removed" : report.failures.front().reason;
    }
    clearImmutableFlags(item);
    RemovalContext context =
        RemovalContext::forUser(caller.home, caller.dataHome, roots, caller.uid, caller.gid);
    context.trash.strictPaths = true;
    const TrashResult result = moveToTrash(item, context.trash);
    if (!result.ok) {
        return result.error;
    }
    if (!result.handBackProblem.empty()) {
        // The user could not empty that part of the Trash: not a success.
        return "moved to the Trash, but part of it could not be given back to you: " +
               result.handBackProblem;
    }
    return pathExists(item) ? "still present after the move" : "";
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
    // The home and the data folder are used resolved, so that the no-follow walks below work.
    const std::optional<std::string> home = normalizeAbsolutePath(caller.home);
    const std::optional<std::string> realHome = home ? resolved(*home) : std::nullopt;
    if (!realHome || *realHome == "/") {
        return refuseStart("the home folder is not a clean absolute path of a folder");
    }
    caller.home = *realHome;
    const std::optional<std::string> dataHome =
        normalizeAbsolutePath(testDataHome.empty() ? *home + "/.local/share" : testDataHome);
    if (!dataHome) {
        return refuseStart("the data folder is not a clean absolute path");
    }
    caller.dataHome = resolved(*dataHome).value_or(*dataHome);
    if (!isWithinFolder(caller.dataHome, caller.home)) {
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
