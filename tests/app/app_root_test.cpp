// AppRoot: telemetry lifetime, first scan once, rescan replacing drill-down state, trashing
// through the Trash with the direct-parent size rule, the permission request, the scan-target
// menu and cloud folder detection. Every folder is a temporary one of the test.

#include "app/app_root.h"
#include "app/qt_conversions.h"
// moc cannot parse platform/locations.h (its enumerator `linux` is a predefined macro).
#ifndef Q_MOC_RUN
#include "app/scan_target.h"
#include "platform/locations.h"
#endif

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <unistd.h>

namespace sondrel {
namespace {

constexpr int kScanTimeoutMs = 30000;

void writeFile(const QString& path, qint64 size) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write(QByteArray(static_cast<int>(size), 'x')) == size);
}

FileItem childNamed(const FileItem& folder, const std::string& name) {
    for (const FileItem& child : folder.children()) {
        if (child.name() == name) {
            return child;
        }
    }
    return {};
}

// Scans `folder` through the root and waits for the published tree.
bool scanAndWait(AppRoot& root, const QString& folder) {
    QSignalSpy finished(root.diskScanner(), &DiskScanner::scanFinished);
    root.scanFolder(folder);
    return finished.count() > 0 || finished.wait(kScanTimeoutMs);
}

} // namespace

class AppRootTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_settingsDir;
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<AppRoot> m_root;

    QString home() const { return m_home->path(); }

