#pragma once
// AppRoot: the composition root of the window. It creates exactly one of each engine for the
// window's life and hands them to the pages as properties; no page creates an engine. It also
// holds the window's navigation state (the selected section), the scan target with its menu and
// permission flow, the wiring of trashing to the Trash, and the telemetry lifetime: the system
// monitor samples only while "Live Telemetry" is shown and the application is active.
//
// Threading: GUI thread only. Ownership: AppRoot is the parent of every engine it creates.

#include "app/app_scanner.h"
#include "app/disk_scanner.h"
#include "app/duplicate_scanner.h"
#include "app/junk_scanner.h"
#include "app/large_file_search.h"
#include "app/navigation_section.h"
#include "app/smart_clean_engine.h"
#include "app/storage_navigator.h"
#include "app/system_monitor.h"
#include "app/theme_manager.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantList>
#include <memory>
#include <vector>

namespace sondrel {

// Forward declared: moc cannot parse platform/locations.h (its enumerator `linux` is a
// predefined macro of GNU C++ modes).
struct Locations;
struct CloudFolder;

class AppRoot : public QObject {
    Q_OBJECT
    Q_PROPERTY(sondrel::ThemeManager* themeManager READ themeManager CONSTANT)
    Q_PROPERTY(sondrel::DiskScanner* diskScanner READ diskScanner CONSTANT)
    Q_PROPERTY(sondrel::StorageNavigator* navigator READ navigator CONSTANT)
    Q_PROPERTY(sondrel::SystemMonitor* systemMonitor READ systemMonitor CONSTANT)
    Q_PROPERTY(sondrel::DuplicateScanner* duplicateScanner READ duplicateScanner CONSTANT)
    Q_PROPERTY(sondrel::LargeFileSearch* largeFileSearch READ largeFileSearch CONSTANT)
    Q_PROPERTY(sondrel::SmartCleanEngine* smartCleanEngine READ smartCleanEngine CONSTANT)
    Q_PROPERTY(sondrel::AppScanner* appScanner READ appScanner CONSTANT)
    Q_PROPERTY(sondrel::JunkScanner* junkScanner READ junkScanner CONSTANT)
    /// The shown section, a NavigationSection::Id (`Section.Storage` in QML); the window opens
    /// on Smart Care.
    Q_PROPERTY(int selectedSection READ selectedSection WRITE setSelectedSection NOTIFY
                   selectedSectionChanged)
    /// The section table (NavigationSection::toVariantList): maps with "section", "title",
    /// "symbol" and "page", in sidebar order.
    Q_PROPERTY(QVariantList sections READ sections CONSTANT)
    /// The folder the next scan or rescan walks (a path as Qt stores file names).
    Q_PROPERTY(
        QString selectedTargetFolder READ selectedTargetFolder NOTIFY selectedTargetFolderChanged)
    /// The scan-target menu: maps with "label", "path", "symbol", "kind" (see ScanTarget).
    Q_PROPERTY(QVariantList scanTargets READ scanTargets NOTIFY scanTargetsChanged)
    /// The sidebar strip's lines, from the monitor's last sample ("" before the first one).
    Q_PROPERTY(QString diskStripText READ diskStripText NOTIFY stripChanged)
    Q_PROPERTY(QString diskFreeStripText READ diskFreeStripText NOTIFY stripChanged)
    Q_PROPERTY(QString availableStripText READ availableStripText NOTIFY stripChanged)
    Q_PROPERTY(QString ramStripText READ ramStripText NOTIFY stripChanged)
    /// Used share of the disk, 0..1 (0 before the first sample).
    Q_PROPERTY(double diskUsedFraction READ diskUsedFraction NOTIFY stripChanged)

public:
    /// Creates the engines for the running user's home (Locations::forCurrentUser()).
    explicit AppRoot(QObject* parent = nullptr);
    /// Creates the engines for `locations` (tests pass a temporary home). The initial scan
    /// target is its home folder.
    explicit AppRoot(Locations locations, QObject* parent = nullptr);
    ~AppRoot() override;
    AppRoot(const AppRoot&) = delete;
    AppRoot& operator=(const AppRoot&) = delete;

    ThemeManager* themeManager() const { return m_themeManager; }
    DiskScanner* diskScanner() const { return m_diskScanner; }
    StorageNavigator* navigator() const { return m_navigator; }
    SystemMonitor* systemMonitor() const { return m_systemMonitor; }
    DuplicateScanner* duplicateScanner() const { return m_duplicateScanner; }
    LargeFileSearch* largeFileSearch() const { return m_largeFileSearch; }
    SmartCleanEngine* smartCleanEngine() const { return m_smartCleanEngine; }
    AppScanner* appScanner() const { return m_appScanner; }
    JunkScanner* junkScanner() const { return m_junkScanner; }
    const Locations& locations() const { return *m_locations; }

    int selectedSection() const { return static_cast<int>(m_selectedSection); }
    /// Shows another section (values that are no NavigationSection::Id are ignored). Showing
    /// "Live Telemetry" starts the monitor; showing any other section stops it. Showing Smart
    /// Care after the window appeared starts its first scan if it has none yet.
    void setSelectedSection(int section);

