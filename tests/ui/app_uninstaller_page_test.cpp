// The App Uninstaller page rendered offscreen over a temporary home with AppImages and a
// desktop entry: discovery with counts, the search, the detail pane with a leftover switched
// off, the confirmation and result dialogs of an uninstall, and trashing an orphan. No QML
// warning is allowed. With SONDREL_SCREENSHOT set, the page with an app selected is saved there.

#include "app/app_scanner.h"
#include "platform/app_catalogue.h"
#include "platform/locations.h"
#include "tests/ui/page_harness.h"
#include "tests/ui/warning_filter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QQuickItem>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <fcntl.h>
#include <sys/stat.h>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

using namespace sondrel::test;

void writeIcon(const QString& path, QColor colour) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QImage image(64, 64, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(colour);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(4, 4, 56, 56, 12, 12);
    painter.end();
    QVERIFY(image.save(path));
}

class AppUninstallerPageTest : public QObject {
    Q_OBJECT

private slots:
    void discoversUninstallsAndTrashesOrphans() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        QTemporaryDir dir;
        const QString home = dir.filePath("home");
        const qint64 old = QDateTime::currentSecsSinceEpoch() - 60 * 24 * 3600;
        writeFile(home + "/Applications/Photo Studio.AppImage", 900000);
        writeText(home + "/.local/share/applications/photo-studio.desktop",
                  "[Desktop Entry]\nType=Application\nName=Photo Studio\nIcon=photo-studio\n"
                  "Exec=\"" +
                      home.toUtf8() + "/Applications/Photo Studio.AppImage\" %F\n");
        writeIcon(home + "/.local/share/icons/hicolor/64x64/apps/photo-studio.png",
                  QColor(60, 140, 250));
        writeFile(home + "/.config/Photo Studio/settings.ini", 4000);
        writeFile(home + "/.cache/photo-studio/thumbs.db", 300000);
        writeFile(home + "/Applications/Notes.AppImage", 400000);
        writeFile(home + "/AppImages/Terminal-2.1.AppImage", 250000);
        writeFile(home + "/.config/OldGame/save.dat", 500000, old);
        const timespec times[2] = {{old, 0}, {old, 0}};
        utimensat(AT_FDCWD, QFile::encodeName(home + "/.config/OldGame").constData(), times, 0);

        Locations locations = Locations::forLinux(home.toStdString());
        locations.applicationDirs = {locations.dataHome + "/applications"};
        locations.dataDirs.clear();
        AppScanner scanner(locations, SystemRoots{}, nullptr);
        PageView view;
        QCOMPARE(view.load("qrc:/Sondrel/qml/apps/AppUninstallerPage.qml",
                           {{"scanner", QVariant::fromValue<QObject*>(&scanner)}}, {1100, 720}),
                 QString());
        QQuickItem* page = view.page();
        QVERIFY(isShown(page, "noAppsText"));
        QVERIFY(isShown(page, "selectPrompt"));

        QSignalSpy finished(&scanner, &AppScanner::scanFinished);
        QVERIFY(QMetaObject::invokeMethod(findObject(page, "scanAppsButton"), "clicked"));
        QVERIFY(scanner.isScanning());
        QCOMPARE(scanner.statusMessage(), QString("Discovering installed applications..."));
        QVERIFY(finished.wait(20000));
        QCOMPARE(scanner.statusMessage(), QString("Found 3 applications, 1 leftover items"));
        QCOMPARE(findObject(page, "installedTab")->property("text").toString(),
                 QString("Installed Apps (3)"));
        QCOMPARE(findObject(page, "orphansTab")->property("text").toString(),
                 QString("Orphaned Residues (1)"));
        QCOMPARE(scanner.filteredApps().first().toMap().value("name").toString(),
                 QString("Photo Studio"));

        scanner.setSearchText("NOTES");
        QCOMPARE(scanner.filteredApps().size(), 1);
        scanner.setSearchText("");
        QCOMPARE(scanner.filteredApps().size(), 3);

        const QVariantMap photo = scanner.filteredApps().first().toMap();
        scanner.setSelectedAppId(photo.value("appId").toString());
        QTRY_VERIFY(isShown(page, "detailPane"));
        QVERIFY(!isShown(page, "selectPrompt"));
        const QVariantList items = scanner.selectedApp().value("items").toList();
        QCOMPARE(items.size(), 2);
        // Keep the cache: switch it off in the pane's list.
        const QVariantMap cache = items.at(1).toMap();
        QVERIFY(cache.value("path").toString().endsWith("/.cache/photo-studio"));
        scanner.setItemSelected(photo.value("appId").toString(), cache.value("itemId").toString(),
                                false);
        QTest::qWait(300);
        const QString screenshot = qEnvironmentVariable("SONDREL_SCREENSHOT");
        if (!screenshot.isEmpty()) {
            QVERIFY(view.view().grabWindow().save(screenshot));
        }

        QVERIFY(QMetaObject::invokeMethod(findObject(page, "uninstallButton"), "clicked"));
        QTRY_VERIFY(findObject(page, "confirmDialog")->property("opened").toBool());
        QSignalSpy uninstalled(&scanner, &AppScanner::uninstallFinished);
        QVERIFY(QMetaObject::invokeMethod(findObject(page, "confirmUninstallButton"), "clicked"));
        QVERIFY(uninstalled.wait(20000));
        QCOMPARE(uninstalled.first().at(0).toBool(), true);
        QCOMPARE(uninstalled.first().at(1).toString(),
                 QString("Successfully uninstalled Photo Studio and moved application bundle and "
                         "residues to Trash."));
        QTRY_VERIFY(findObject(page, "resultDialog")->property("opened").toBool());
        QCOMPARE(findObject(page, "resultText")->property("text").toString(),
                 uninstalled.first().at(1).toString());
        QVERIFY(!QFileInfo::exists(home + "/Applications/Photo Studio.AppImage"));
        QVERIFY(!QFileInfo::exists(home + "/.local/share/applications/photo-studio.desktop"));
        QVERIFY(!QFileInfo::exists(home + "/.config/Photo Studio"));
        QVERIFY(QFileInfo::exists(home + "/.cache/photo-studio/thumbs.db"));
        QCOMPARE(scanner.installedCount(), 2);
        QTRY_VERIFY(isShown(page, "selectPrompt"));

        QVERIFY(QMetaObject::invokeMethod(findObject(page, "orphansTab"), "clicked"));
        QTRY_VERIFY(isShown(page, "orphansPane"));
        QTRY_VERIFY(findItem(page, "trashOrphanButton") != nullptr);
        QObject* trash = findItem(page, "trashOrphanButton");
        QSignalSpy trashed(&scanner, &AppScanner::orphanTrashed);
        QVERIFY(QMetaObject::invokeMethod(trash, "clicked"));
        QVERIFY(trashed.wait(20000));
        QCOMPARE(trashed.first().at(1).toBool(), true);
        QCOMPARE(scanner.orphanCount(), 0);
        QVERIFY(!QFileInfo::exists(home + "/.config/OldGame"));
        QCOMPARE(findObject(page, "orphansTab")->property("text").toString(),
                 QString("Orphaned Residues (0)"));
    }
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::AppUninstallerPageTest)
#include "app_uninstaller_page_test.moc"
