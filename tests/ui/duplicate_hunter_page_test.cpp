// The Duplicate Hunter page rendered offscreen over a temporary home: empty state, a scan's
// groups and summary, Keep Newest, the confirmation and result dialogs of a trash run, and the
// empty state again afterwards. No QML warning is allowed. With SONDREL_SCREENSHOT set, the page
// with its results is saved there.

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
        QCOMPARE(view.load("qrc:/Sondrel/qml/duplicates/DuplicateHunterPage.qml",
                           {{"scanner", QVariant::fromValue<QObject*>(&scanner)}}, {1080, 760}),
                 QString());
        QQuickItem* page = view.page();

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
        const QString screenshot = qEnvironmentVariable("SONDREL_SCREENSHOT");
        if (!screenshot.isEmpty()) {
            QVERIFY(view.view().grabWindow().save(screenshot));
        }

        QVERIFY(
            QMetaObject::invokeMethod(page->findChild<QObject*>("keepNewestButton"), "clicked"));
        QCOMPARE(textOf(page, "trashButton"), QString("Trash Selected (4)"));

        QVERIFY(QMetaObject::invokeMethod(page->findChild<QObject*>("trashButton"), "clicked"));
        auto* confirm = page->findChild<QObject*>("trashConfirmDialog");
        QVERIFY(confirm);
        QTRY_VERIFY(confirm->property("opened").toBool());
        QSignalSpy finished(&scanner, &DuplicateScanner::trashFinished);
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
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::DuplicateHunterPageTest)
#include "duplicate_hunter_page_test.moc"
