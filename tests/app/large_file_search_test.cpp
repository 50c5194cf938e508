// LargeFileSearch's states: a folder search published on the GUI thread, a missing folder's
// and a file's message, requests and trashing ignored while busy, cancel returning to idle at
// once, destruction during a search, the main window's target folder, and a file that cannot
// be shown.

#include "app/large_file_search.h"
#include "app/qt_conversions.h"

#ifndef Q_MOC_RUN
#include "platform/locations.h"
#endif

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

namespace sondrel {

namespace {

void writeFile(const QString& path, qint64 size) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(size));
}

} // namespace

class LargeFileSearchTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    Locations locations() const { return Locations::forLinux(toPathBytes(m_dir.path())); }

private slots:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        writeFile(m_dir.path() + "/data/big.iso", 30 << 20);
        writeFile(m_dir.path() + "/data/small.txt", 100);
        // Enough folders that a search lasts a few progress flushes.
        for (int i = 0; i < 400; ++i) {
            writeFile(QStringLiteral("%1/many/d%2/f").arg(m_dir.path()).arg(i), 1);
        }
    }

    void searchesAFolderAndPublishesOnceDone() {
        LargeFileSearch search(locations());
        QCOMPARE(search.statusText(), QStringLiteral("Ready to search"));
        QVERIFY(!search.hasSearched());
        QSignalSpy searching(&search, &LargeFileSearch::isSearchingChanged);
        search.scanFolder(m_dir.path() + "/data");
        QVERIFY(search.isSearching());
        QCOMPARE(search.statusText(), QStringLiteral("Scanning directories for large files..."));
        search.scanDrive(); // ignored while a search runs
        QTRY_VERIFY(!search.isSearching());
        QCOMPARE(searching.count(), 2);
        QVERIFY(search.hasSearched());
        QCOMPARE(search.statusText(), QStringLiteral("Scan finished: found 1 large files"));
        QCOMPARE(search.results()->rowCount(), 1);
        QCOMPARE(search.results()->totalCount(), 1);
    }

    void reportsAFolderThatCannotBeRead() {
        LargeFileSearch search(locations());
        search.scanFolder(m_dir.path() + "/missing");
        QTRY_VERIFY(!search.isSearching());
        QVERIFY(search.statusText().endsWith(QStringLiteral("missing\u201d cannot be read")));
        QCOMPARE(search.results()->rowCount(), 0);
        QCOMPARE(search.results()->emptyText(), QStringLiteral("No large files found"));

        search.scanFolder(m_dir.path() + "/data/big.iso");
        QTRY_VERIFY(!search.isSearching());
        QVERIFY(search.statusText().endsWith(QStringLiteral("big.iso\u201d is not a folder")));
    }

    void offersTheTargetFolderWhenItIsNotHomeOrTheDrive() {
        LargeFileSearch search(locations());
        QSignalSpy changed(&search, &LargeFileSearch::targetFolderChanged);
        search.setTargetFolder(m_dir.path() + "/"); // the home folder: scanHome covers it
        QVERIFY(!search.hasCustomTarget());
        QCOMPARE(search.scanTargetText(), QString());
        search.scanTarget(); // nothing to search
        QVERIFY(!search.isSearching());
        search.setTargetFolder(QStringLiteral("/"));
        QVERIFY(!search.hasCustomTarget());
        search.setTargetFolder(m_dir.path() + "/a-folder-with-a-rather-long-name");
        QCOMPARE(search.scanTargetText(), QString::fromUtf8("Scan a-folder-with-a-rather-\u2026"));

        search.setTargetFolder(m_dir.path() + "/data");
        QVERIFY(search.hasCustomTarget());
        QCOMPARE(search.scanTargetText(), QStringLiteral("Scan data"));
        QCOMPARE(changed.count(), 4);
        search.scanTarget();
        QVERIFY(search.isSearching());
        QTRY_VERIFY(!search.isSearching());
        QCOMPARE(search.statusText(), QStringLiteral("Scan finished: found 1 large files"));
        QCOMPARE(search.results()
                     ->data(search.results()->index(0), LargeFileResultsModel::PathRole)
                     .toString(),
                 m_dir.path() + "/data/big.iso");
    }

    void trashWaitsForTheSearchAndAGoneFileCannotBeShown() {
        writeFile(m_dir.path() + "/kept/keep.iso", 25 << 20);
        writeFile(m_dir.path() + "/kept/gone.iso", 24 << 20);
        LargeFileSearch search(locations());
        QVERIFY(search.canTrash());
        search.scanFolder(m_dir.path() + "/kept");
        QVERIFY(!search.canTrash());
        QTRY_VERIFY(!search.isSearching());
        QVERIFY(search.canTrash());
        QCOMPARE(search.results()->rowCount(), 2);

        // A search running over the shown rows: a trash request does nothing.
        QSignalSpy canTrash(&search, &LargeFileSearch::canTrashChanged);
        search.results()->select(0);
        search.scanFolder(m_dir.path());
        QCOMPARE(canTrash.count(), 1);
        search.trashSelected();
        QVERIFY(!search.isTrashing());
        QTRY_VERIFY(!search.isSearching());
        QVERIFY(QFile::exists(m_dir.path() + "/kept/keep.iso"));
        QCOMPARE(search.noticeText(), QString());

        QVERIFY(!search.revealRow(-1)); // no such row: nothing to say
        QCOMPARE(search.noticeText(), QString());
        search.scanFolder(m_dir.path() + "/kept");
        QTRY_VERIFY(!search.isSearching());
        QVERIFY(QFile::remove(m_dir.path() + "/kept/gone.iso"));
        QCOMPARE(search.results()
                     ->data(search.results()->index(1), LargeFileResultsModel::NameRole)
                     .toString(),
                 QStringLiteral("gone.iso"));
        QVERIFY(!search.revealRow(1));
        QCOMPARE(search.noticeText(),
                 QString::fromUtf8("Could not show \u201cgone.iso\u201d in Files"));
    }

    void cancelIsImmediateAndDestructionDuringASearchIsSafe() {
        LargeFileSearch search(locations());
        search.scanFolder(m_dir.path());
        search.cancel();
        QVERIFY(!search.isSearching());
        QVERIFY(search.statusText().startsWith(QStringLiteral("Scan cancelled")));
        QTRY_VERIFY(search.hasSearched()); // what was found before the stop still arrives
        QVERIFY(search.statusText().startsWith(QStringLiteral("Scan cancelled")));

        auto doomed = std::make_unique<LargeFileSearch>(locations());
        doomed->scanFolder(m_dir.path());
        doomed.reset();
    }
};

} // namespace sondrel

QTEST_MAIN(sondrel::LargeFileSearchTest)
#include "large_file_search_test.moc"
