#include "app/app_root.h"

#include "app/package_kit_remover.h"
#include "app/qt_conversions.h"
#include "app/scan_target.h"
#include "core/care/care_sources.h"
#include "core/model/platform_terms.h"
#include "core/removal/removal_chains.h"
#include "platform/app_catalogue.h"
#include "platform/app_uninstaller.h"
#include "platform/helper_location.h"
#include "platform/locations.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QVariantMap>
#include <unistd.h>

namespace sondrel {

namespace {

QString platformText(const char* text) {
    return QString::fromStdString(withPlatformTerms(text, currentTextPlatform()));
}

// The file manager's plain move to the Trash (or into the home trash by rename), never a
// password prompt. The scan root, "/", the home folder and the protected folders (~/.ssh,
// keyrings, ...) are refused before anything is moved; a path already gone counts as failure.
// The result names where the item went and its .trashinfo, so that the move can be undone.
TrashResult moveToUserTrash(const std::string& path, const Locations& locations) {
    const RemovalOutcome outcome =
        moveDuplicateToTrash(path, RemovalContext::forUser(locations, {"/"}));
    TrashResult result;
    result.ok = outcome.step == RemovalStep::trash || outcome.step == RemovalStep::manualMove;
    if (!result.ok) {
        result.error =
            outcome.message.empty() ? std::string(describe(outcome.step)) : outcome.message;
        return result;
    }
    result.trashedPath = outcome.trashedPath;
    // files/NAME in a trash folder has its record at info/NAME.trashinfo.
    const std::size_t files = result.trashedPath.rfind("/files/");
    if (files != std::string::npos) {
        result.trashDir = result.trashedPath.substr(0, files);
        result.infoPath =
            result.trashDir + "/info/" + result.trashedPath.substr(files + 7) + ".trashinfo";
    }
    return result;
}

// Smart Care's collaborators: the window's own junk and application scanners. A Smart Scan
// starts both (or joins a scan already running) and keeps what they found; the clean hands each
// chosen item back to the chain of the scan that found it, with the installed privileged helper
// (when there is one) asked once for everything only the administrator may remove.
SmartCleanHooks smartCleanHooks(const Locations& locations, JunkScanner* junk, AppScanner* apps) {
    // Written on the GUI thread when a scan finishes; read by the clean's worker, which starts
    // later (a scan is refused while a clean runs).
    auto found = std::make_shared<CareSources>();
    SmartCleanHooks hooks;
    hooks.startJunkScan = [junk](const SmartCleanHooks::Done& done) {
        QObject::connect(
            junk, &JunkScanner::scanFinished, junk, [done] { done(); }, Qt::SingleShotConnection);
        if (!junk->isScanning()) {
            junk->scan();
        }
    };
    hooks.startAppScan = [apps](const SmartCleanHooks::Done& done) {
        QObject::connect(
            apps, &AppScanner::scanFinished, apps, [done] { done(); }, Qt::SingleShotConnection);
        if (!apps->isScanning()) {
            apps->scanApps();
        }
    };
    hooks.junkItems = [junk, found] {
        found->junk = careSourcesOf(junk->groups(), {}).junk;
        return careItemsOf({found->junk, {}});
    };
    hooks.orphanItems = [apps, found] {
        found->orphans = apps->orphanedLeftovers();
        return careItemsOf({{}, found->orphans});
    };
    const std::string helper = installedHelperPath();
    const auto administrator = access(helper.c_str(), X_OK) == 0
                                   ? std::make_shared<const PrivilegedHelperClient>(helper)
                                   : nullptr;
    hooks.clean = [context = RemovalContext::forUser(locations), administrator,
                   found](const std::vector<CareItem>& items, const CancelToken& cancel,
                          const CareCleanProgress& progress) {
        RemovalContext withAdministrator = context;
        withAdministrator.administrator = administrator.get();
        return cleanFromSources(items, *found, withAdministrator, cancel, progress);
    };
    // The junk and application screens show what is left.
    hooks.cleanFinished = [junk, apps] {
        junk->scan();
        apps->scanApps();
    };
    return hooks;
}

QVariantMap section(const QVariantMap& overview, const char* key) {
    return overview.value(QString::fromLatin1(key)).toMap();
}

} // namespace

AppRoot::AppRoot(QObject* parent) : AppRoot(Locations::forCurrentUser(), parent) {}

AppRoot::AppRoot(Locations locations, QObject* parent)
    : QObject(parent), m_locations(std::make_unique<const Locations>(std::move(locations))),
      m_themeManager(new ThemeManager(this)), m_diskScanner(new DiskScanner(this)),
      m_navigator(new StorageNavigator(this)), m_systemMonitor(new SystemMonitor(this)),
      m_duplicateScanner(new DuplicateScanner(*m_locations, this)),
      m_selectedTargetFolder(toFileQString(m_locations->home)) {
    m_largeFileSearch = new LargeFileSearch(*m_locations, this);
    // The search page offers the window's target folder when it is a folder of the user's own.
    m_largeFileSearch->setTargetFolder(m_selectedTargetFolder);
    connect(this, &AppRoot::selectedTargetFolderChanged, m_largeFileSearch,
            [this] { m_largeFileSearch->setTargetFolder(m_selectedTargetFolder); });
    m_junkScanner = new JunkScanner(*m_locations, this);
    m_appScanner = new AppScanner(
        *m_locations, SystemRoots::forThisMachine(),
        std::make_shared<PackageKitRemover>(std::make_shared<CommandPackageRemover>(runSubprocess)),
        this);
    m_smartCleanEngine = new SmartCleanEngine(
        smartCleanHooks(*m_locations, m_junkScanner, m_appScanner), m_systemMonitor, this);
    // The storage section offers "Uninstall App & Clean Leftovers" for what the catalogue knows;
    // the catalogue is read once a tree is shown, if nothing read it before.
    m_navigator->setApplicationMatcher(
        [this](const std::string& path) { return m_appScanner->knowsPathBytes(path); });
    connect(m_diskScanner, &DiskScanner::rootItemChanged, this, [this] {
        if (m_appScanner->installedCount() == 0 && m_appScanner->statusMessage().isEmpty()) {
            m_appScanner->scanApps();
        }
    });
    // A new tree replaces the navigator's state, so a folder or selection of the old tree is
    // never shown against the new root.
    connect(m_diskScanner, &DiskScanner::rootItemChanged, this,
            [this] { m_navigator->setRoot(m_diskScanner->rootItem()); });
    // The scanned folder itself is never moved: only what lies inside it.
    m_navigator->setTrasher([this, locations = *m_locations](const std::string& path) {
        const FileItem& scanRoot = m_navigator->root();
        if (scanRoot && scanRoot.url() == path) {
            TrashResult refused;
            refused.error = "the scanned folder itself is not moved, only what is inside it";
            return refused;
        }
        return moveToUserTrash(path, locations);
    });
    connect(m_systemMonitor, &SystemMonitor::overviewChanged, this, &AppRoot::stripChanged);
    if (auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        connect(app, &QGuiApplication::applicationStateChanged, this,
                [this](Qt::ApplicationState state) {
                    setApplicationActive(state == Qt::ApplicationActive);
                });
    }
    refreshScanTargetsFrom({});
}

AppRoot::~AppRoot() = default;

void AppRoot::setSelectedSection(int section) {
    if (!NavigationSection::isValid(section) || section == selectedSection()) {
        return;
    }
    m_selectedSection = static_cast<NavigationSection::Id>(section);
    if (m_selectedSection == NavigationSection::Monitor) {
        m_systemMonitor->startMonitoring();
    } else {
        m_systemMonitor->stopMonitoring();
    }
    if (m_selectedSection == NavigationSection::SmartCare && m_appeared) {
        m_smartCleanEngine->runInitialScanIfNeeded();
    }
    emit selectedSectionChanged();
}

QStringList AppRoot::sectionTitles() {
    QStringList titles;
    for (const NavigationSection::Row& row : NavigationSection::table()) {
        titles << QString::fromUtf8(row.title);
    }
    return titles;
}

QStringList AppRoot::sectionSymbols() {
    QStringList symbols;
    for (const NavigationSection::Row& row : NavigationSection::table()) {
        symbols << QString::fromUtf8(row.symbol);
    }
    return symbols;
}

QString AppRoot::diskStripText() const {
    const QVariantMap disk = section(m_systemMonitor->overview(), "disk");
    if (disk.value(QStringLiteral("totalBytes")).toDouble() <= 0) {
        return {};
    }
    return QStringLiteral("Disk: %1 used")
        .arg(disk.value(QStringLiteral("formattedUsed")).toString());
}

QString AppRoot::diskFreeStripText() const {
    const QVariantMap disk = section(m_systemMonitor->overview(), "disk");
    if (disk.value(QStringLiteral("totalBytes")).toDouble() <= 0) {
        return {};
    }
    return QStringLiteral("%1 free").arg(disk.value(QStringLiteral("formattedFree")).toString());
}

QString AppRoot::availableStripText() const {
    const QVariantMap disk = section(m_systemMonitor->overview(), "disk");
    if (disk.value(QStringLiteral("totalBytes")).toDouble() <= 0) {
        return {};
    }
    return QStringLiteral("Total Available: ") +
           disk.value(QStringLiteral("formattedEffectiveAvailable")).toString();
}

QString AppRoot::ramStripText() const {
    const QVariantMap memory = section(m_systemMonitor->overview(), "memory");
    if (memory.value(QStringLiteral("totalBytes")).toDouble() <= 0) {
        return {};
    }
    return QStringLiteral("RAM: %1%")
        .arg(memory.value(QStringLiteral("usagePercent")).toDouble(), 0, 'f', 0);
}

double AppRoot::diskUsedFraction() const {
    const QVariantMap disk = section(m_systemMonitor->overview(), "disk");
    // df's Use%: the blocks reserved for root count neither as used nor as free.
    return qBound(0.0, disk.value(QStringLiteral("usagePercent")).toDouble() / 100.0, 1.0);
}

QUrl AppRoot::folderPanelChoice(const QUrl& selected, const QUrl& shown) {
    if (!selected.isLocalFile() || !shown.isLocalFile()) {
        return shown.isEmpty() ? selected : shown;
    }
    const QString folder = QDir::cleanPath(shown.toLocalFile());
    const QString entry = QDir::cleanPath(selected.toLocalFile());
    return QFileInfo(entry).absolutePath() == folder && entry != folder ? selected : shown;
}

void AppRoot::openFolderAtStart(const QString& folder) {
    if (folder.isEmpty()) {
        return;
    }
    setSelectedTargetFolder(folder);
    setSelectedSection(NavigationSection::Storage);
}

void AppRoot::windowAppeared() {
    if (m_appeared) {
        return;
    }
    m_appeared = true;
    // One sample so the sidebar strip has figures; sampling on a timer is the telemetry
    // section's alone.
    m_systemMonitor->refresh();
    refreshScanTargets();
    if (!m_diskScanner->hasRootItem() && !m_diskScanner->isScanning()) {
        emit scanRequested(m_selectedTargetFolder);
        m_diskScanner->scan(m_selectedTargetFolder);
    }
    // The window opens on Smart Care: its first screen shows a real score, not the defaults.
    if (m_selectedSection == NavigationSection::SmartCare) {
        m_smartCleanEngine->runInitialScanIfNeeded();
    }
}

void AppRoot::setApplicationActive(bool active) {
    if (!active) {
        m_systemMonitor->stopMonitoring();
    } else if (m_selectedSection == NavigationSection::Monitor) {
        m_systemMonitor->startMonitoring();
    }
}

void AppRoot::setSelectedTargetFolder(const QString& folder) {
    if (folder != m_selectedTargetFolder) {
        m_selectedTargetFolder = folder;
        emit selectedTargetFolderChanged();
    }
}

void AppRoot::scanFolder(const QString& folder) {
    if (folder.isEmpty()) {
        return;
    }
    setSelectedTargetFolder(folder);
    if (m_diskScanner->isScanning()) {
        m_diskScanner->cancel();
    }
    emit scanRequested(folder);
    m_diskScanner->scan(folder);
}

void AppRoot::rescan() {
    scanFolder(m_selectedTargetFolder);
}

void AppRoot::scanHomeFolder() {
    scanFolder(toFileQString(m_locations->home));
}

void AppRoot::activateScanTarget(int index) {
    if (index < 0 || index >= m_scanTargets.size()) {
        return;
    }
    const QVariantMap target = m_scanTargets.at(index).toMap();
    const QString kind = target.value(QStringLiteral("kind")).toString();
    const QString path = target.value(QStringLiteral("path")).toString();
    if (kind == QLatin1String("folder")) {
        scanFolder(path);
    } else if (kind == QLatin1String("cloud")) {
        requestCloudAccessAndScan(path, target.value(QStringLiteral("label")).toString());
    } else {
        emit customFolderRequested();
    }
}

void AppRoot::refreshScanTargets() {
    refreshScanTargetsFrom(detectCloudFoldersForCurrentUser(*m_locations));
}

void AppRoot::refreshScanTargetsFrom(const std::vector<CloudFolder>& cloudFolders) {
    m_scanTargets.clear();
    for (const ScanTarget& target : scanTargetMenu(*m_locations, cloudFolders)) {
        m_scanTargets.append(target.toVariantMap());
    }
    emit scanTargetsChanged();
}

bool AppRoot::requestCloudAccessAndScan(const QString& path, const QString& name) {
    QDir dir(path);
    const bool listable = QFileInfo(path).isDir() && dir.isReadable() &&
                          DiskScanner::isPathAccessibleAndReadable(path);
    if (listable) {
        scanFolder(path);
        return true;
    }
    emit permissionRequired(path, name);
    return false;
}

bool AppRoot::scanChosenFolder(const QUrl& folder) {
    if (folder.isEmpty() || !folder.isLocalFile()) {
        return false;
    }
    const QString path = QDir::cleanPath(folder.toLocalFile());
    if (!QFileInfo(path).isDir()) {
        return false;
    }
    scanFolder(path);
    return true;
}

bool AppRoot::scanChosenPath(const QString& path) {
    return !path.isEmpty() && scanChosenFolder(QUrl::fromLocalFile(path));
}

QString AppRoot::permissionTitle(const QString& name) const {
    return QStringLiteral("Permission Required for ") + name;
}

QString AppRoot::permissionMessage(const QString& name) const {
    QString text = platformText("macOS requires permission to scan your ") + name +
                   QStringLiteral(" files.\n\nClick 'Grant Permission' to select your ") + name +
                   platformText(" folder and authorize access");
    // There is no privacy settings panel to send the user to on Linux.
    if (currentTextPlatform() == TextPlatform::macos) {
        text += QStringLiteral(", or open System Settings");
    }
    return text + QLatin1Char('.');
}

QString AppRoot::grantPanelMessage(const QString& name) const {
    return QStringLiteral("Select your ") + name +
           QStringLiteral(" folder to grant Sondrel scanning permission.");
}

bool AppRoot::uninstallAppAt(const QString& path) {
    if (m_appScanner->installedCount() == 0 && !m_appScanner->isScanning()) {
        // Nothing discovered yet: discover, then select the application once it is known.
        auto connection = std::make_shared<QMetaObject::Connection>();
        *connection =
            connect(m_appScanner, &AppScanner::scanFinished, this, [this, path, connection] {
                disconnect(*connection);
                m_appScanner->selectAppForPath(path);
            });
        m_appScanner->scanApps();
        setSelectedSection(NavigationSection::Uninstaller);
        return true;
    }
    const bool found = m_appScanner->selectAppForPath(path);
    setSelectedSection(NavigationSection::Uninstaller);
    return found;
}

} // namespace sondrel
