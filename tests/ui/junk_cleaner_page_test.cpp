// The junk cleaner page rendered offscreen over a populated temporary home: empty state, a
// scan's group cards and summary, the group box going from partly to fully selected, an
// expanded card with its rows and "Admin"-free items, and a per-group clean after the
// confirmation that leaves the other groups alone. No QML warning is allowed. With
// SONDREL_SCREENSHOT set, the page with an expanded card is saved there.

#include "app/junk_scanner.h"
#include "platform/locations.h"
#include "tests/ui/page_harness.h"
#include "tests/ui/warning_filter.h"

#include <QFileInfo>
#include <QQuickItem>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

using namespace sondrel::test;

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
        PageView view;
        QCOMPARE(view.load("qrc:/Sondrel/qml/junk/JunkCleanerView.qml",
                           {{"scanner", QVariant::fromValue<QObject*>(&scanner)}}, {1080, 860}),
                 QString());
        QQuickItem* page = view.page();
        const auto all = [page](const char* name) { return findAllTopToBottom(page, name); };

        scanFromEmptyState(page, scanner);
        if (QTest::currentTestFailed()) {
            return;
        }
        QCOMPARE(scanner.groupCount(), 5);
        QVERIFY(textOf(page, "selectedOutOfText").startsWith("Selected out of "));

        // The node_modules card starts unselected; its box selects it and then says so.
        QTRY_COMPARE(all("countText").size(), 5);
        QCOMPARE(all("countText").at(1)->property("text").toString(), QString("(0/1 selected)"));
        QCOMPARE(all("selectAllButton").at(1)->property("text").toString(), QString("Select All"));
        QVERIFY(QMetaObject::invokeMethod(all("groupSelectBox").at(1), "clicked"));
        QTRY_COMPARE(all("countText").at(1)->property("text").toString(),
                     QString("(1/1 selected)"));
        QCOMPARE(all("selectAllButton").at(1)->property("text").toString(),
                 QString("Deselect All"));
        QVERIFY(QMetaObject::invokeMethod(all("selectAllButton").at(1), "clicked"));
        QTRY_COMPARE(all("countText").at(1)->property("text").toString(),
                     QString("(0/1 selected)"));

        // Expanding the developer card lists its rows, with when each was last used.
        QVERIFY(QMetaObject::invokeMethod(all("expandButton").at(0), "clicked"));
        QTRY_COMPARE(all("itemSelectBox").size(), 3);
        QVERIFY(QMetaObject::invokeMethod(all("itemSelectBox").at(0), "clicked"));
        QTRY_COMPARE(all("countText").at(0)->property("text").toString(),
                     QString("(2/3 selected)"));
        QCOMPARE(all("itemSelectBox").size(), 3); // still expanded

        const QString screenshot = qEnvironmentVariable("SONDREL_SCREENSHOT");
        if (!screenshot.isEmpty()) {
            QTest::qWait(200);
            QVERIFY(view.view().grabWindow().save(screenshot));
        }

        // Clean the Trash card only: the confirmation first, then the clean and a rescan.
        QVERIFY(QMetaObject::invokeMethod(all("cleanGroupButton").at(4), "clicked"));
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
