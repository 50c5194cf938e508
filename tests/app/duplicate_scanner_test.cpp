// DuplicateScanner as the page drives it: published states and texts of a scan, a second scan
// ignored, cancel publishing nothing, selection changes, and trash runs with their results.

#include "app/duplicate_scanner.h"
#include "platform/locations.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using sondrel::DuplicateScanner;
using sondrel::Locations;

namespace {

// Writes `size` seeded random bytes; the same seed gives the same contents.
void writeRandom(const QString& path, int size, quint32 seed, qint64 modifiedSecs) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(seed);
    generator.fillRange(reinterpret_cast<quint32*>(bytes.data()), size / 4);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(modifiedSecs),
                             QFileDevice::FileModificationTime));
}

// Flips one byte outside the sampled regions, keeping the modification time.
void flipOutsideSamples(const QString& path) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QDateTime modified = file.fileTime(QFileDevice::FileModificationTime);
    file.seek(file.size() / 4);
    char byte = 0;
    file.getChar(&byte);
    file.seek(file.size() / 4);
    file.putChar(static_cast<char>(byte ^ 1));
    file.flush();
    QVERIFY(file.setFileTime(modified, QFileDevice::FileModificationTime));
}

QStringList namesOf(const QVariantList& files) {
    QStringList names;
    for (const QVariant& file : files) {
        names.append(file.toMap().value("name").toString());
    }
    return names;
}

} // namespace

class DuplicateScannerTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString home() const { return m_dir.filePath("home"); }

    bool waitForScan(DuplicateScanner& scanner) {
        return QTest::qWaitFor([&] { return !scanner.isScanning(); }, 20000);
    }

