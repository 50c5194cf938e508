// DiskScanner as the storage section drives it: published states of a scan, refusal, cancel,
// ignored requests, progress on the GUI thread, and destruction during a scan.

#include "app/disk_scanner.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <sys/stat.h>

using sondrel::DiskScanner;
using sondrel::SizeMeasure;

namespace {

void writeFile(const QString& path, qint64 size) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(size));
}

// A tree big enough that a scan takes a few progress flushes.
void makeTree(const QString& root, int folders, int filesPerFolder) {
    for (int i = 0; i < folders; ++i) {
        for (int j = 0; j < filesPerFolder; ++j) {
            writeFile(QStringLiteral("%1/d%2/f%3").arg(root).arg(i).arg(j), 10);
        }
    }
}

qint64 allocatedBytes(const QString& path) {
    struct stat info {};
    return lstat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_blocks * 512 : -1;
}

} // namespace

class DiskScannerTest : public QObject {
    Q_OBJECT

private slots:
    void initialStateIsIdle() {
        DiskScanner scanner;
        QVERIFY(!scanner.isScanning());
        QCOMPARE(scanner.progressText(), QString());
        QCOMPARE(scanner.currentPath(), QString());
        QCOMPARE(scanner.scannedCount(), 0);
        QVERIFY(!scanner.hasRootItem());
        QVERIFY(!scanner.accessDenied());
    }

    void scanPublishesTreeAndSummaryOnTheGuiThread() {
        QTemporaryDir dir;
        writeFile(dir.filePath("docs/a.txt"), 1000);
        writeFile(dir.filePath("docs/.hidden"), 5000);
        writeFile(dir.filePath("b.bin"), 500);
        DiskScanner scanner;
        bool offThread = false;
        const auto checkThread = [&] {
            offThread |= QThread::currentThread() != QCoreApplication::instance()->thread();
        };
        connect(&scanner, &DiskScanner::progressChanged, this, checkThread, Qt::DirectConnection);
        connect(&scanner, &DiskScanner::progressTextChanged, this, checkThread,
                Qt::DirectConnection);
        connect(&scanner, &DiskScanner::rootItemChanged, this, checkThread, Qt::DirectConnection);
        QSignalSpy finished(&scanner, &DiskScanner::scanFinished);

        scanner.scan(dir.path());
        QVERIFY(scanner.isScanning());
        QCOMPARE(scanner.progressText(),
                 QStringLiteral("Fast scanning %1...").arg(QFileInfo(dir.path()).fileName()));
        QCOMPARE(scanner.currentPath(), dir.path());
        QVERIFY(finished.wait(10000));

        QVERIFY(!scanner.isScanning());
        QVERIFY(scanner.hasRootItem());
        // Sizes on disk: the files' allocated blocks; the length stays one switch away.
        const qint64 onDisk =
            allocatedBytes(dir.filePath("docs/a.txt")) + allocatedBytes(dir.filePath("b.bin"));
        QCOMPARE(scanner.rootItem().tree()->measure(), SizeMeasure::allocated);
        QCOMPARE(scanner.rootItem().size(), onDisk);
        QCOMPARE(scanner.rootItem().node()->otherSize, 1500);
        QCOMPARE(scanner.rootItem().fileCount(), 2);
        QCOMPARE(scanner.scannedCount(), 2);
        QCOMPARE(scanner.scannedBytes(), onDisk);
        QVERIFY2(scanner.progressText().startsWith(QStringLiteral("Scanned 2 items (")),
                 qPrintable(scanner.progressText()));
        QVERIFY(scanner.progressText().endsWith(QStringLiteral(" items/s)")));
        QCOMPARE(scanner.currentPath(), QString());
        QVERIFY(!offThread);
    }

    void unreadableTargetIsRefusedAndClearsTheTree() {
        QTemporaryDir dir;
        writeFile(dir.filePath("x"), 1);
        DiskScanner scanner;
        QSignalSpy finished(&scanner, &DiskScanner::scanFinished);
        scanner.scan(dir.path());
        QVERIFY(finished.wait(10000));
        QVERIFY(scanner.hasRootItem());

        QSignalSpy denied(&scanner, &DiskScanner::accessDeniedChanged);
        scanner.scan(dir.filePath("missing"));
        QVERIFY(!scanner.isScanning());
        QVERIFY(scanner.accessDenied());
        QVERIFY(!scanner.hasRootItem());
        QCOMPARE(scanner.progressText(),
                 QStringLiteral("Access not allowed for 'missing'. Permission was denied."));
        QCOMPARE(scanner.scannedCount(), 0);
        QCOMPARE(denied.count(), 1);

        scanner.scan(dir.path()); // a scan that starts clears the refusal
        QVERIFY(!scanner.accessDenied());
        QVERIFY(finished.wait(10000));
    }

    void cancelRightAfterStartPublishesPartialTreeThenSummary() {
        QTemporaryDir dir;
        makeTree(dir.path(), 20, 20);
        DiskScanner scanner;
        QSignalSpy finished(&scanner, &DiskScanner::scanFinished);
        QStringList texts;
        connect(&scanner, &DiskScanner::progressTextChanged, this,
                [&] { texts << scanner.progressText(); });
        scanner.scan(dir.path());
        scanner.cancel();
        QVERIFY(!scanner.isScanning());
        QCOMPARE(scanner.progressText(), QStringLiteral("Scan cancelled"));
        QVERIFY(finished.wait(10000));
        QVERIFY(scanner.hasRootItem());
        QVERIFY(scanner.rootItem().fileCount() <= 400);
        QVERIFY(scanner.progressText().startsWith(QStringLiteral("Scanned ")));
        // The order the interface saw: start, cancelled, summary (no progress after cancel).
        QVERIFY(texts.size() >= 3);
        QCOMPARE(texts.at(texts.size() - 2), QStringLiteral("Scan cancelled"));
        QVERIFY(!scanner.isScanning());
    }

    void scanWhileScanningIsIgnored() {
        QTemporaryDir first;
        QTemporaryDir second;
        makeTree(first.path(), 10, 10);
        writeFile(second.filePath("other"), 7);
        DiskScanner scanner;
        QSignalSpy finished(&scanner, &DiskScanner::scanFinished);
        scanner.scan(first.path());
        const QString text = scanner.progressText();
        scanner.scan(second.path());
        QCOMPARE(scanner.progressText(), text);
        QVERIFY(finished.wait(10000));
        QCOMPARE(scanner.rootItem().fileCount(), 100);
        QTest::qWait(50);
        QCOMPARE(finished.count(), 1);
    }

    void destroyedDuringAScan() {
        QTemporaryDir dir;
        makeTree(dir.path(), 30, 30);
        for (int i = 0; i < 5; ++i) {
            auto* scanner = new DiskScanner;
            scanner->scan(dir.path());
            if (i % 2 == 1) {
                QCoreApplication::processEvents();
            }
            delete scanner;
        }
        QCoreApplication::processEvents(); // queued calls to the dead objects are dropped
    }

    void readabilityTest() {
        QTemporaryDir dir;
        writeFile(dir.filePath("f"), 1);
        QVERIFY(DiskScanner::isPathAccessibleAndReadable(dir.path()));
        QVERIFY(DiskScanner::isPathAccessibleAndReadable(dir.filePath("f")));
        QVERIFY(!DiskScanner::isPathAccessibleAndReadable(dir.filePath("none")));
    }
};

QTEST_GUILESS_MAIN(DiskScannerTest)
#include "disk_scanner_test.moc"
