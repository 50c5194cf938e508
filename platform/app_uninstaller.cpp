#include "platform/app_uninstaller.h"

#include "core/apps/app_file_access.h"
#include "core/removal/removal_chains.h"
#include "core/util/path_text.h"
#include "platform/app_processes.h"

#include <chrono>
#include <unistd.h>

namespace sondrel {

namespace {

constexpr std::chrono::minutes kPackageToolTimeout{30};

bool pkexecDismissed(const SubprocessResult& result) {
    return result.started && (result.exitCode == 126 || result.exitCode == 127);
}

std::string lastLine(const std::string& text) {
    std::string trimmed = text;
    while (!trimmed.empty() && (trimmed.back() == '\n' || trimmed.back() == ' ')) {
        trimmed.pop_back();
    }
    const auto newline = trimmed.rfind('\n');
    return newline == std::string::npos ? trimmed : trimmed.substr(newline + 1);
}

PackageRemoval fromCommand(const SubprocessResult& result, bool throughPkexec) {
    PackageRemoval removal;
    if (result.succeeded()) {
        removal.removed = true;
    } else if (throughPkexec && pkexecDismissed(result)) {
        removal.cancelled = true;
        removal.message = "cancelled";
    } else if (!result.started) {
        removal.message = result.startError;
    } else {
        removal.message = lastLine(result.err.empty() ? result.out : result.err);
        if (removal.message.empty()) {
            removal.message =
                "the package tool failed with status " + std::to_string(result.status());
        }
    }
    return removal;
}

// pkcon reports a refused or dismissed authorisation in its output, not in its status.
PackageRemoval fromPackageKitClient(const SubprocessResult& result) {
    const std::string text = asciiLower(result.out + "\n" + result.err);
    if (result.started && !result.succeeded() &&
        (contains(text, "not authorized") || contains(text, "authenticat") ||
         contains(text, "authoriz"))) {
        return PackageRemoval{false, true, "cancelled"};
    }
    return fromCommand(result, false);
}

bool insideHome(const Locations& locations, const std::string& path) {
    return !path.empty() && isWithinFolder(path, locations.home) && path != locations.home;
}

std::string trashFailureText(const AppInfo& app) {
    return "Could not move " + app.name + (app.kind == AppKind::bundle ? ".app" : "") +
           " to Trash. Please verify permissions or administrator credentials.";
}

} // namespace

std::vector<std::string> parseSimulatedRemovals(const std::string& output) {
    std::vector<std::string> names;
    std::size_t start = 0;
    while (start < output.size()) {
        auto end = output.find('\n', start);
        if (end == std::string::npos) {
            end = output.size();
        }
        const std::string_view line(output.data() + start, end - start);
        start = end + 1;
        if (startsWith(line, "Remv ")) {
            const std::string_view rest = line.substr(5);
            names.emplace_back(rest.substr(0, rest.find(' ')));
        }
    }
    return names;
}

bool CommandPackageRemover::packageKitClientInstalled() {
    return access("/usr/bin/pkcon", X_OK) == 0;
}

std::vector<std::string> CommandPackageRemover::alsoRemoved(const AppInfo& app) {
    if (app.kind != AppKind::debian || app.package.empty()) {
        return {};
    }
    SubprocessRequest request;
    request.argv = {"apt-get", "-s", "remove", app.package};
    request.environment = {{"LC_ALL", "C"}};
    request.timeout = std::chrono::minutes(2);
    const SubprocessResult result = m_run(request);
    std::vector<std::string> others;
    for (std::string& name : parseSimulatedRemovals(result.out)) {
        if (name != app.package && name.substr(0, name.find(':')) != app.package) {
            others.push_back(std::move(name));
        }
    }
    return others;
}

PackageRemoval CommandPackageRemover::remove(const AppInfo& app) {
    SubprocessRequest request;
    request.timeout = kPackageToolTimeout;
    request.environment = {{"LC_ALL", "C"}};
    bool throughPkexec = true;
    switch (app.kind) {
    case AppKind::flatpak:
        request.argv = {
            "flatpak",          "uninstall", app.systemInstallation ? "--system" : "--user",
            "--noninteractive", "-y",        app.identifier};
        throughPkexec = false;
        break;
    case AppKind::debian:
        if (m_packageKit) {
            request.argv = {"pkcon", "--noninteractive", "remove", app.package};
            return fromPackageKitClient(m_run(request));
        }
        request.argv = {"pkexec", "/usr/bin/apt-get", "remove", "-y", app.package};
        request.environment["DEBIAN_FRONTEND"] = "noninteractive";
        break;
    case AppKind::snap:
        request.argv = {"pkexec", "/usr/bin/snap", "remove", app.package};
        break;
    default:
        return PackageRemoval{false, false, "not a package"};
    }
    return fromCommand(m_run(request), throughPkexec);
}

std::vector<std::string> appImageCompanions(const AppInfo& app, const Locations& locations) {
    std::vector<std::string> paths;
    if (insideHome(locations, app.desktopFile)) {
        paths.push_back(app.desktopFile);
    }
    if (app.icon.empty() || app.icon.find('/') != std::string::npos) {
        return paths;
    }
    const std::string icons = joinPath(locations.dataHome, "icons");
    for (const std::string& relative : findFilesBySuffix(icons, "", 8)) {
        const std::string_view name = lastPathComponent(relative);
        const auto dot = name.rfind('.');
        if (dot != std::string_view::npos && name.substr(0, dot) == app.icon) {
            paths.push_back(joinPath(icons, relative));
        }
    }
    return paths;
}

UninstallResult uninstallApp(const AppInfo& app, bool deleteAssociated, const Locations& locations,
                             const UninstallTools& tools) {
    UninstallResult result;
    if (tools.terminateProcesses) {
        result.terminated = terminateAppProcesses(app, tools.procRoot);
    }
    std::vector<std::string> appRoots{locations.home};
    appRoots.insert(appRoots.end(), locations.applicationDirs.begin(),
                    locations.applicationDirs.end());
    const RemovalContext appContext = RemovalContext::forUser(locations, appRoots);

    switch (app.kind) {
    case AppKind::bundle:
    case AppKind::appImage: {
        if (!safeMoveToTrash(app.location, appContext).removed) {
            result.error = trashFailureText(app);
            return result;
        }
        if (app.kind == AppKind::appImage) {
            const RemovalContext homeContext = RemovalContext::forUser(locations);
            for (const std::string& companion : appImageCompanions(app, locations)) {
                safeMoveToTrash(companion, homeContext);
            }
        }
        break;
    }
    case AppKind::flatpak:
    case AppKind::debian:
    case AppKind::snap: {
        if (tools.packages == nullptr) {
            result.error = "Could not uninstall " + app.name + ": no package tool is available.";
            return result;
        }
        const PackageRemoval removal = tools.packages->remove(app);
        if (removal.cancelled) {
            result.cancelled = true;
            result.error = "Uninstalling " + app.name + " was cancelled.";
            return result;
        }
        if (!removal.removed) {
            result.error = "Could not uninstall " + app.name + ": " + removal.message;
            return result;
        }
        break;
    }
    case AppKind::local:
        if (!insideHome(locations, app.desktopFile) ||
            !safeMoveToTrash(app.desktopFile, RemovalContext::forUser(locations)).removed) {
            result.error = "Could not uninstall " + app.name +
                           ": no package manager installed it; remove it the way it was installed.";
            return result;
        }
        break;
    }

    if (deleteAssociated) {
        std::vector<AssociatedItem> selected;
        for (const AssociatedItem& item : app.associatedItems) {
            if (item.isSelected && insideHome(locations, item.path)) {
                selected.push_back(item);
            }
        }
        const CancelToken never;
        result.leftovers = trashLeftovers(selected, RemovalContext::forUser(locations), never);
    }
    result.success = true;
    return result;
}

} // namespace sondrel
