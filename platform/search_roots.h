#pragma once
// The folders the large-file search walks, and the cloud folders that the search of the home
// folder adds. Everything is derived from a Locations (and, for the cloud folders, from the
// given mount listing), so a fake home is searched exactly like the user's.

#include "platform/locations.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace sondrel {

/// The cloud folders of `locations` that exist, as absolute paths:
/// - Linux layout: ~/Dropbox, ~/Nextcloud, ~/OneDrive, ~/pCloudDrive, ~/Google Drive; the
///   cloud mounts in `gvfsDir` (/run/user/$uid/gvfs: google-drive, onedrive, dav, davs); the
///   rclone mounts listed in `mountsText` (text of /proc/self/mounts) whose mount point `uid`
///   owns;
/// - macOS layout: ~/Library/CloudStorage and ~/Library/Mobile Documents/com~apple~CloudDocs.
/// In that order; folders that do not exist are left out. Reads the disk; any thread.
std::vector<std::string> cloudFolderPaths(const Locations& locations, const std::string& gvfsDir,
                                          const std::string& mountsText, uid_t uid);

/// cloudFolderPaths for the running user (/run/user/$uid/gvfs and /proc/self/mounts).
std::vector<std::string> cloudFolderPathsForCurrentUser(const Locations& locations);

/// The usual folders of a search: the user folders Downloads, Documents, Desktop, Videos (Movies
/// on macOS), Music and Pictures, in that order (through Locations::userDir on Linux).
std::vector<std::string> userSearchFolders(const Locations& locations);

/// True when `folder` is the home folder of `locations`: the same path once "." components,
/// ".." components and repeated or trailing slashes are resolved, or the same folder on disk.
bool isHomeFolder(const Locations& locations, const std::string& folder);

/// The roots of a search for `target`: with no target, userSearchFolders; with the home
/// folder, userSearchFolders followed by `cloudFolders`; with any other folder, that folder
/// alone (trailing slashes dropped).
std::vector<std::string> largeSearchRoots(const Locations& locations,
                                          const std::optional<std::string>& target,
                                          const std::vector<std::string>& cloudFolders);

} // namespace sondrel
