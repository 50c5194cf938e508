// LargeFileSearch's states: a folder search published on the GUI thread, a missing folder's
// message, requests ignored while busy, cancel returning to idle at once, and destruction
// during a search.

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