    /// The section table for QML (NavigationSection::toVariantList()).
    static QVariantList sections() { return NavigationSection::toVariantList(); }
    /// The section titles in sidebar order.
    static QStringList sectionTitles();
    /// The section icon symbols in sidebar order.
    static QStringList sectionSymbols();

    const QString& selectedTargetFolder() const { return m_selectedTargetFolder; }
    const QVariantList& scanTargets() const { return m_scanTargets; }

    /// "Disk: 120 GB used" and "130 GB free"; "" before the first sample.
    QString diskStripText() const;
    QString diskFreeStripText() const;
    QString availableStripText() const;
    QString ramStripText() const;
    double diskUsedFraction() const;

    /// Makes `folder` the scan target and shows the storage section; the scan starts when the
    /// window appears (the command line's `sondrel FOLDER`). Call before windowAppeared().
    void openFolderAtStart(const QString& folder);

    /// Called once the window is shown. The first call takes one monitor sample for the
    /// sidebar strip and, when the scanner holds no tree and is not scanning, scans the target
    /// (the home folder unless openFolderAtStart chose another); when Smart Care is shown it
    /// starts Smart Care's first scan. Later calls do nothing.
    Q_INVOKABLE void windowAppeared();

    /// Application activation: inactive stops the monitor; active starts it again only while
    /// "Live Telemetry" is shown. Connected to QGuiApplication::applicationStateChanged.
    void setApplicationActive(bool active);

    /// Makes `folder` the target and scans it at once (a running scan is cancelled first).
    /// Empty paths are ignored.
    Q_INVOKABLE void scanFolder(const QString& folder);
    /// Scans the current target again.
    Q_INVOKABLE void rescan();
    /// Makes the home folder the target and scans it.
    Q_INVOKABLE void scanHomeFolder();
    /// Runs menu entry `index` of scanTargets: a folder entry scans, a cloud entry goes through
    /// requestCloudAccessAndScan, the custom entry emits customFolderRequested.
    Q_INVOKABLE void activateScanTarget(int index);
    /// Re-reads the cloud folders and rebuilds the menu.
    Q_INVOKABLE void refreshScanTargets();
    /// Scans `path` when its contents can be listed and returns true. Otherwise changes nothing,
    /// emits permissionRequired(path, name) and returns false.
    Q_INVOKABLE bool requestCloudAccessAndScan(const QString& path, const QString& name);
    /// A folder chosen in a folder panel (or dropped): when it is a local folder it becomes the
    /// target and is scanned; true when a scan was requested. An empty URL changes nothing.
    Q_INVOKABLE bool scanChosenFolder(const QUrl& folder);

    /// The folder a folder panel's accept button means: the selected entry when it lies directly
    /// in the folder the panel shows, otherwise the shown folder itself (nothing selected, or a
    /// selection left over from a folder the user has since opened).
    Q_INVOKABLE static QUrl folderPanelChoice(const QUrl& selected, const QUrl& shown);

    /// Same as scanChosenFolder for a local path (a folder dropped on the visualiser).
    Q_INVOKABLE bool scanChosenPath(const QString& path);
    /// The file:// URL of a local path (for folder panels' starting folder).
    Q_INVOKABLE QUrl fileUrl(const QString& path) const { return QUrl::fromLocalFile(path); }

    /// Texts of the permission dialog and its folder panel for a folder shown as `name`.
    Q_INVOKABLE QString permissionTitle(const QString& name) const;
    Q_INVOKABLE QString permissionMessage(const QString& name) const;
    Q_INVOKABLE QString grantPanelMessage(const QString& name) const;
    /// "Uninstall App & Clean Leftovers" of the storage section: shows the App Uninstaller, on
    /// the application that `path` belongs to (discovering first when nothing was discovered
    /// yet). False when the catalogue, as discovered, knows no application there (the page is
    /// shown all the same).
    Q_INVOKABLE bool uninstallAppAt(const QString& path);

signals:
    void selectedSectionChanged();
    void selectedTargetFolderChanged();
    void scanTargetsChanged();
    void stripChanged();
    /// A scan of `folder` was requested from the scanner.
    void scanRequested(const QString& folder);
    /// The folder cannot be listed: the window asks the user to grant access to it.
    void permissionRequired(const QString& path, const QString& name);
    /// The user asked to choose a custom folder: the window shows a folder panel.
    void customFolderRequested();

private:
    void setSelectedTargetFolder(const QString& folder);
    void refreshScanTargetsFrom(const std::vector<CloudFolder>& cloudFolders);

    std::unique_ptr<const Locations> m_locations;
    ThemeManager* m_themeManager = nullptr;
    DiskScanner* m_diskScanner = nullptr;
    StorageNavigator* m_navigator = nullptr;
    SystemMonitor* m_systemMonitor = nullptr;
    DuplicateScanner* m_duplicateScanner = nullptr;
    LargeFileSearch* m_largeFileSearch = nullptr;
    SmartCleanEngine* m_smartCleanEngine = nullptr;
    AppScanner* m_appScanner = nullptr;
    JunkScanner* m_junkScanner = nullptr;

    NavigationSection::Id m_selectedSection = NavigationSection::SmartCare;
    QString m_selectedTargetFolder;
    QVariantList m_scanTargets;
    bool m_appeared = false;
};

} // namespace sondrel