private slots:
    void initTestCase() {
        QVERIFY(m_settingsDir.isValid());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settingsDir.path());
    }

    void init() {
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(m_home->isValid());
        writeFile(home() + "/data/big/inner/file.bin", 200000);
        writeFile(home() + "/data/big/other.bin", 100000);
        writeFile(home() + "/data/small.txt", 1000);
        m_root = std::make_unique<AppRoot>(Locations::forLinux(toPathBytes(home())));
    }

    void cleanup() {
        m_root.reset();
        m_home.reset();
    }

    void sectionsInOrder() {
        QCOMPARE(AppRoot::sectionTitles(),
                 (QStringList{"Smart Care", "Storage Scopix", "Duplicate Hunter", "App Uninstaller",
                              "Junk & Dev Cache", "Intelligent Search", "Live Telemetry",
                              "Themes & Settings"}));
        QCOMPARE(AppRoot::sectionSymbols().size(), 8);
        QCOMPARE(m_root->selectedSection(), static_cast<int>(NavigationSection::SmartCare));
        QCOMPARE(m_root->navigator()->visualizerMode(), 0);
    }

    // Steps: "s<N>" shows section N, "active" / "inactive" change application activation.
    void telemetryFollowsSectionAndActivation_data() {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<bool>("monitoring");
        const QString monitor = QStringLiteral("s6");
        QTest::newRow("start") << QStringList{} << false;
        QTest::newRow("show telemetry") << QStringList{monitor} << true;
        QTest::newRow("leave telemetry") << QStringList{monitor, "s1"} << false;
        QTest::newRow("leave and return") << QStringList{monitor, "s7", monitor} << true;
        QTest::newRow("resign while shown") << QStringList{monitor, "inactive"} << false;
        QTest::newRow("reactivate while shown")
            << QStringList{monitor, "inactive", "active"} << true;
        QTest::newRow("reactivate elsewhere") << QStringList{"s2", "inactive", "active"} << false;
        QTest::newRow("left while inactive")
            << QStringList{monitor, "inactive", "s0", "active"} << false;
    }

    void telemetryFollowsSectionAndActivation() {
        QFETCH(QStringList, steps);
        QFETCH(bool, monitoring);
        for (const QString& step : steps) {
            if (step == QLatin1String("active")) {
                m_root->setApplicationActive(true);
            } else if (step == QLatin1String("inactive")) {
                m_root->setApplicationActive(false);
            } else {
                m_root->setSelectedSection(step.mid(1).toInt());
            }
        }
        QCOMPARE(m_root->systemMonitor()->isMonitoring(), monitoring);
    }

    void firstScanHappensOnce() {
        QSignalSpy requested(m_root.get(), &AppRoot::scanRequested);
        QSignalSpy finished(m_root->diskScanner(), &DiskScanner::scanFinished);
        m_root->windowAppeared();
        QCOMPARE(requested.count(), 1);
        QCOMPARE(requested.at(0).at(0).toString(), home());
        QVERIFY(finished.count() > 0 || finished.wait(kScanTimeoutMs));
        QVERIFY(m_root->navigator()->hasTree());

        m_root->windowAppeared();
        QCOMPARE(requested.count(), 1);
        // The strip has figures without the telemetry section being shown.
        QVERIFY(m_root->ramStripText().startsWith(QStringLiteral("RAM: ")));
        QVERIFY(m_root->ramStripText().endsWith(QLatin1Char('%')));
        QVERIFY(m_root->diskStripText().startsWith(QStringLiteral("Disk: ")));
        QVERIFY(m_root->diskStripText().endsWith(QStringLiteral(" used")));
        QVERIFY(m_root->diskFreeStripText().endsWith(QStringLiteral(" free")));
        QVERIFY(m_root->availableStripText().startsWith(QStringLiteral("Total Available: ")));
        QVERIFY(!m_root->systemMonitor()->isMonitoring());
    }

    // The window opens on Smart Care, so its first scan starts with the window; a Smart Care
    // shown later (after the command line opened a folder) starts it then, and only once.
    void smartCareScansWhenFirstShown() {
        SmartCleanEngine* care = m_root->smartCleanEngine();
        QVERIFY(!care->hasScannedInitial());
        m_root->windowAppeared();
        QVERIFY(care->isScanning());
        QTRY_VERIFY(care->hasScannedInitial());
        QVERIFY(care->statusMessage().startsWith(QStringLiteral("Smart Scan completed: ")));

        AppRoot other(Locations::forLinux(toPathBytes(home())));
        other.openFolderAtStart(home() + "/data");
        other.windowAppeared();
        QVERIFY(!other.smartCleanEngine()->isScanning());
        other.setSelectedSection(NavigationSection::SmartCare);
        QVERIFY(other.smartCleanEngine()->isScanning());
        QTRY_VERIFY(other.smartCleanEngine()->hasScannedInitial());
        other.setSelectedSection(NavigationSection::Storage);
        other.setSelectedSection(NavigationSection::SmartCare);
        QVERIFY(!other.smartCleanEngine()->isScanning());
    }

    void folderFromCommandLineIsScannedFirst() {
        QSignalSpy requested(m_root.get(), &AppRoot::scanRequested);
        m_root->openFolderAtStart(home() + "/data");
        QCOMPARE(m_root->selectedSection(), static_cast<int>(NavigationSection::Storage));
        m_root->windowAppeared();
        QCOMPARE(requested.count(), 1);
        QCOMPARE(requested.at(0).at(0).toString(), home() + "/data");
    }

    void rescanClearsDrillDownAndSelection() {
        QVERIFY(scanAndWait(*m_root, home() + "/data"));
        StorageNavigator* navigator = m_root->navigator();
        const FileItem oldRoot = navigator->root();
        const FileItem big = childNamed(oldRoot, "big");
        QVERIFY(big);
        navigator->setCurrentFolder(big);
        navigator->setSelectedItem(childNamed(big, "other.bin"));
        QCOMPARE(navigator->currentFolder(), big);
        QVERIFY(navigator->hasSelection());

        QSignalSpy finished(m_root->diskScanner(), &DiskScanner::scanFinished);
        m_root->rescan();
        QVERIFY(finished.count() > 0 || finished.wait(kScanTimeoutMs));
        QVERIFY(!(navigator->root() == oldRoot));
        QCOMPARE(navigator->currentFolder(), navigator->root());
        QVERIFY(!navigator->hasSelection());
        QCOMPARE(m_root->selectedTargetFolder(), home() + "/data");
    }

    void trashAdjustsOnlyTheDirectParent() {
        QVERIFY(scanAndWait(*m_root, home() + "/data"));
        StorageNavigator* navigator = m_root->navigator();
        const FileItem root = navigator->root();
        const FileItem big = childNamed(root, "big");
        const FileItem inner = childNamed(big, "inner");
        const FileItem file = childNamed(inner, "file.bin");
        QVERIFY(file);
        const std::int64_t rootSize = root.size();
        const std::int64_t bigSize = big.size();
        const std::int64_t innerSize = inner.size();
        const std::int64_t fileCount = inner.fileCount();

        QVERIFY(navigator->trashFileItem(file));
        QVERIFY(!QFile::exists(home() + "/data/big/inner/file.bin"));
        QVERIFY(QFile::exists(home() + "/.local/share/Trash/files/file.bin"));
        QVERIFY(QFile::exists(home() + "/.local/share/Trash/info/file.bin.trashinfo"));
        QCOMPARE(inner.size(), innerSize - file.size());
        QCOMPARE(big.size(), bigSize);
        QCOMPARE(root.size(), rootSize);
        QCOMPARE(inner.fileCount(), fileCount);
        QVERIFY(!childNamed(inner, "file.bin"));

        // Undo takes it back out of the Trash, by its .trashinfo, and into the tree.
        QCOMPARE(navigator->notice(), QStringLiteral("Moved file.bin to the Trash"));
        navigator->undoTrash();
        QCOMPARE(navigator->notice(), QStringLiteral("Restored file.bin"));
        QVERIFY(QFile::exists(home() + "/data/big/inner/file.bin"));
        QVERIFY(!QFile::exists(home() + "/.local/share/Trash/files/file.bin"));
        QVERIFY(!QFile::exists(home() + "/.local/share/Trash/info/file.bin.trashinfo"));
        QCOMPARE(inner.size(), innerSize);
        QVERIFY(childNamed(inner, "file.bin"));
    }

    void failedTrashChangesNothing() {
        QVERIFY(scanAndWait(*m_root, home() + "/data"));
        StorageNavigator* navigator = m_root->navigator();
        const FileItem root = navigator->root();
        const FileItem small = childNamed(root, "small.txt");
        QVERIFY(small);
        const std::int64_t rootSize = root.size();
        // The file vanished behind the scanner's back: the Trash move fails.
        QVERIFY(QFile::remove(home() + "/data/small.txt"));
        QVERIFY(!navigator->trashFileItem(small));
        QVERIFY(navigator->notice().startsWith(QStringLiteral("Could not move small.txt to the ")));
        QVERIFY(childNamed(root, "small.txt"));
        QCOMPARE(root.size(), rootSize);
        // The scanned folder itself is never moved.
        QVERIFY(!navigator->trashFileItem(root));
        QVERIFY(navigator->notice().contains(QStringLiteral("scanned folder itself")));
        QVERIFY(QFileInfo(home() + "/data").isDir());
    }

    void unlistableFolderAsksForPermission() {
        const QString before = m_root->selectedTargetFolder();
        QSignalSpy permission(m_root.get(), &AppRoot::permissionRequired);
        QSignalSpy requested(m_root.get(), &AppRoot::scanRequested);
        QVERIFY(!m_root->requestCloudAccessAndScan(home() + "/missing", "Nextcloud"));
        QCOMPARE(permission.count(), 1);
        QCOMPARE(permission.at(0).at(1).toString(), QStringLiteral("Nextcloud"));
        QCOMPARE(requested.count(), 0);
        QCOMPARE(m_root->selectedTargetFolder(), before);

        QVERIFY(m_root->requestCloudAccessAndScan(home() + "/data", "Data"));
        QCOMPARE(requested.count(), 1);
        QCOMPARE(m_root->selectedTargetFolder(), home() + "/data");
        QVERIFY(m_root->permissionTitle("Dropbox") == "Permission Required for Dropbox");
        // On Linux no privacy prompt exists: the folder's permissions are what stops the scan.
        const QString message = m_root->permissionMessage("Dropbox");
        QVERIFY(message.startsWith(
            "The folder's permissions do not let you read your Dropbox files.\n\n"));
        QVERIFY(!message.contains("Linux requires"));
        QVERIFY(!message.contains("System Settings"));
    }

    void chosenFolderMustBeALocalFolder() {
        QSignalSpy requested(m_root.get(), &AppRoot::scanRequested);
        QVERIFY(!m_root->scanChosenFolder(QUrl()));
        QVERIFY(!m_root->scanChosenFolder(QUrl::fromLocalFile(home() + "/data/small.txt")));
        QVERIFY(!m_root->scanChosenFolder(QUrl("https://example.org/")));
        QCOMPARE(requested.count(), 0);
        QVERIFY(m_root->scanChosenPath(home() + "/data/big/"));
        QCOMPARE(m_root->selectedTargetFolder(), home() + "/data/big");
    }

    // The folder panel's accept takes the folder shown unless a folder inside it is selected;
    // a selection left from before the user opened a folder does not count.
    void folderPanelAcceptTakesTheShownFolder() {
        const QUrl data = QUrl::fromLocalFile(home() + "/data");
        const QUrl big = QUrl::fromLocalFile(home() + "/data/big");
        const QUrl inner = QUrl::fromLocalFile(home() + "/data/big/inner");
        QCOMPARE(AppRoot::folderPanelChoice(QUrl(), big), big);
        QCOMPARE(AppRoot::folderPanelChoice(inner, big), inner);
        QCOMPARE(AppRoot::folderPanelChoice(big, inner), inner); // opened after selecting
        QCOMPARE(AppRoot::folderPanelChoice(big, big), big);
        QCOMPARE(AppRoot::folderPanelChoice(data, inner), inner);
        QCOMPARE(AppRoot::folderPanelChoice(big, QUrl()), big);
    }

    void menuListsFixedFoldersCloudsAndCustom() {
        QDir(home()).mkpath("Dropbox");
        QDir(home()).mkpath("OneDrive");
        QDir(home()).mkpath("gvfs/google-drive:host=gmail.com,user=alice");
        QDir(home()).mkpath("gvfs/sftp:host=server");
        QDir(home()).mkpath("mnt/remote box");
        const std::string mounts = "proc /proc proc rw 0 0\n" +
                                   toPathBytes("work: " + home() + "/mnt/remote\\040box") +
                                   " fuse.rclone rw 0 0\n";
        const Locations locations = Locations::forLinux(toPathBytes(home()));
        const std::vector<CloudFolder> clouds =
            detectCloudFolders(locations, toPathBytes(home() + "/gvfs"), mounts, ::getuid());
        QStringList names;
        for (const CloudFolder& cloud : clouds) {
            names << cloud.name;
        }
        QCOMPARE(names, (QStringList{"Dropbox", "OneDrive", "Google Drive (alice@gmail.com)",
                                     "work (rclone)"}));
        QCOMPARE(clouds[0].symbol, QStringLiteral("cube.box.fill"));
        QCOMPARE(clouds[3].path, home() + "/mnt/remote box");

        QStringList labels;
        for (const ScanTarget& target : scanTargetMenu(locations, clouds)) {
            labels << target.label;
        }
        QCOMPARE(labels, (QStringList{"Home Folder (~/)", "Applications (/usr)", "Entire Drive (/)",
                                      "Downloads", "Documents", "Desktop", "Dropbox", "OneDrive",
                                      "Google Drive (alice@gmail.com)", "work (rclone)",
                                      "Choose Custom Folder..."}));
    }

    void macosCloudStorageIsNamedByProvider() {
        QDir(home()).mkpath("Library/Mobile Documents/com~apple~CloudDocs");
        QDir(home()).mkpath("Library/CloudStorage/OneDrive-Personal");
        QDir(home()).mkpath("Library/CloudStorage/GoogleDrive-alice@example.com");
        QDir(home()).mkpath("Library/CloudStorage/Dropbox");
        const std::vector<CloudFolder> clouds =
            detectCloudFolders(Locations::forMacos(toPathBytes(home())), "/nonexistent", "", 0);
        QStringList names;
        for (const CloudFolder& cloud : clouds) {
            names << cloud.name;
        }
        QCOMPARE(names, (QStringList{"iCloud Drive", "Dropbox", "Google Drive", "OneDrive"}));
        QCOMPARE(gvfsCloudName("dav:host=cloud.example.org,ssl=true"),
                 QStringLiteral("WebDAV (cloud.example.org)"));
        QCOMPARE(gvfsCloudName("smb-share:server=nas,share=media"), QString());
    }

    void menuEntriesActByKind() {
        QSignalSpy custom(m_root.get(), &AppRoot::customFolderRequested);
        QSignalSpy requested(m_root.get(), &AppRoot::scanRequested);
        const QVariantList menu = m_root->scanTargets();
        m_root->activateScanTarget(static_cast<int>(menu.size()) - 1);
        QCOMPARE(custom.count(), 1);
        QCOMPARE(requested.count(), 0);
        m_root->activateScanTarget(0);
        QCOMPARE(requested.count(), 1);
        QCOMPARE(m_root->selectedTargetFolder(), home());
        m_root->activateScanTarget(99);
        QCOMPARE(requested.count(), 1);
    }
};

} // namespace sondrel

QTEST_MAIN(sondrel::AppRootTest)
#include "app_root_test.moc"
