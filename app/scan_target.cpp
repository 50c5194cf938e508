#include "app/scan_target.h"

#include "app/qt_conversions.h"
#include "core/apps/app_file_access.h"

#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <dirent.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

bool isBoxStyle(const QString& name) {
    return name == QLatin1String("Dropbox") || name == QLatin1String("Box");
}

CloudFolder makeCloud(const QString& name, const QString& path) {
    return {name, path,
            isBoxStyle(name) ? QStringLiteral("cube.box.fill") : QStringLiteral("cloud.fill")};
}

void sortByName(std::vector<CloudFolder>& folders, std::size_t from) {
    std::sort(folders.begin() + static_cast<std::ptrdiff_t>(from), folders.end(),
              [](const CloudFolder& a, const CloudFolder& b) {
                  return QString::localeAwareCompare(a.name, b.name) < 0;
              });
}

// The names of the folders in `folder` (hidden ones included, links to folders too, as a file
// dialog shows them), byte-wise sorted; empty when it cannot be listed.
QStringList subfolders(const QString& folder) {
    const std::string path = toPathBytes(folder);
    std::vector<std::string> names;
    for (const FolderEntry& entry : listFolder(path)) {
        struct stat info {};
        const bool isFolder =
            entry.type == DT_DIR ||
            ((entry.type == DT_LNK || entry.type == DT_UNKNOWN) &&
             ::stat((path + "/" + entry.name).c_str(), &info) == 0 && S_ISDIR(info.st_mode));
        if (isFolder) {
            names.push_back(entry.name);
        }
    }
    std::sort(names.begin(), names.end());
    QStringList out;
    for (const std::string& name : names) {
        out.push_back(toFileQString(name));
    }
    return out;
}

// /proc/self/mounts escapes space, tab, newline and backslash as \ooo octal.
std::string unescapeMountField(const std::string& field) {
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            const std::string digits = field.substr(i + 1, 3);
            if (digits.size() == 3 && std::all_of(digits.begin(), digits.end(),
                                                  [](char c) { return c >= '0' && c <= '7'; })) {
                out.push_back(static_cast<char>(std::stoi(digits, nullptr, 8)));
                i += 3;
                continue;
            }
        }
        out.push_back(field[i]);
    }
    return out;
}

void addLinuxHomeFolders(const Locations& locations, std::vector<CloudFolder>& out) {
    const std::size_t from = out.size();
    static const char* const kNames[] = {"Dropbox", "Nextcloud", "OneDrive", "pCloudDrive",
                                         "Google Drive"};
    for (const char* name : kNames) {
        const QString path = toFileQString(locations.home + "/" + name);
        if (QFileInfo(path).isDir()) {
            out.push_back(makeCloud(cloudProviderName(QString::fromLatin1(name)), path));
        }
    }
    sortByName(out, from);
}

void addGvfsMounts(const std::string& gvfsDir, std::vector<CloudFolder>& out) {
    const std::size_t from = out.size();
    const QString dir = toFileQString(gvfsDir);
    for (const QString& entry : subfolders(dir)) {
        const QString name = gvfsCloudName(entry);
        if (!name.isEmpty()) {
            out.push_back(makeCloud(name, dir + QLatin1Char('/') + entry));
        }
    }
    sortByName(out, from);
}

void addRcloneMounts(const std::string& mountsText, uid_t uid, std::vector<CloudFolder>& out) {
    const std::size_t from = out.size();
    std::istringstream lines(mountsText);
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string device;
        std::string mountPoint;
        std::string type;
        if (!(fields >> device >> mountPoint >> type) || type != "fuse.rclone") {
            continue;
        }
        mountPoint = unescapeMountField(mountPoint);
        device = unescapeMountField(device);
        struct stat info {};
        if (::stat(mountPoint.c_str(), &info) != 0 || info.st_uid != uid) {
            continue;
        }
        QString remote = toDisplayQString(device);
        if (remote.endsWith(QLatin1Char(':'))) {
            remote.chop(1);
        }
        out.push_back(makeCloud(remote + QStringLiteral(" (rclone)"), toFileQString(mountPoint)));
    }
    sortByName(out, from);
}

void addMacosFolders(const Locations& locations, std::vector<CloudFolder>& out) {
    const QString home = toFileQString(locations.home);
    const QString iCloud = home + QStringLiteral("/Library/Mobile Documents/com~apple~CloudDocs");
    if (QFileInfo(iCloud).isDir()) {
        out.push_back(makeCloud(QStringLiteral("iCloud Drive"), iCloud));
    }
    const std::size_t from = out.size();
    const QString storage = home + QStringLiteral("/Library/CloudStorage");
    for (const QString& entry : subfolders(storage)) {
        if (!entry.startsWith(QLatin1Char('.'))) {
            out.push_back(makeCloud(cloudProviderName(entry), storage + QLatin1Char('/') + entry));
        }
    }
    sortByName(out, from);
}

} // namespace

