// AppScanner's states: a second scan request while scanning is ignored, the storage hand-off
// finds an application by a path inside it, and a cancelled password prompt removes nothing.

#include "app/app_scanner.h"
#include "platform/app_catalogue.h"
#include "platform/app_uninstaller.h"
#include "platform/locations.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace sondrel {
namespace {

// A package tool whose password prompt is always dismissed.
class DismissedPrompt final : public PackageRemover {
public:
    std::vector<std::string> alsoRemoved(const AppInfo&) override { return {"paint-data"}; }
    PackageRemoval remove(const AppInfo&) override {
        ++calls;
        return PackageRemoval{false, true, "cancelled"};
    }
    int calls = 0;
};

void writeFile(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

class AppScannerTest : public QObject {
    Q_OBJECT

private slots:
    void scansOnceFindsByPathAndKeepsAppOnCancel() {
        QTemporaryDir dir;
        const QString home = dir.filePath("home");
        writeFile(home + "/Applications/Viewer.AppImage", QByteArray(5000, 'x'));
        writeFile(dir.filePath("usr/share/applications/paint.desktop"),
                  "[Desktop Entry]\nType=Application\nName=Paint\nExec=paint\n");
        writeFile(dir.filePath("usr/bin/paint"), QByteArray(9000, 'x'));
        writeFile(dir.filePath("dpkg/status"),
                  "Package: paint\nStatus: install ok installed\nVersion: 1.0\n");
        writeFile(dir.filePath("dpkg/info/paint.list"),
                  (dir.filePath("usr/bin/paint") + "\n" +
                   dir.filePath("usr/share/applications/paint.desktop") + "\n")
                      .toUtf8());
        writeFile(home + "/.config/paint/prefs", "x");

        Locations locations = Locations::forLinux(home.toStdString());
        locations.applicationDirs = {dir.filePath("usr/share/applications").toStdString()};
        SystemRoots roots;
        roots.dpkgAdminDir = dir.filePath("dpkg").toStdString();
        auto prompt = std::make_shared<DismissedPrompt>();
        AppScanner scanner(locations, roots, prompt);

        QSignalSpy finished(&scanner, &AppScanner::scanFinished);
        scanner.scanApps();
        QVERIFY(scanner.isScanning());
        scanner.scanApps(); // ignored: one discovery at a time
        QVERIFY(finished.wait(20000));
        QTest::qWait(50);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(scanner.installedCount(), 2);

        QVERIFY(scanner.knowsPath(home + "/Applications/Viewer.AppImage"));
        QVERIFY(!scanner.knowsPath(home + "/Applications"));
        QVERIFY(scanner.selectAppForPath(dir.filePath("usr/share/applications/paint.desktop")));
        QCOMPARE(scanner.selectedApp().value("name").toString(), QString("Paint"));
        // The packages that would go with it reach the confirmation text.
        QTRY_VERIFY(scanner.confirmText().contains("paint-data"));

        QSignalSpy uninstalled(&scanner, &AppScanner::uninstallFinished);
        QVERIFY(scanner.uninstall(scanner.selectedAppId(), true));
        QVERIFY(!scanner.uninstall(scanner.selectedAppId(), true)); // one removal at a time
        QVERIFY(uninstalled.wait(20000));
        QCOMPARE(uninstalled.first().at(0).toBool(), false);
        QCOMPARE(uninstalled.first().at(1).toString(),
                 QString("Uninstalling Paint was cancelled."));
        QCOMPARE(prompt->calls, 1);
        QCOMPARE(scanner.installedCount(), 2);
        QVERIFY(QFileInfo::exists(home + "/.config/paint/prefs"));
    }
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::AppScannerTest)
#include "app_scanner_test.moc"
