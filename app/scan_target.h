#pragma once
// Scan targets offered by the storage section's toolbar menu: fixed folders (home, the system's
// application folder, the whole drive, the desktop's user folders), the cloud storage folders
// found on this machine, and the custom-folder entry.
//
// Everything here is a pure function of its inputs (a Locations, a listing of mounts, the
// folder of GVfs mounts) plus reading those folders, so tests run it against a fake home.

#include "platform/locations.h"

#include <QString>
#include <QVariantMap>
#include <string>
#include <sys/types.h>
#include <vector>

namespace sondrel {

/// How a menu entry starts its scan.
enum class ScanTargetKind : unsigned char {
    folder, ///< set the target and scan at once
    cloud,  ///< check that the folder can be listed first; ask for permission when not
    custom, ///< ask the user for a folder
};

/// One entry of the scan-target menu.
struct ScanTarget {
    QString label;  ///< menu text, for example "Home Folder (~/)" or "Dropbox"
    QString path;   ///< absolute path as Qt stores file names (empty for the custom entry)
    QString symbol; ///< icon symbol name ("cloud.fill", ...)
    ScanTargetKind kind = ScanTargetKind::folder;

    /// The entry as a map for QML: "label", "path", "symbol", "kind" ("folder", "cloud",
    /// "custom").
    QVariantMap toVariantMap() const;
};

/// A cloud storage folder found on this machine.
struct CloudFolder {
    QString name;   ///< provider name shown in the menu ("Google Drive", "OneDrive", ...)
    QString path;   ///< absolute path as Qt stores file names
    QString symbol; ///< "cube.box.fill" for box-style providers (Dropbox, Box), else "cloud.fill"
};

/// Display name of a provider folder found in a CloudStorage folder or in the home folder:
/// "GoogleDrive-alice@example.com" -> "Google Drive", "OneDrive-Personal" -> "OneDrive",
/// "Dropbox" -> "Dropbox", "pCloudDrive" -> "pCloud Drive"; an unknown name is returned as the
/// part before the first '-' (or whole).
QString cloudProviderName(const QString& folderName);

/// Display name of one GVfs mount folder name ("google-drive:host=gmail.com,user=alice" ->
/// "Google Drive (alice@gmail.com)", "dav:host=cloud.example.org,ssl=true" -> "WebDAV
/// (cloud.example.org)"); empty for mounts that are not cloud storage (sftp, smb, mtp, ...).
QString gvfsCloudName(const QString& mountName);

/// The cloud folders that exist for `locations`:
/// - Linux layout: ~/Dropbox, ~/Nextcloud, ~/OneDrive, ~/pCloudDrive, ~/Google Drive; cloud
///   mounts found in `gvfsDir` (/run/user/$uid/gvfs); and rclone mounts listed in `mountsText`
///   (the text of /proc/self/mounts) whose mount point is owned by `uid`.
/// - macOS layout: ~/Library/Mobile Documents/com~apple~CloudDocs ("iCloud Drive") and every
///   folder inside ~/Library/CloudStorage.
/// Ordered as listed, each group sorted by name. Missing folders are skipped silently.
std::vector<CloudFolder> detectCloudFolders(const Locations& locations, const std::string& gvfsDir,
                                            const std::string& mountsText, uid_t uid);

/// The running user's cloud folders (reads /run/user/$uid/gvfs and /proc/self/mounts).
std::vector<CloudFolder> detectCloudFoldersForCurrentUser(const Locations& locations);

/// The whole menu, in order: "Home Folder (~/)", the application folder, the whole drive,
/// "Downloads", "Documents", "Desktop", one entry per cloud folder, "Choose Custom Folder...".
/// On Linux the application folder is /usr (where installed programs live) and the drive entry
/// reads "Entire Drive (/)".
std::vector<ScanTarget> scanTargetMenu(const Locations& locations,
                                       const std::vector<CloudFolder>& cloudFolders);

} // namespace sondrel
