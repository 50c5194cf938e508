// The Duplicate Hunter page rendered offscreen over a temporary home: empty state, a scan's
// groups and summary, Keep Newest, the confirmation (Enter keeps everything) and result dialogs
// of a trash run, and the empty state again afterwards; pictures that cannot be decoded; Cancel
// and Escape during a scan. No QML warning is allowed. With SONDREL_SCREENSHOT_DIR set, the page
// with its results is saved there as duplicate-hunter.png.

#include "app/duplicate_scanner.h"
#include "core/model/byte_format.h"
#include "platform/locations.h"
#include "tests/ui/page_harness.h"
#include "tests/ui/warning_filter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QQuickItem>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

using namespace sondrel::test;

void writeRandom(const QString& path, int size, quint32 seed, qint64 secs) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator(seed).fillRange(reinterpret_cast<quint32*>(bytes.data()), size / 4);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();
    setModified(path, secs);
}

// A real PNG over 1 MiB (stored uncompressed) so that the row shows its thumbnail.
void writePicture(const QString& path, QColor from, QColor to, qint64 secs) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QImage image(720, 720, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient gradient(0, 0, 720, 720);
    gradient.setColorAt(0, from);
    gradient.setColorAt(1, to);
    painter.fillRect(image.rect(), gradient);
    painter.setBrush(QColor(255, 255, 255, 90));
    painter.drawEllipse(QPoint(470, 250), 140, 140);
    painter.end();
    QVERIFY(image.save(path, "PNG", 100));
    QVERIFY(QFileInfo(path).size() >= 1048576);
    setModified(path, secs);
}

void copyWithTime(const QString& from, const QString& to, qint64 secs) {
    QDir().mkpath(QFileInfo(to).absolutePath());
    QVERIFY(QFile::copy(from, to));
    setModified(to, secs);
}

class DuplicateHunterPageTest : public QObject {
    Q_OBJECT

private slots:
    void showsGroupsAndTrashesTheSelection() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        QTemporaryDir dir;
        const QString home = dir.filePath("home");
        writePicture(home + "/Pictures/Lake at dawn.png", QColor(40, 90, 200), QColor(250, 150, 80),
                     1690000000);
        copyWithTime(home + "/Pictures/Lake at dawn.png", home + "/Downloads/Lake at dawn.png",
                     1700000000);
        copyWithTime(home + "/Pictures/Lake at dawn.png", home + "/Desktop/Lake (copy).png",
                     1710000000);
        writeRandom(home + "/Documents/Annual report.pdf", 2400000, 7, 1680000000);
        copyWithTime(home + "/Documents/Annual report.pdf", home + "/Downloads/Annual report.pdf",
                     1705000000);
        writeRandom(home + "/Videos/Birthday.mp4", 8000000, 8, 1650000000);
        copyWithTime(home + "/Videos/Birthday.mp4", home + "/Desktop/Birthday.mp4", 1702000000);