private slots:
    void init() {
        QDir(home()).removeRecursively();
        QDir().mkpath(home() + "/Documents");
    }

    void scansTheDefaultFoldersAndPublishesGroups() {
        writeRandom(home() + "/Documents/a.bin", 2000000, 1, 1700000000);
        writeRandom(home() + "/Pictures/b.bin", 2000000, 1, 1700000300);
        writeRandom(home() + "/Videos/c.bin", 2000000, 1, 1700000100);
        writeRandom(home() + "/Music/d.bin", 2000000, 1, 1700000200); // not a default folder
        DuplicateScanner scanner(Locations::forLinux(home().toStdString()));
        QCOMPARE(scanner.statusMessage(), QString());
        QSignalSpy statuses(&scanner, &DuplicateScanner::statusMessageChanged);

        QVERIFY(scanner.scan());
        QVERIFY(scanner.isScanning());
        QCOMPARE(scanner.statusMessage(), QString("Discovering candidate duplicate files..."));
        QVERIFY(!scanner.scan()); // a second scan while one runs is ignored
        QVERIFY(waitForScan(scanner));
        QCOMPARE(scanner.statusMessage(), QString("Found 1 duplicate groups (4 MB reclaimable)"));
        QVERIFY(statuses.count() >= 2);
        QCOMPARE(scanner.groupCount(), 1);
        QCOMPARE(scanner.selectedCount(), 2);
        QCOMPARE(scanner.totalWastedText(), QString("4 MB"));

        auto* model = scanner.groups();
        const QModelIndex row = model->index(0);
        QCOMPARE(model->data(row, sondrel::DuplicateGroupsModel::headingRole).toString(),
                 QString("Each file: 2 MB"));
        QCOMPARE(model->data(row, sondrel::DuplicateGroupsModel::copiesTextRole).toString(),
                 QString("3 copies"));
        QVariantList files = model->data(row, sondrel::DuplicateGroupsModel::filesRole).toList();
        QCOMPARE(namesOf(files), (QStringList{"a.bin", "c.bin", "b.bin"}));
        QVERIFY(!files[0].toMap().value("isSelected").toBool());

        // Deselecting one copy lowers the wasted space; Keep Newest puts the newest first.
        scanner.toggleFile(files[1].toMap().value("fileId").toString());
        QCOMPARE(scanner.selectedCount(), 1);
        QCOMPARE(scanner.totalWastedText(), QString("2 MB"));
        scanner.keepNewest();
        files = model->data(row, sondrel::DuplicateGroupsModel::filesRole).toList();
        QCOMPARE(namesOf(files), (QStringList{"b.bin", "c.bin", "a.bin"}));
        QCOMPARE(scanner.selectedCount(), 2);

        // Keep Newest, then trash: only the newest stays; the group disappears.
        QString completed;
        QVERIFY(scanner.trashSelected([&](const QString& message) { completed = message; }));
        QVERIFY(scanner.isTrashing());
        QVERIFY(!scanner.scan());
        QVERIFY(QTest::qWaitFor([&] { return !scanner.isTrashing(); }, 20000));
        QCOMPARE(completed, QString("Successfully moved 2 duplicate files (4 MB) to Trash."));
        QCOMPARE(scanner.groupCount(), 0);
        QVERIFY(QFileInfo::exists(home() + "/Pictures/b.bin"));
        QVERIFY(!QFileInfo::exists(home() + "/Documents/a.bin"));
        QVERIFY(QFileInfo::exists(home() + "/.local/share/Trash/files/a.bin"));
    }

    void aCopyThatIsNotTrueStaysSelected() {
        writeRandom(home() + "/Documents/a.bin", 3000000, 2, 1700000000);
        writeRandom(home() + "/Documents/b.bin", 3000000, 2, 1700000100);
        writeRandom(home() + "/Documents/c.bin", 3000000, 2, 1700000200);
        flipOutsideSamples(home() + "/Documents/c.bin");
        DuplicateScanner scanner(Locations::forLinux(home().toStdString()));
        QSignalSpy finished(&scanner, &DuplicateScanner::trashFinished);
        QVERIFY(scanner.scan({home() + "/Documents"}));
        QVERIFY(waitForScan(scanner));
        QCOMPARE(scanner.selectedCount(), 2);
        QVERIFY(scanner.trashSelected());
        QVERIFY(finished.wait(20000));
        QCOMPARE(finished.first().first().toString(),
                 QString("Moved 1 duplicate files (3 MB) to Trash. 1 file(s) could not be "
                         "removed."));
        QCOMPARE(scanner.groupCount(), 1);
        const QVariantList files =
            scanner.groups()
                ->data(scanner.groups()->index(0), sondrel::DuplicateGroupsModel::filesRole)
                .toList();
        QCOMPARE(namesOf(files), (QStringList{"a.bin", "c.bin"}));
        QVERIFY(files[1].toMap().value("isSelected").toBool());
        QVERIFY(QFileInfo::exists(home() + "/Documents/c.bin"));
    }

    void noDuplicatesAndCancel() {
        writeRandom(home() + "/Documents/only.bin", 1500000, 3, 1700000000);
        DuplicateScanner scanner(Locations::forLinux(home().toStdString()));
        QVERIFY(scanner.scan());
        QVERIFY(waitForScan(scanner));
        QCOMPARE(scanner.statusMessage(),
                 QString("Found 0 duplicate groups (Zero KB reclaimable)"));

        QSignalSpy finished(&scanner, &DuplicateScanner::scanFinished);
        QVERIFY(scanner.scan());
        scanner.cancel();
        QVERIFY(!scanner.isScanning());
        QCOMPARE(scanner.statusMessage(), QString());
        QTest::qWait(300);
        QCOMPARE(finished.count(), 0); // the cancelled scan publishes nothing
        QVERIFY(!scanner.scanFolderUrl(QUrl("https://example.org/")));
        QVERIFY(!scanner.scanFolderUrl(QUrl::fromLocalFile(home() + "/Documents/only.bin")));
        QVERIFY(scanner.scanFolderUrl(QUrl::fromLocalFile(home() + "/Documents")));
        QVERIFY(waitForScan(scanner));
        // Destroyed while a scan runs: nothing is published and nothing hangs.
        auto* running = new DuplicateScanner(Locations::forLinux(home().toStdString()));
        running->scan();
        delete running;
    }

    // Thumbnails only for files the image reader of the named format accepts.
    void thumbnailsOnlyForDecodableImages() {
        const QString pictures = home() + "/Pictures";
        QDir().mkpath(pictures);
        QImage image(64, 64, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        QVERIFY(image.save(pictures + "/real.png", "PNG"));
        QVERIFY(QFile::copy(pictures + "/real.png", pictures + "/png-named.jpg"));
        writeRandom(pictures + "/noise.gif", 4096, 4, 1700000000);
        QFile webp(pictures + "/tiny.webp"); // a RIFF WebP header, readable only with a reader
        QVERIFY(webp.open(QIODevice::WriteOnly));
        webp.write(QByteArray("RIFF\x1a\0\0\0WEBPVP8L\x0d\0\0\0\x2f\0\0\0\x10\x07\x10\x11"
                              "\x11\x88\x88\xfe\x07\0",
                              34));
        webp.close();
        QVERIFY(QFile::link(pictures + "/real.png", pictures + "/link.png"));

        sondrel::DuplicateGroup group;
        std::uint64_t id = 0;
        for (const char* name :
             {"real.png", "png-named.jpg", "noise.gif", "tiny.webp", "link.png", "missing.png"}) {
            sondrel::DuplicateFile file;
            file.id = ++id;
            file.path = (pictures + "/" + name).toStdString();
            file.size = 4096;
            group.files.push_back(file);
        }
        const auto thumbnails = sondrel::DuplicateGroupsModel::thumbnailFiles({group});
        QVERIFY(thumbnails.contains(1));
        QVERIFY(!thumbnails.contains(2)); // PNG bytes behind a JPEG name
        QVERIFY(!thumbnails.contains(3));
        QCOMPARE(thumbnails.contains(4), QImageReader::supportedImageFormats().contains("webp"));
        QVERIFY(!thumbnails.contains(5)); // links are not followed
        QVERIFY(!thumbnails.contains(6));
    }

    void labelsUseThisPlatformsWords() {
        const QVariantMap labels = DuplicateScanner::labels();
        QCOMPARE(labels["reveal"].toString(), QString("Show in Files"));
        QCOMPARE(labels["confirmText"].toString(),
                 QString("Selected duplicate copies will be moved into Trash. Original copies "
                         "will remain untouched."));
    }
};

QTEST_GUILESS_MAIN(DuplicateScannerTest)
#include "duplicate_scanner_test.moc"
