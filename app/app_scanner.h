#pragma once
// AppScanner: the App Uninstaller's engine. It discovers the installed applications with their
// leftovers and the orphaned leftovers (platform/app_catalogue.h) off the GUI thread, publishes
// them for the page (filtered by the search text), uninstalls one application and trashes one
// orphan off the GUI thread, and hands the orphans to Smart Care.
//
// Background work: a discovery job and a removal job (BackgroundJob each). A scan request while
// a scan runs is ignored; so is a removal while another removal runs. A finished scan replaces
// both lists wholesale; a finished removal takes out only what it removed.
//
// Threading: GUI thread only; the package tools and the catalogue run on the workers.

#include "app/background_job.h"
#include "core/apps/app_info.h"

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>
#include <memory>
#include <vector>

namespace sondrel {

struct Locations;
struct SystemRoots;
class PackageRemover;

class AppScanner : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    /// An uninstall or an orphan trash is under way.
    Q_PROPERTY(bool isRemoving READ isRemoving NOTIFY isRemovingChanged)
    /// "Discovering installed applications...", then "Found N applications, M leftover items".
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    /// The case-insensitive filter of the installed list.
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    /// The installed apps the search keeps, in the scanner's order (largest total first), as
    /// maps (see appMap in the source: appId, name, identifier, version, kind, icon, iconPath,
    /// totalText, leftoverText, hasLeftovers).
    Q_PROPERTY(QVariantList filteredApps READ filteredApps NOTIFY appsChanged)
    Q_PROPERTY(int installedCount READ installedCount NOTIFY appsChanged)
    /// The orphans as maps: itemId, path, name, typeName, typeIcon, sizeText.
    Q_PROPERTY(QVariantList orphanedLeftovers READ orphanedLeftoversList NOTIFY orphansChanged)
    Q_PROPERTY(int orphanCount READ orphanCount NOTIFY orphansChanged)
    /// The app shown in the detail pane ("" for none).
    Q_PROPERTY(
        QString selectedAppId READ selectedAppId WRITE setSelectedAppId NOTIFY selectedAppChanged)
    /// The selected app as a map (appMap plus bundleText, location, items: itemId, path,
    /// typeName, typeIcon, sizeText, isSelected); every key empty without a selection.
    Q_PROPERTY(QVariantMap selectedApp READ selectedApp NOTIFY selectedAppChanged)
    /// The confirmation text for the selected app, with the packages that would go with it
    /// once known.
    Q_PROPERTY(QString confirmText READ confirmText NOTIFY selectedAppChanged)
    Q_PROPERTY(QVariantMap labels READ labels CONSTANT)

public:
    /// Discovers in `locations` with `roots`; `packages` removes system packages (shared with
    /// the caller, used from the removal worker; null refuses package removals).
    AppScanner(const Locations& locations, const SystemRoots& roots,
               std::shared_ptr<PackageRemover> packages, QObject* parent = nullptr);
    ~AppScanner() override;
    AppScanner(const AppScanner&) = delete;
    AppScanner& operator=(const AppScanner&) = delete;

    bool isScanning() const { return m_scanJob.isBusy(); }
    bool isRemoving() const { return m_removalJob.isBusy(); }
    const QString& statusMessage() const { return m_statusMessage; }
    const QString& searchText() const { return m_searchText; }
    void setSearchText(const QString& text);
    QVariantList filteredApps() const;
    int installedCount() const { return static_cast<int>(m_apps.size()); }
    QVariantList orphanedLeftoversList() const;
    int orphanCount() const { return static_cast<int>(m_orphans.size()); }
    const QString& selectedAppId() const { return m_selectedAppId; }
    void setSelectedAppId(const QString& appId);
    QVariantMap selectedApp() const;
    QString confirmText() const;
    static QVariantMap labels();

    /// The installed apps and the orphans as last published (C++ callers, e.g. Smart Care).
    const std::vector<AppInfo>& apps() const { return m_apps; }
    const std::vector<AssociatedItem>& orphanedLeftovers() const { return m_orphans; }

    /// Starts a discovery; ignored while one runs. scanFinished() follows on the GUI thread.
    Q_INVOKABLE void scanApps();
    /// Uninstalls the app `appId` (with its selected leftovers when `deleteAssociated`) off the
    /// GUI thread; uninstallFinished(success, message) follows. False (nothing done) while a
    /// removal runs or for an unknown id.
    Q_INVOKABLE bool uninstall(const QString& appId, bool deleteAssociated = true);
    /// Moves one orphan to the Trash off the GUI thread; on success it leaves the list.
    /// orphanTrashed(itemId, ok) follows. False while a removal runs or for an unknown id.
    Q_INVOKABLE bool trashOrphan(const QString& itemId);
    /// Includes or leaves out one leftover of an app in its uninstall.
    Q_INVOKABLE void setItemSelected(const QString& appId, const QString& itemId, bool selected);
    /// Shows a path in the file manager.
    Q_INVOKABLE void reveal(const QString& path) const;
    /// Selects the app that `path` (a path as Qt stores file names) belongs to: its bundle,
    /// AppImage, desktop entry or a folder inside it. True when one was found.
    Q_INVOKABLE bool selectAppForPath(const QString& path);
    /// Whether selectAppForPath would find an app for `path` (the storage section's menu).
    Q_INVOKABLE bool knowsPath(const QString& path) const;
    /// The same for a path as bytes.
    bool knowsPathBytes(const std::string& path) const { return appForPath(path) != nullptr; }

signals:
    void isScanningChanged();
    void isRemovingChanged();
    void statusMessageChanged();
    void searchTextChanged();
    void appsChanged();
    void orphansChanged();
    void selectedAppChanged();
    /// A discovery ended and both lists are published.
    void scanFinished();
    /// An uninstall ended; `message` is the result text to show.
    void uninstallFinished(bool success, const QString& message);
    /// An orphan trash ended.
    void orphanTrashed(const QString& itemId, bool removed);

private:
    const AppInfo* findApp(const QString& appId) const;
    const AppInfo* appForPath(const std::string& path) const;
    void setStatus(const QString& message);
    void planSelected();

    std::unique_ptr<const Locations> m_locations;
    std::unique_ptr<const SystemRoots> m_roots;
    std::shared_ptr<PackageRemover> m_packages;
    std::vector<AppInfo> m_apps;
    std::vector<AssociatedItem> m_orphans;
    QString m_statusMessage;
    QString m_searchText;
    QString m_selectedAppId;
    QStringList m_alsoRemoved; // packages that go with the selected app
    BackgroundJob m_planJob;
    BackgroundJob m_removalJob;
    BackgroundJob m_scanJob;
};

} // namespace sondrel
