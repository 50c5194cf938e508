// The macOS layout: application bundles directly inside the application folders.

#include "core/apps/app_file_access.h"
#include "core/apps/info_plist.h"
#include "core/util/path_text.h"
#include "platform/app_catalogue.h"

#include <dirent.h>

namespace sondrel {

std::vector<AppInfo> listMacosBundles(const Locations& locations, const CancelToken& cancel) {
    std::vector<AppInfo> apps;
    for (const std::string& folder : locations.applicationDirs) {
        for (const FolderEntry& entry : listFolder(folder)) {
            if (cancel.isCancelled()) {
                return apps;
            }
            if (entry.name.front() == '.' || asciiLower(pathExtension(entry.name)) != "app") {
                continue;
            }
            AppInfo app;
            app.id = newItemId();
            app.kind = AppKind::bundle;
            app.name = entry.name.substr(0, entry.name.size() - 4);
            app.location = joinPath(folder, entry.name);
            std::map<std::string, std::string> info;
            if (auto text =
                    readSmallFile(joinPath(app.location, "Contents/Info.plist"), 4 * 1024 * 1024)) {
                if (auto strings = parseInfoPlistStrings(*text)) {
                    info = std::move(*strings);
                }
            }
            const auto identifier = info.find("CFBundleIdentifier");
            app.identifier = identifier != info.end() && !identifier->second.empty()
                                 ? identifier->second
                                 : "unknown." + asciiLower(app.name);
            const auto version = info.find("CFBundleShortVersionString");
            app.version = version != info.end() ? version->second : "1.0";
            if (const auto icon = info.find("CFBundleIconFile"); icon != info.end()) {
                app.icon = joinPath(joinPath(app.location, "Contents/Resources"), icon->second);
            }
            app.bundleSize = appItemSize(app.location, locations.layout, cancel);
            if (const auto executable = info.find("CFBundleExecutable"); executable != info.end()) {
                app.executables.push_back(
                    joinPath(joinPath(app.location, "Contents/MacOS"), executable->second));
            }
            apps.push_back(std::move(app));
        }
    }
    return apps;
}

} // namespace sondrel