        DuplicateScanner scanner(Locations::forLinux(home.toStdString()));
        PageView view;
        QQuickItem* page = loadPage(view, scanner);
        QVERIFY(page);
        view.view().requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(&view.view()));

        scanFromEmptyState(page, scanner);
        if (QTest::currentTestFailed()) {
            return;
        }
        QCOMPARE(textOf(page, "setsText"), QString("3 Duplicate Sets"));
        const qint64 pictureSize = QFileInfo(home + "/Pictures/Lake at dawn.png").size();
        const QString wasted = QString::fromStdString(formatBytes(2 * pictureSize + 10400000));
        QCOMPARE(textOf(page, "wastedText"), "Selected wasted space: " + wasted);
        QCOMPARE(textOf(page, "trashButton"), QString("Trash Selected (4)"));
        QCOMPARE(scanner.statusMessage(), "Found 3 duplicate groups (" + wasted + " reclaimable)");

        // Let the thumbnails load, then keep a picture of the results when asked to.
        QTest::qWait(400);
        const QString screenshots = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        if (!screenshots.isEmpty()) {
            QVERIFY(view.view().grabWindow().save(screenshots + "/duplicate-hunter.png"));
        }

        QVERIFY(
            QMetaObject::invokeMethod(page->findChild<QObject*>("keepNewestButton"), "clicked"));
        QCOMPARE(textOf(page, "trashButton"), QString("Trash Selected (4)"));

        // The confirmation opens on Cancel: Enter closes it and nothing moves.
        QSignalSpy finished(&scanner, &DuplicateScanner::trashFinished);
        QVERIFY(QMetaObject::invokeMethod(page->findChild<QObject*>("trashButton"), "clicked"));
        auto* confirm = page->findChild<QObject*>("trashConfirmDialog");
        QVERIFY(confirm);
        QTRY_VERIFY(confirm->property("opened").toBool());
        QTRY_VERIFY(findObject(page, "cancelTrashButton")->property("activeFocus").toBool());
        if (!screenshots.isEmpty()) {
            QTest::qWait(200); // the dialog's opening transition
            QVERIFY(view.view().grabWindow().save(screenshots + "/duplicate-hunter-confirm.png"));
        }
        QTest::keyClick(&view.view(), Qt::Key_Return);
        QTRY_VERIFY(!confirm->property("visible").toBool());
        QVERIFY(!scanner.isTrashing());
        QCOMPARE(finished.count(), 0);
        QVERIFY(QFileInfo::exists(home + "/Pictures/Lake at dawn.png"));

        QVERIFY(QMetaObject::invokeMethod(page->findChild<QObject*>("trashButton"), "clicked"));
        QTRY_VERIFY(confirm->property("opened").toBool());
        auto* move = page->findChild<QObject*>("moveToTrashButton");
        QVERIFY(move);
        QVERIFY(QMetaObject::invokeMethod(move, "clicked"));
        QVERIFY(finished.wait(20000));
        QCOMPARE(finished.first().first().toString(),
                 "Successfully moved 4 duplicate files (" + wasted + ") to Trash.");
        auto* result = page->findChild<QObject*>("trashResultDialog");
        QTRY_VERIFY(result->property("opened").toBool());
        QCOMPARE(result->property("message").toString(), finished.first().first().toString());

        // The newest copy of every set is left; all groups are gone, so the empty state is back.
        QVERIFY(QFileInfo::exists(home + "/Desktop/Lake (copy).png"));
        QVERIFY(!QFileInfo::exists(home + "/Pictures/Lake at dawn.png"));
        QVERIFY(QFileInfo::exists(home + "/Downloads/Annual report.pdf"));
        QVERIFY(QFileInfo::exists(home + "/Desktop/Birthday.mp4"));
        QVERIFY(!QFileInfo::exists(home + "/Videos/Birthday.mp4"));
        QTRY_VERIFY(isShown(page, "emptyState"));
    }

    // A ".jpg" that is no JPEG shows the icon rather than an Image that fails to decode; a real
    // picture shows its thumbnail.
    void undecodablePicturesShowTheIcon() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        QTemporaryDir dir;
        const QString home = dir.filePath("home");
        writeRandom(home + "/Pictures/Noise.jpg", 1500000, 9, 1690000000);
        copyWithTime(home + "/Pictures/Noise.jpg", home + "/Downloads/Noise.jpg", 1700000000);
        writePicture(home + "/Pictures/Sky.png", QColor(20, 60, 120), QColor(200, 220, 255),
                     1690000000);
        copyWithTime(home + "/Pictures/Sky.png", home + "/Downloads/Sky.png", 1700000000);

        DuplicateScanner scanner(Locations::forLinux(home.toStdString()));
        PageView view;
        QQuickItem* page = loadPage(view, scanner);
        QVERIFY(page);
        scanFromEmptyState(page, scanner);
        if (QTest::currentTestFailed()) {
            return;
        }
        QCOMPARE(textOf(page, "setsText"), QString("2 Duplicate Sets"));
        QStringList withThumbnail;
        DuplicateGroupsModel* groups = scanner.groups();
        for (int row = 0; row < groups->rowCount(); ++row) {
            const QVariantList files =
                groups->data(groups->index(row), DuplicateGroupsModel::filesRole).toList();
            for (const QVariant& file : files) {
                if (!file.toMap().value("thumbnailUrl").toUrl().isEmpty()) {
                    withThumbnail.append(file.toMap().value("name").toString());
                }
            }
        }
        QCOMPARE(withThumbnail, (QStringList{"Sky.png", "Sky.png"}));
        QTest::qWait(400); // long enough for an Image to load, or to warn that it cannot
    }

    // "Cancel" and Escape stop a running scan at once; the groups shown stay as they were.
    void cancelAndEscapeStopAScan() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        QTemporaryDir dir;
        const QString home = dir.filePath("home");
        writeRandom(home + "/Documents/Report.pdf", 1200000, 10, 1680000000);
        copyWithTime(home + "/Documents/Report.pdf", home + "/Downloads/Report.pdf", 1700000000);

        DuplicateScanner scanner(Locations::forLinux(home.toStdString()));
        PageView view;
        QQuickItem* page = loadPage(view, scanner);
        QVERIFY(page);
        view.view().requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(&view.view()));
        scanFromEmptyState(page, scanner);
        if (QTest::currentTestFailed()) {
            return;
        }
        QVERIFY(!isShown(page, "cancelScanButton"));
        QSignalSpy finished(&scanner, &DuplicateScanner::scanFinished);

        // No event is processed between the start and the stop, so the scan is still running.
        QVERIFY(QMetaObject::invokeMethod(findObject(page, "scanButton"), "clicked"));
        QVERIFY(scanner.isScanning());
        QVERIFY(isShown(page, "cancelScanButton"));
        QCOMPARE(textOf(page, "cancelScanButton"), QString("Cancel"));
        QVERIFY(QMetaObject::invokeMethod(findObject(page, "cancelScanButton"), "clicked"));
        QVERIFY(!scanner.isScanning());
        QVERIFY(!isShown(page, "cancelScanButton"));

        QVERIFY(QMetaObject::invokeMethod(findObject(page, "scanButton"), "clicked"));
        QVERIFY(scanner.isScanning());
        QTest::keyClick(&view.view(), Qt::Key_Escape);
        QVERIFY(!scanner.isScanning());

        QTest::qWait(300);
        QCOMPARE(finished.count(), 0); // the stopped scans publish nothing
        QCOMPARE(scanner.statusMessage(), QString());
        QCOMPARE(textOf(page, "setsText"), QString("1 Duplicate Sets"));
        QVERIFY(isShown(page, "summaryBar"));
    }

private:
    // Loads the page over `scanner` in `view`; null (with the test failed) when it did not load.
    static QQuickItem* loadPage(PageView& view, DuplicateScanner& scanner) {
        const QString error =
            view.load("qrc:/Sondrel/qml/duplicates/DuplicateHunterPage.qml",
                      {{"scanner", QVariant::fromValue<QObject*>(&scanner)}}, {1080, 760});
        if (!error.isEmpty()) {
            QTest::qFail(qPrintable(error), __FILE__, __LINE__);
            return nullptr;
        }
        return view.page();
    }
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::DuplicateHunterPageTest)
#include "duplicate_hunter_page_test.moc"
