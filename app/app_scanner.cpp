#include "app/app_scanner.h"

#include "app/file_reveal.h"
#include "app/qt_conversions.h"
#include "core/apps/leftover_trash.h"
#include "core/model/byte_format.h"
#include "core/model/platform_terms.h"
#include "core/removal/path_safety.h"
#include "core/util/path_text.h"
#include "platform/app_catalogue.h"
#include "platform/app_uninstaller.h"
#include "platform/locations.h"

#include <QLocale>
#include <algorithm>
#include <ctime>

namespace sondrel {

namespace {

QString term(const std::string& text) {
    return QString::fromStdString(withPlatformTerms(text, currentTextPlatform()));
}

QString sizeText(std::int64_t bytes) {
    return QString::fromStdString(formatBytes(bytes));
}

QVariantMap itemMap(const AssociatedItem& item) {
    return {
        {"itemId", QString::number(item.id)},
        {"path", toFileQString(item.path)},
        {"displayPath", toDisplayQString(item.path)},
        {"name", toDisplayQString(lastPathComponent(item.path))},
        {"typeName", QString::fromUtf8(displayName(item.type).data(),
                                       static_cast<int>(displayName(item.type).size()))},
        {"typeIcon", QString::fromUtf8(iconName(item.type).data(),
                                       static_cast<int>(iconName(item.type).size()))},
        {"sizeText", sizeText(item.size)},
        {"isSelected", item.isSelected},
    };
}

QVariantMap appMap(const AppInfo& app) {
    return {
        {"appId", QString::number(app.id)},
        {"name", toDisplayQString(app.name)},
        {"identifier", toDisplayQString(app.identifier)},
        {"version", toDisplayQString(app.version)},
        {"kind", QString::fromUtf8(appKindKey(app.kind).data())},
        {"iconPath", app.iconFile.empty() ? QString() : toFileQString(app.iconFile)},
        {"totalText", sizeText(app.totalSize())},
        {"leftoverText", sizeText(app.leftoverSize()) + QStringLiteral(" junk")},
        {"hasLeftovers", !app.associatedItems.empty()},
    };
}

// What a removal job hands back.
struct RemovalDone {
    std::uint64_t id = 0; ///< the app or orphan
    bool removed = false;
    QString message;
};

} // namespace

AppScanner::AppScanner(const Locations& locations, const SystemRoots& roots,
                       std::shared_ptr<PackageRemover> packages, QObject* parent)
    : QObject(parent), m_locations(std::make_unique<const Locations>(locations)),
      m_roots(std::make_unique<const SystemRoots>(roots)), m_packages(std::move(packages)) {
    connect(&m_scanJob, &BackgroundJob::busyChanged, this, &AppScanner::isScanningChanged);
    connect(&m_removalJob, &BackgroundJob::busyChanged, this, &AppScanner::isRemovingChanged);
}

AppScanner::~AppScanner() = default;

void AppScanner::setStatus(const QString& message) {
    if (m_statusMessage != message) {
        m_statusMessage = message;
        emit statusMessageChanged();
    }
}

void AppScanner::setSearchText(const QString& text) {
    if (m_searchText != text) {
        m_searchText = text;
        emit searchTextChanged();
        emit appsChanged();
    }
}

QVariantList AppScanner::filteredApps() const {
    QVariantList list;
    const QString needle = QLocale().toLower(m_searchText);
    for (const AppInfo& app : m_apps) {
        if (needle.isEmpty() || QLocale().toLower(toDisplayQString(app.name)).contains(needle)) {
            list.append(appMap(app));
        }
    }
    return list;
}

QVariantList AppScanner::orphanedLeftoversList() const {
    QVariantList list;
    for (const AssociatedItem& item : m_orphans) {
        list.append(itemMap(item));
    }
    return list;
}

const AppInfo* AppScanner::findApp(const QString& appId) const {
    const auto it = std::find_if(m_apps.begin(), m_apps.end(), [&](const AppInfo& app) {
        return QString::number(app.id) == appId;
    });
    return it == m_apps.end() ? nullptr : &*it;
}

void AppScanner::setSelectedAppId(const QString& appId) {
    const QString id = findApp(appId) != nullptr ? appId : QString();
    if (m_selectedAppId != id) {
        m_selectedAppId = id;
        m_alsoRemoved.clear();
        emit selectedAppChanged();
        planSelected();
    }
}

void AppScanner::planSelected() {
    const AppInfo* app = findApp(m_selectedAppId);
    if (app == nullptr || m_packages == nullptr || app->kind != AppKind::debian) {
        return;
    }
    m_planJob.start([packages = m_packages,
                     copy = *app](const JobContext&) { return packages->alsoRemoved(copy); },
                    [this, appId = m_selectedAppId](const std::vector<std::string>& names) {
                        if (appId != m_selectedAppId) {
                            return;
                        }
                        m_alsoRemoved.clear();
                        for (const std::string& name : names) {
                            m_alsoRemoved.append(toDisplayQString(name));
                        }
                        emit selectedAppChanged();
                    });
}

QVariantMap AppScanner::selectedApp() const {
    const AppInfo* app = findApp(m_selectedAppId);
    if (app == nullptr) {
        // Every key present, so that the page's bindings read empty texts, not undefined.
        QVariantMap empty = appMap(AppInfo{});
        empty.insert("appId", QString());
        for (const char* key : {"bundleText", "location", "displayLocation", "uninstallText"}) {
            empty.insert(key, QString());
        }
        empty.insert("items", QVariantList());
        return empty;
    }
    QVariantMap map = appMap(*app);
    map.insert("bundleText", sizeText(app->bundleSize));
    map.insert("location", toFileQString(app->location));
    map.insert("displayLocation", toDisplayQString(app->location));
    QVariantList items;
    for (const AssociatedItem& item : app->associatedItems) {
        items.append(itemMap(item));
    }
    map.insert("items", items);
    map.insert("uninstallText", QStringLiteral("Uninstall ") + toDisplayQString(app->name));
    return map;
}

QString AppScanner::confirmText() const {
    QString text = term("This will move the application bundle and all selected ~/Library "
                        "leftover files into the macOS Trash. You can restore them from Trash if "
                        "needed.");
    if (!m_alsoRemoved.isEmpty()) {
        text += QStringLiteral("\n\nRemoving this package also removes: ") +
                m_alsoRemoved.join(QStringLiteral(", ")) + QStringLiteral(".");
    }
    return text;
}

QVariantMap AppScanner::labels() {
    return {
        {"title", QStringLiteral("App Uninstaller")},
        {"subtitle", term("Completely remove apps and wipe hidden ~/Library caches, containers, "
                          "and residues")},
        {"scanButton", QStringLiteral("Scan Apps")},
        {"installedTab", QStringLiteral("Installed Apps (%1)")},
        {"orphansTab", QStringLiteral("Orphaned Residues (%1)")},
        {"searchPlaceholder", QStringLiteral("Search installed apps...")},
        {"noApps", QStringLiteral("No applications found")},
        {"selectPrompt", QStringLiteral("Select an Application")},
        {"filesSection", QStringLiteral("Installed Files & Residues")},
        {"bundleRow", term("Application Binary (.app)")},
        {"footprint", QStringLiteral("Total Storage Footprint")},
        {"reveal", term("Reveal in Finder")},
        {"confirmCancel", QStringLiteral("Cancel")},
        {"confirmButton", term("Move App & Leftovers to Trash")},
        {"orphansTitle", QStringLiteral("Leftover Junk from Previously Deleted Apps")},
        {"orphansText", term("These folders in ~/Library belong to applications that are no "
                             "longer installed on your Mac.")},
        {"trashButton", QStringLiteral("Trash")},
        {"totalPrefix", QStringLiteral("Total: ")},
        {"ok", QStringLiteral("OK")},
    };
}

void AppScanner::scanApps() {
    const bool started = m_scanJob.start(
        [locations = *m_locations, roots = *m_roots](const JobContext& job) {
            return discoverApps(locations, roots, job.cancelToken(),
                                static_cast<std::int64_t>(std::time(nullptr)));
        },
        [this](AppDiscovery found) {
            m_apps = std::move(found.apps);
            m_orphans = std::move(found.orphans);
            if (findApp(m_selectedAppId) == nullptr) {
                m_selectedAppId.clear();
            }
            setStatus(QString::fromStdString(appScanFoundText(m_apps.size(), m_orphans.size())));
            emit appsChanged();
            emit orphansChanged();
            emit selectedAppChanged();
            emit scanFinished();
        });
    if (started) {
        setStatus(QString::fromUtf8(kAppScanDiscoveringText.data(),
                                    static_cast<int>(kAppScanDiscoveringText.size())));
    }
}

bool AppScanner::uninstall(const QString& appId, bool deleteAssociated) {
    const AppInfo* app = findApp(appId);
    if (app == nullptr || m_removalJob.isBusy()) {
        return false;
    }
    return m_removalJob.start(
        [copy = *app, deleteAssociated, locations = *m_locations,
         packages = m_packages](const JobContext&) {
            UninstallTools tools;
            tools.packages = packages.get();
            const UninstallResult result = uninstallApp(copy, deleteAssociated, locations, tools);
            RemovalDone done;
            done.id = copy.id;
            done.removed = result.success;
            if (result.success) {
                done.message = term("Successfully uninstalled " + copy.name +
                                    " and moved application bundle and residues to Trash.");
            } else if (!result.error.empty()) {
                done.message = QString::fromStdString(result.error);
            } else {
                done.message = QString::fromStdString("Failed to uninstall " + copy.name + ".");
            }
            return done;
        },
        [this](const RemovalDone& done) {
            if (done.removed) {
                std::erase_if(m_apps, [&](const AppInfo& entry) { return entry.id == done.id; });
                if (m_selectedAppId == QString::number(done.id)) {
                    m_selectedAppId.clear();
                    m_alsoRemoved.clear();
                }
                emit appsChanged();
                emit selectedAppChanged();
            }
            emit uninstallFinished(done.removed, done.message);
        });
}

bool AppScanner::trashOrphan(const QString& itemId) {
    const auto it =
        std::find_if(m_orphans.begin(), m_orphans.end(), [&](const AssociatedItem& item) {
            return QString::number(item.id) == itemId;
        });
    if (it == m_orphans.end() || m_removalJob.isBusy()) {
        return false;
    }
    return m_removalJob.start(
        [item = *it, locations = *m_locations](const JobContext& job) {
            const LeftoverTrashReport report =
                trashLeftovers({item}, RemovalContext::forUser(locations), job.cancelToken());
            return RemovalDone{item.id, report.removed == 1, {}};
        },
        [this](const RemovalDone& done) {
            if (done.removed) {
                std::erase_if(m_orphans,
                              [&](const AssociatedItem& item) { return item.id == done.id; });
                emit orphansChanged();
            }
            emit orphanTrashed(QString::number(done.id), done.removed);
        });
}

void AppScanner::setItemSelected(const QString& appId, const QString& itemId, bool selected) {
    for (AppInfo& app : m_apps) {
        if (QString::number(app.id) != appId) {
            continue;
        }
        for (AssociatedItem& item : app.associatedItems) {
            if (QString::number(item.id) == itemId && item.isSelected != selected) {
                item.isSelected = selected;
                if (appId == m_selectedAppId) {
                    emit selectedAppChanged();
                }
            }
        }
    }
}

void AppScanner::reveal(const QString& path) const {
    revealInFileManager(path);
}

const AppInfo* AppScanner::appForPath(const std::string& path) const {
    for (const AppInfo& app : m_apps) {
        for (const std::string& own : {app.location, app.desktopFile}) {
            if (!own.empty() && (path == own || isWithinFolder(path, own))) {
                return &app;
            }
        }
    }
    return nullptr;
}

bool AppScanner::knowsPath(const QString& path) const {
    return appForPath(toPathBytes(path)) != nullptr;
}

bool AppScanner::selectAppForPath(const QString& path) {
    const AppInfo* app = appForPath(toPathBytes(path));
    if (app == nullptr) {
        return false;
    }
    setSearchText(QString());
    setSelectedAppId(QString::number(app->id));
    return true;
}

} // namespace sondrel
