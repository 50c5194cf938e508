// The App Uninstaller page rendered offscreen over a temporary home with AppImages and a
// desktop entry: discovery with counts, the search, the detail pane with a leftover switched
// off, the confirmation and result dialogs of an uninstall, and trashing an orphan. No QML
// warning is allowed. With SONDREL_SCREENSHOT set, the page with an app selected is saved there.

#include "app/app_scanner.h"
#include "platform/app_catalogue.h"
#include "platform/locations.h"
#include "tests/ui/warning_filter.h"
#include "ui/src/shell_setup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

const char* const kThemeQml = R"(
import QtQuick
QtObject {
    property color background: Qt.rgba(0.05, 0.05, 0.07, 1)
    property color cardBackground: Qt.rgba(1, 1, 1, 0.04)
    property color border: Qt.rgba(1, 1, 1, 0.08)
    property color accent: Qt.rgba(1.0, 0.2, 0.35, 1)
    property color secondaryAccent: Qt.rgba(1.0, 0.45, 0.2, 1)
    property color textPrimary: Qt.rgba(0.95, 0.95, 0.97, 1)
    property color textSecondary: Qt.rgba(1, 1, 1, 0.6)
}
)";

void writeFile(const QString& path, qint64 size, qint64 modifiedSecs = 0) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(static_cast<int>(size), 'x'));
    if (modifiedSecs != 0) {
        QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(modifiedSecs),
                                 QFileDevice::FileModificationTime));
    }
}

void writeText(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

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

QObject* child(QObject* root, const char* name) {
    return root->findChild<QObject*>(name);
}

// Searches the visual tree too: list delegates have no QObject parent.
QQuickItem* findItem(QQuickItem* root, const QString& name) {
    if (root->objectName() == name) {
        return root;
    }
    for (QQuickItem* item : root->childItems()) {
        if (QQuickItem* found = findItem(item, name)) {
            return found;
        }
    }
    return nullptr;
}

bool isShown(QObject* root, const char* name) {
    auto* item = root->findChild<QQuickItem*>(name);
    return item && item->isVisible();
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
        std::unique_ptr<QObject> theme;
        QQuickView view;
        installShellImageProviders(*view.engine());
        QQmlComponent themeComponent(view.engine());
        themeComponent.setData(kThemeQml, QUrl());
        theme.reset(themeComponent.create());
        QVERIFY(theme);
        view.setInitialProperties({{"scanner", QVariant::fromValue<QObject*>(&scanner)},
                                   {"theme", QVariant::fromValue<QObject*>(theme.get())}});
        view.setResizeMode(QQuickView::SizeRootObjectToView);
        view.resize(1100, 720);
        view.setSource(QUrl("qrc:/Sondrel/qml/apps/AppUninstallerPage.qml"));
        QVERIFY2(
            view.status() == QQuickView::Ready,
            qPrintable(view.errors().isEmpty() ? QString() : view.errors().first().toString()));
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QObject* page = view.rootObject();
        QVERIFY(isShown(page, "noAppsText"));
        QVERIFY(isShown(page, "selectPrompt"));

        QSignalSpy finished(&scanner, &AppScanner::scanFinished);
        QVERIFY(QMetaObject::invokeMethod(child(page, "scanAppsButton"), "clicked"));
        QVERIFY(scanner.isScanning());
        QCOMPARE(scanner.statusMessage(), QString("Discovering installed applications..."));
        QVERIFY(finished.wait(20000));
        QCOMPARE(scanner.statusMessage(), QString("Found 3 applications, 1 leftover items"));
        QCOMPARE(child(page, "installedTab")->property("text").toString(),
                 QString("Installed Apps (3)"));
        QCOMPARE(child(page, "orphansTab")->property("text").toString(),
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
            QVERIFY(view.grabWindow().save(screenshot));
        }

        QVERIFY(QMetaObject::invokeMethod(child(page, "uninstallButton"), "clicked"));
        QTRY_VERIFY(child(page, "confirmDialog")->property("opened").toBool());
        QSignalSpy uninstalled(&scanner, &AppScanner::uninstallFinished);
        QVERIFY(QMetaObject::invokeMethod(child(page, "confirmUninstallButton"), "clicked"));
        QVERIFY(uninstalled.wait(20000));
        QCOMPARE(uninstalled.first().at(0).toBool(), true);
        QCOMPARE(uninstalled.first().at(1).toString(),
                 QString("Successfully uninstalled Photo Studio and moved application bundle and "
                         "residues to Trash."));
        QTRY_VERIFY(child(page, "resultDialog")->property("opened").toBool());
        QCOMPARE(child(page, "resultText")->property("text").toString(),
                 uninstalled.first().at(1).toString());
        QVERIFY(!QFileInfo::exists(home + "/Applications/Photo Studio.AppImage"));
        QVERIFY(!QFileInfo::exists(home + "/.local/share/applications/photo-studio.desktop"));
        QVERIFY(!QFileInfo::exists(home + "/.config/Photo Studio"));
        QVERIFY(QFileInfo::exists(home + "/.cache/photo-studio/thumbs.db"));
        QCOMPARE(scanner.installedCount(), 2);
        QTRY_VERIFY(isShown(page, "selectPrompt"));

        QVERIFY(QMetaObject::invokeMethod(child(page, "orphansTab"), "clicked"));
        QTRY_VERIFY(isShown(page, "orphansPane"));
        auto* pageItem = qobject_cast<QQuickItem*>(page);
        QTRY_VERIFY(findItem(pageItem, "trashOrphanButton") != nullptr);
        QObject* trash = findItem(pageItem, "trashOrphanButton");
        QSignalSpy trashed(&scanner, &AppScanner::orphanTrashed);
        QVERIFY(QMetaObject::invokeMethod(trash, "clicked"));
        QVERIFY(trashed.wait(20000));
        QCOMPARE(trashed.first().at(1).toBool(), true);
        QCOMPARE(scanner.orphanCount(), 0);
        QVERIFY(!QFileInfo::exists(home + "/.config/OldGame"));
        QCOMPARE(child(page, "orphansTab")->property("text").toString(),
                 QString("Orphaned Residues (0)"));
    }
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::AppUninstallerPageTest)
#include "app_uninstaller_page_test.moc"