QVariantMap ScanTarget::toVariantMap() const {
    QString kindText;
    switch (kind) {
    case ScanTargetKind::folder:
        kindText = QStringLiteral("folder");
        break;
    case ScanTargetKind::cloud:
        kindText = QStringLiteral("cloud");
        break;
    case ScanTargetKind::custom:
        kindText = QStringLiteral("custom");
        break;
    }
    return {{QStringLiteral("label"), label},
            {QStringLiteral("path"), path},
            {QStringLiteral("symbol"), symbol},
            {QStringLiteral("kind"), kindText}};
}

QString cloudProviderName(const QString& folderName) {
    const QString provider = folderName.section(QLatin1Char('-'), 0, 0);
    if (provider == QLatin1String("GoogleDrive")) {
        return QStringLiteral("Google Drive");
    }
    if (provider == QLatin1String("pCloudDrive") || provider == QLatin1String("pCloud")) {
        return QStringLiteral("pCloud Drive");
    }
    return provider.isEmpty() ? folderName : provider;
}

QString gvfsCloudName(const QString& mountName) {
    const QString scheme = mountName.section(QLatin1Char(':'), 0, 0);
    QString host;
    QString user;
    for (const QString& pair : mountName.section(QLatin1Char(':'), 1).split(QLatin1Char(','))) {
        if (pair.startsWith(QLatin1String("host="))) {
            host = pair.mid(5);
        } else if (pair.startsWith(QLatin1String("user="))) {
            user = pair.mid(5);
        }
    }
    if (scheme == QLatin1String("google-drive")) {
        const QString account = user.isEmpty() ? host : user + QLatin1Char('@') + host;
        return account.isEmpty() ? QStringLiteral("Google Drive")
                                 : QStringLiteral("Google Drive (%1)").arg(account);
    }
    if (scheme == QLatin1String("onedrive")) {
        return QStringLiteral("OneDrive");
    }
    if (scheme == QLatin1String("dav") || scheme == QLatin1String("davs")) {
        return host.isEmpty() ? QStringLiteral("WebDAV") : QStringLiteral("WebDAV (%1)").arg(host);
    }
    return {};
}

std::vector<CloudFolder> detectCloudFolders(const Locations& locations, const std::string& gvfsDir,
                                            const std::string& mountsText, uid_t uid) {
    std::vector<CloudFolder> found;
    if (locations.layout == HomeLayout::macos) {
        addMacosFolders(locations, found);
        return found;
    }
    addLinuxHomeFolders(locations, found);
    addGvfsMounts(gvfsDir, found);
    addRcloneMounts(mountsText, uid, found);
    return found;
}

std::vector<CloudFolder> detectCloudFoldersForCurrentUser(const Locations& locations) {
    const uid_t uid = ::getuid();
    std::ifstream mounts("/proc/self/mounts");
    std::stringstream text;
    text << mounts.rdbuf();
    return detectCloudFolders(locations, "/run/user/" + std::to_string(uid) + "/gvfs", text.str(),
                              uid);
}

std::vector<ScanTarget> scanTargetMenu(const Locations& locations,
                                       const std::vector<CloudFolder>& cloudFolders) {
    const bool mac = locations.layout == HomeLayout::macos;
    std::vector<ScanTarget> menu;
    menu.push_back({QStringLiteral("Home Folder (~/)"), toFileQString(locations.home),
                    QStringLiteral("house.fill"), ScanTargetKind::folder});
    if (mac) {
        menu.push_back({QStringLiteral("Applications (/Applications)"),
                        QStringLiteral("/Applications"), QStringLiteral("app.fill"),
                        ScanTargetKind::folder});
        menu.push_back({QStringLiteral("Entire Mac Drive (/)"), QStringLiteral("/"),
                        QStringLiteral("internaldrive.fill"), ScanTargetKind::folder});
    } else {
        menu.push_back({QStringLiteral("Applications (/usr)"), QStringLiteral("/usr"),
                        QStringLiteral("app.fill"), ScanTargetKind::folder});
        menu.push_back({QStringLiteral("Entire Drive (/)"), QStringLiteral("/"),
                        QStringLiteral("internaldrive.fill"), ScanTargetKind::folder});
    }
    for (const char* kind : {"Downloads", "Documents", "Desktop"}) {
        menu.push_back({QString::fromLatin1(kind), toFileQString(locations.userDir(kind)),
                        QStringLiteral("folder.fill"), ScanTargetKind::folder});
    }
    for (const CloudFolder& cloud : cloudFolders) {
        menu.push_back({cloud.name, cloud.path, cloud.symbol, ScanTargetKind::cloud});
    }
    menu.push_back({QStringLiteral("Choose Custom Folder..."), QString(), QStringLiteral("folder"),
                    ScanTargetKind::custom});
    return menu;
}

} // namespace sondrel
