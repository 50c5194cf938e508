// JunkScanner as the page and Smart Care drive it: a scan publishes groups and texts, a second
// request while busy is ignored, selection changes update the model, and a clean runs off the
// GUI thread with progress, touches only the chosen group and ends with a rescan.

#include "app/junk_scanner.h"
#include "platform/locations.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using sondrel::JunkScanner;
using sondrel::JunkType;
using sondrel::Locations;

namespace {

void writeFile(const QString& path, qint64 size) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(static_cast<int>(size), 'x'));
}

} // namespace

class JunkScannerTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString home() const { return m_dir.filePath("home"); }
    Locations locations() const { return Locations::forLinux(home().toStdString()); }

    static bool waitIdle(JunkScanner& scanner) {
        return QTest::qWaitFor([&] { return !scanner.isScanning() && !scanner.isCleaning(); },
                               20000);
    }

private slots:
    void init() {
        QDir(home()).removeRecursively();
        writeFile(home() + "/.cache/pip/wheel.whl", 2 * 1024 * 1024);
        writeFile(home() + "/.local/share/Trash/files/old.txt", 10);
        writeFile(home() + "/.local/share/Trash/files/older.txt", 20);
    }

    void scanPublishesGroupsAndIgnoresASecondRequest() {
        JunkScanner scanner(locations());
        QSignalSpy finished(&scanner, &JunkScanner::scanFinished);
        QVERIFY(scanner.statusMessage().isEmpty());
        scanner.scan();
        QVERIFY(scanner.isScanning());
        QCOMPARE(scanner.statusMessage(), QString("Scanning for developer caches, logs & junk..."));
        scanner.scan(); // ignored
        QVERIFY(waitIdle(scanner));
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(scanner.groupCount(), 2);
        QCOMPARE(scanner.groups().front().type, JunkType::xcode);
        QVERIFY(scanner.statusMessage().startsWith("Found "));
        QVERIFY(scanner.statusMessage().endsWith(" of cleanable space"));
        QVERIFY(scanner.selectedOutOfText().startsWith("Selected out of "));
        QCOMPARE(scanner.groupModel()->rowCount(), 2);
    }

    void togglesUpdateTheModelRow() {
        JunkScanner scanner(locations());
        scanner.scan();
        QVERIFY(waitIdle(scanner));
        const auto* model = scanner.groupModel();
        const QModelIndex trash = model->index(1);
        const QString groupId =
            model->data(trash, sondrel::JunkGroupsModel::groupIdRole).toString();
        const QVariantList items = model->data(trash, sondrel::JunkGroupsModel::itemsRole).toList();
        QCOMPARE(items.size(), 2);
        QCOMPARE(model->data(trash, sondrel::JunkGroupsModel::selectionIconRole).toString(),
                 QString("checkmark.square.fill"));

        QSignalSpy changed(model, &QAbstractItemModel::dataChanged);
        scanner.toggleItemSelection(groupId, items.front().toMap().value("itemId").toString());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(model->data(trash, sondrel::JunkGroupsModel::selectionIconRole).toString(),
                 QString("minus.square.fill"));
        QCOMPARE(model->data(trash, sondrel::JunkGroupsModel::countTextRole).toString(),
                 QString("(1/2 selected)"));
        scanner.toggleGroupSelection(groupId);
        QCOMPARE(model->data(trash, sondrel::JunkGroupsModel::allSelectedRole).toBool(), true);
        scanner.toggleGroupSelection(groupId);
        QCOMPARE(model->data(trash, sondrel::JunkGroupsModel::selectionIconRole).toString(),
                 QString("square"));
    }

    void cleaningAGroupTouchesOnlyItAndRescans() {
        JunkScanner scanner(locations());
        scanner.scan();
        QVERIFY(waitIdle(scanner));
        const QString trashId =
            scanner.groupModel()
                ->data(scanner.groupModel()->index(1), sondrel::JunkGroupsModel::groupIdRole)
                .toString();
        QSignalSpy cleaned(&scanner, &JunkScanner::cleanFinished);
        QSignalSpy rescanned(&scanner, &JunkScanner::scanFinished);
        QStringList statuses;
        connect(&scanner, &JunkScanner::statusMessageChanged, this,
                [&] { statuses.append(scanner.statusMessage()); });

        QVERIFY(scanner.cleanGroup(trashId));
        QVERIFY(scanner.isCleaning());
        QVERIFY(!scanner.cleanAllSelected()); // busy: ignored
        QTRY_COMPARE_WITH_TIMEOUT(rescanned.count(), 1, 20000);
        QCOMPARE(cleaned.count(), 1);
        QVERIFY(cleaned.front().at(0).toString().startsWith("Freed "));
        QCOMPARE(cleaned.front().at(1).toLongLong(), 30);
        QVERIFY(statuses.contains("Cleaning 1 of 2 ..."));
        QVERIFY(!QFileInfo::exists(home() + "/.local/share/Trash/files/old.txt"));
        QVERIFY(QFileInfo::exists(home() + "/.cache/pip/wheel.whl"));
        QCOMPARE(scanner.groupCount(), 1);
        QVERIFY(scanner.lastCleanMessage().startsWith("Freed "));
    }
};

QTEST_GUILESS_MAIN(JunkScannerTest)
#include "junk_scanner_test.moc"
