// The junk cleaner page rendered offscreen over a populated temporary home: empty state, a
// scan's group cards and summary, the group box going from partly to fully selected, an
// expanded card with its rows and "Admin"-free items, and a per-group clean after the
// confirmation that leaves the other groups alone. No QML warning is allowed. With
// SONDREL_SCREENSHOT set, the page with an expanded card is saved there.

#include "app/junk_scanner.h"
#include "platform/locations.h"
#include "tests/ui/warning_filter.h"
#include "ui/src/shell_setup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <algorithm>
#include <memory>

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
    if (modifiedSecs > 0) {
        file.close();
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(modifiedSecs),
                                 QFileDevice::FileModificationTime));
    }
}

QString textOf(QObject* root, const char* name) {
    auto* item = root->findChild<QObject*>(name);
    return item ? item->property("text").toString() : QStringLiteral("<missing %1>").arg(name);
}

bool isShown(QObject* root, const char* name) {
    auto* item = root->findChild<QQuickItem*>(name);
    return item && item->isVisible();
}

void collect(QQuickItem* item, const QString& name, QList<QObject*>& found) {
    if (item->objectName() == name) {
        found.append(item);
    }
    for (QQuickItem* child : item->childItems()) {
        collect(child, name, found);
    }
}

// The visual items named `name` below `root` (list delegates included), top to bottom.
QList<QObject*> all(QObject* root, const char* name) {
    QList<QObject*> found;
    collect(qobject_cast<QQuickItem*>(root), QString::fromUtf8(name), found);
    std::stable_sort(found.begin(), found.end(), [](QObject* a, QObject* b) {
        const auto* x = qobject_cast<QQuickItem*>(a);
        const auto* y = qobject_cast<QQuickItem*>(b);
        return x->mapToScene(QPointF()).y() < y->mapToScene(QPointF()).y();
    });
    return found;
}

class JunkCleanerPageTest : public QObject {
    Q_OBJECT

private slots:
    void showsGroupsAndCleansOneGroup() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        QTemporaryDir dir;
        const QString home = dir.filePath("home");
        const qint64 monthsAgo = QDateTime::currentSecsSinceEpoch() - 95 * 86400;
        writeFile(home + "/.cache/pip/http/wheel-a.whl", 3 * 1024 * 1024, monthsAgo);
        writeFile(home + "/.cargo/registry/cache/index/serde.crate", 2 * 1024 * 1024);
        writeFile(home + "/.gradle/caches/modules-2/lib.jar", 5 * 1024 * 1024);
        writeFile(home + "/projects/webapp/node_modules/react/index.js", 12 * 1024 * 1024);
        writeFile(home + "/.cache/thumbnails/large/a.png", 11 * 1024 * 1024);
        writeFile(home + "/.xsession-errors", 2 * 1024 * 1024);
        writeFile(home + "/.local/share/Trash/files/old-notes.txt", 4000);
        writeFile(home + "/.local/share/Trash/files/empty.log", 0);

        JunkScanner scanner(Locations::forLinux(home.toStdString()));
        std::unique_ptr<QObject> theme; // outlives the view, whose bindings read it
        QQuickView view;
        installShellImageProviders(*view.engine());
        QQmlComponent themeComponent(view.engine());
        themeComponent.setData(kThemeQml, QUrl());
        theme.reset(themeComponent.create());
        QVERIFY(theme);
        view.setInitialProperties({{"scanner", QVariant::fromValue<QObject*>(&scanner)},
                                   {"theme", QVariant::fromValue<QObject*>(theme.get())}});
        view.setResizeMode(QQuickView::SizeRootObjectToView);
        view.resize(1080, 860);
        view.setSource(QUrl("qrc:/Sondrel/qml/junk/JunkCleanerView.qml"));
        QVERIFY2(
            view.status() == QQuickView::Ready,
            qPrintable(view.errors().isEmpty() ? QString() : view.errors().first().toString()));
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QObject* page = view.rootObject();

        QVERIFY(isShown(page, "emptyState"));
        QVERIFY(!isShown(page, "summaryBar"));

        QVERIFY(QMetaObject::invokeMethod(page->findChild<QObject*>("scanButton"), "clicked"));
        QVERIFY(scanner.isScanning());
        QVERIFY(QTest::qWaitFor([&] { return !scanner.isScanning(); }, 20000));
        QVERIFY(!isShown(page, "emptyState"));
        QVERIFY(isShown(page, "summaryBar"));
        QCOMPARE(scanner.groupCount(), 5);
        QVERIFY(textOf(page, "selectedOutOfText").startsWith("Selected out of "));

        // The node_modules card starts unselected; its box selects it and then says so.
        QTRY_COMPARE(all(page, "countText").size(), 5);
        QCOMPARE(all(page, "countText").at(1)->property("text").toString(),
                 QString("(0/1 selected)"));
        QCOMPARE(all(page, "selectAllButton").at(1)->property("text").toString(),
                 QString("Select All"));
        QVERIFY(QMetaObject::invokeMethod(all(page, "groupSelectBox").at(1), "clicked"));
        QTRY_COMPARE(all(page, "countText").at(1)->property("text").toString(),
                     QString("(1/1 selected)"));
        QCOMPARE(all(page, "selectAllButton").at(1)->property("text").toString(),
                 QString("Deselect All"));
        QVERIFY(QMetaObject::invokeMethod(all(page, "selectAllButton").at(1), "clicked"));
        QTRY_COMPARE(all(page, "countText").at(1)->property("text").toString(),
                     QString("(0/1 selected)"));

        // Expanding the developer card lists its rows, with when each was last used.
        QVERIFY(QMetaObject::invokeMethod(all(page, "expandButton").at(0), "clicked"));
        QTRY_COMPARE(all(page, "itemSelectBox").size(), 3);
        QVERIFY(QMetaObject::invokeMethod(all(page, "itemSelectBox").at(0), "clicked"));
        QTRY_COMPARE(all(page, "countText").at(0)->property("text").toString(),
                     QString("(2/3 selected)"));
        QCOMPARE(all(page, "itemSelectBox").size(), 3); // still expanded

        const QString screenshot = qEnvironmentVariable("SONDREL_SCREENSHOT");
        if (!screenshot.isEmpty()) {
            QTest::qWait(200);
            QVERIFY(view.grabWindow().save(screenshot));
        }

        // Clean the Trash card only: the confirmation first, then the clean and a rescan.
        QVERIFY(QMetaObject::invokeMethod(all(page, "cleanGroupButton").at(4), "clicked"));
        auto* confirm = page->findChild<QObject*>("cleanConfirmDialog");
        QVERIFY(confirm);
        QTRY_VERIFY(confirm->property("opened").toBool());
        QSignalSpy cleaned(&scanner, &JunkScanner::cleanFinished);
        QSignalSpy rescanned(&scanner, &JunkScanner::scanFinished);
        QVERIFY(
            QMetaObject::invokeMethod(page->findChild<QObject*>("moveToTrashButton"), "clicked"));
        QVERIFY(cleaned.wait(20000));
        QTRY_COMPARE_WITH_TIMEOUT(rescanned.count(), 1, 20000);
        QVERIFY(!QFileInfo::exists(home + "/.local/share/Trash/files/old-notes.txt"));
        QVERIFY(QFileInfo::exists(home + "/.cache/pip/http/wheel-a.whl"));
        QVERIFY(QFileInfo::exists(home + "/.xsession-errors"));
        QCOMPARE(scanner.groupCount(), 4);
        QTRY_VERIFY(textOf(page, "statusText").contains("Freed "));
    }
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::JunkCleanerPageTest)
#include "junk_cleaner_page_test.moc"
