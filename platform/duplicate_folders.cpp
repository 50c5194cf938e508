#include "platform/duplicate_folders.h"

#include <algorithm>
#include <unistd.h>

namespace sondrel {

std::vector<std::string> defaultDuplicateFolders(const Locations& locations) {
    const bool mac = locations.layout == HomeLayout::macos;
    const char* const kinds[] = {"Downloads", "Documents", "Desktop", mac ? "Movies" : "Videos",
                                 "Pictures"};
    std::vector<std::string> folders;
    for (const char* kind : kinds) {
        std::string folder = locations.userDir(kind);
        if (folder == locations.home || folder.empty() ||
            std::find(folders.begin(), folders.end(), folder) != folders.end()) {
            continue;
        }
        folders.push_back(std::move(folder));
    }
    return folders;
}

} // namespace sondrel
