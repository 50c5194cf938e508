// The "Intelligent Search" page in the main window offscreen, over a temporary home of sparse
// files: the empty state, a home search that covers the cloud folder and skips pruned folders,
// refiltering as the user types, the display cap's texts, trashing one and several files
// through the confirmation into the home Trash, and searching the main window's target folder
// or the home again from the header. No QML warning may appear.

#include "app/app_root.h"
#include "app/qt_conversions.h"
#include "tests/ui/page_harness.h"
#include "tests/ui/warning_filter.h"
#include "ui/src/app_actions.h"
#include "ui/src/shell_setup.h"

#ifndef Q_MOC_RUN
#include "platform/locations.h"
#endif

#include <QDir>
#include <QFile>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <memory>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

constexpr int kTimeoutMs = 30000;
constexpr int kSearchSection = 5;

} // namespace

class SmartSearchViewTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<AppRoot> m_root;
    std::unique_ptr<AppActions> m_actions;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QQuickWindow* m_window = nullptr;

    QString home() const { return m_dir.path() + "/home"; }

    void sparse(const QString& relative, qint64 size) {
        const QString path = home() + "/" + relative;
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.resize(size));
    }

    QQuickItem* item(const char* name) const { return test::findItem(m_window, name); }
    QQuickItem* page() const { return item("searchPage"); }
    QStringList pageTexts() const { return test::shownTexts(page()); }
    LargeFileSearch* search() const { return m_root->largeFileSearch(); }
    LargeFileResultsModel* results() const { return search()->results(); }

    void click(QQuickItem* target) {
        QVERIFY(target != nullptr);
        QTRY_VERIFY(target->isVisible());
        const QPointF centre =
            target->mapToScene(QPointF(target->width() / 2, target->height() / 2));
        QTest::mouseClick(m_window, Qt::LeftButton, Qt::NoModifier, centre.toPoint());
    }

    void clickRow(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        auto* list = item("resultsList");
        QVERIFY(list != nullptr);
        QQuickItem* delegate = nullptr;
        QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem*, delegate),
                                  Q_ARG(int, row));
        QVERIFY(delegate != nullptr);
        const QPointF point = delegate->mapToScene(QPointF(60, delegate->height() / 2));
        QTest::mouseClick(m_window, Qt::LeftButton, modifiers, point.toPoint());
    }

private slots:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        QStandardPaths::setTestModeEnabled(true);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
        sparse("Desktop/vm-disk.qcow2", 21474836480);
        sparse("Downloads/debian-12-amd64-DVD-1.iso", 3994091520);
        sparse("Videos/Holiday 2025.mkv", 2254857830);
        sparse("Dropbox/Photos backup.zip", 891289600);
        sparse("Documents/Thesis scans.pdf", 125829120);
        sparse("Videos/exactly-100-MB.mp4", 104857600);
        sparse("Music/Live set.flac", 67108864);
        sparse("Pictures/panorama.psd", 31457280);
        sparse("Downloads/build/pruned.bin", 314572800);
        sparse("Downloads/.hidden.bin", 314572800);
        sparse("Downloads/almost.bin", 20971519);

        QTest::failOnWarning(sondrel::test::anyWarning());
        m_root = std::make_unique<AppRoot>(Locations::forLinux(toPathBytes(home())));
        m_actions = std::make_unique<AppActions>();
        m_engine = std::make_unique<QQmlApplicationEngine>();
        m_window = loadMainWindow(*m_engine, m_root.get(), m_actions.get());
        QVERIFY(m_window != nullptr);
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
        m_root->setSelectedSection(kSearchSection);
        QTRY_VERIFY(page()->isVisible());
    }

    void init() { QTest::failOnWarning(sondrel::test::anyWarning()); }

    void cleanupTestCase() {
        m_engine.reset();
        m_root.reset();
    }

    void showsTheEmptyStateBeforeASearch() {
        const QStringList texts = pageTexts();
        for (const char* text :
             {"Intelligent Search & Large Files",
              "Instant file discovery across your computer with deep size filters",
              "Ready to search", "No Search Run Yet", "Scan Home Directory", "Scan Drive",
              "Type:", "All Sizes", "All Categories"}) {
            QVERIFY2(texts.contains(QString::fromUtf8(text)), text);
        }
        QVERIFY(!item("resultsList")->isVisible());
        QVERIFY(!item("searchHomeAgainButton")->isVisible()); // the empty state has its own
        QVERIFY(!item("searchTargetButton")->isVisible());
    }

    void searchesTheHomeAndRefiltersAsTheUserTypes() {
        click(item("searchHomeButton"));
        QTRY_VERIFY_WITH_TIMEOUT(search()->hasSearched() && !search()->isSearching(), kTimeoutMs);
        QCOMPARE(search()->statusText(), QStringLiteral("Scan finished: found 8 large files"));
        QVERIFY(item("searchEmptyState")->isVisible() == false);
        QCOMPARE(results()->rowCount(), 8);
        QCOMPARE(results()->data(results()->index(0), LargeFileResultsModel::NameRole).toString(),
                 QStringLiteral("vm-disk.qcow2"));
        QCOMPARE(item("footerText")->property("text").toString(),
                 QString::fromUtf8("Showing 8 files \u00b7 Total: 28.94 GB"));
        QVERIFY(!item("showAllButton")->isVisible());

        // After a search the header offers every search; the window's target once it is a
        // folder other than the home.
        QVERIFY(item("searchHomeAgainButton")->isVisible());
        QVERIFY(item("searchDriveButton")->isVisible());
        QVERIFY(!item("searchTargetButton")->isVisible());
        m_root->scanFolder(home() + "/Videos");
        QTRY_VERIFY(item("searchTargetButton")->isVisible());
        QCOMPARE(item("searchTargetButton")->property("text").toString(),
                 QStringLiteral("Scan Videos"));

        const QString screenshots = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        if (!screenshots.isEmpty()) {
            m_window->resize(1280, 800);
            QTest::qWait(400);
            QVERIFY(m_window->grabWindow().save(screenshots + "/intelligent-search.png"));
        }

        auto* field = item("searchField");
        field->forceActiveFocus();
        for (const char c : QByteArray("  HOLIDAY ")) {
            QTest::keyClick(m_window, c);
        }
        QCOMPARE(results()->rowCount(), 1);
        QVERIFY(item("clearSearchButton")->isVisible());
        QTest::keyClick(m_window, Qt::Key_Escape);
        QCOMPARE(results()->query(), QString());
        QCOMPARE(results()->rowCount(), 8);

        results()->setSizeOption(1); // "> 100 MB" keeps the file of exactly 100 MiB
        QCOMPARE(results()->rowCount(), 6);
        QCOMPARE(results()->data(results()->index(5), LargeFileResultsModel::NameRole).toString(),
                 QStringLiteral("exactly-100-MB.mp4"));
        results()->setCategoryOption(3); // Videos
        QCOMPARE(results()->rowCount(), 2);
        results()->setQuery(QStringLiteral("nothing like it"));
        QTRY_VERIFY(item("noMatchesText")->isVisible());
        results()->setQuery(QString());
        results()->setCategoryOption(0);
        results()->setSizeOption(0);
        QCOMPARE(results()->rowCount(), 8);
    }

    void trashesOneFileAfterConfirmation() {
        clickRow(1);
        QCOMPARE(results()->selectedCount(), 1);
        QTest::keyClick(m_window, Qt::Key_Delete);
        QQuickItem* question = nullptr;
        QTRY_VERIFY((question = item("trashQuestion")) != nullptr && question->isVisible());
        QCOMPARE(question->property("text").toString(),
                 QString::fromUtf8("Move \u201cdebian-12-amd64-DVD-1.iso\u201d to the Trash?"));
        click(item("trashConfirmButton"));
        QTRY_VERIFY_WITH_TIMEOUT(!search()->isTrashing() && !search()->noticeText().isEmpty(),
                                 kTimeoutMs);
        QVERIFY(!QFile::exists(home() + "/Downloads/debian-12-amd64-DVD-1.iso"));
        QVERIFY(QFile::exists(home() + "/.local/share/Trash/files/debian-12-amd64-DVD-1.iso"));
        QCOMPARE(results()->rowCount(), 7);
        QVERIFY(search()->noticeText().startsWith(QStringLiteral("Moved 1 file (")));
    }

    void trashesSeveralWithOneConfirmation() {
        clickRow(2);
        clickRow(3, Qt::ControlModifier);
        QCOMPARE(results()->selectedCount(), 2);
        QVERIFY(item("trashSelectedButton")->isVisible());
        QCOMPARE(search()->trashQuestion(), QStringLiteral("Move 2 files (1.02 GB) to the Trash?"));
        click(item("trashSelectedButton"));
        QTRY_VERIFY(item("trashCancelButton") != nullptr && item("trashCancelButton")->isVisible());
        click(item("trashCancelButton"));
        QTRY_VERIFY(item("trashQuestion") == nullptr || !item("trashQuestion")->isVisible());
        QCOMPARE(results()->rowCount(), 7); // Cancel moved nothing
        QVERIFY(QFile::exists(home() + "/Dropbox/Photos backup.zip"));

        search()->trashSelected();
        QTRY_VERIFY_WITH_TIMEOUT(!search()->isTrashing() && results()->rowCount() == 5, kTimeoutMs);
        QVERIFY(!QFile::exists(home() + "/Dropbox/Photos backup.zip"));
        QVERIFY(!QFile::exists(home() + "/Documents/Thesis scans.pdf"));
    }

    void searchesTheTargetFolderAndTheHomeAgain() {
        click(item("searchTargetButton"));
        QTRY_VERIFY_WITH_TIMEOUT(!search()->isSearching(), kTimeoutMs);
        QCOMPARE(search()->statusText(), QStringLiteral("Scan finished: found 2 large files"));
        QCOMPARE(results()->data(results()->index(0), LargeFileResultsModel::NameRole).toString(),
                 QStringLiteral("Holiday 2025.mkv"));

        // Only a pruned, a hidden and a too small file remain in Downloads.
        m_root->scanFolder(home() + "/Downloads");
        QTRY_COMPARE(item("searchTargetButton")->property("text").toString(),
                     QStringLiteral("Scan Downloads"));
        click(item("searchTargetButton"));
        if (search()->isSearching()) { // the rows of the last search cannot be trashed now
            QVERIFY(!item("searchTrashButton")->isEnabled());
            QVERIFY(!item("searchHomeAgainButton")->isVisible());
        }
        QTRY_VERIFY_WITH_TIMEOUT(!search()->isSearching(), kTimeoutMs);
        QCOMPARE(results()->rowCount(), 0);
        QTRY_VERIFY(item("noMatchesText")->isVisible());
        QCOMPARE(item("noMatchesText")->property("text").toString(),
                 QStringLiteral("No large files found"));

        m_root->scanHomeFolder();
        QTRY_VERIFY(!item("searchTargetButton")->isVisible());
        click(item("searchHomeAgainButton"));
        QTRY_VERIFY_WITH_TIMEOUT(!search()->isSearching() && results()->rowCount() == 5,
                                 kTimeoutMs);
        QVERIFY(!item("noMatchesText")->isVisible());
        QVERIFY(item("searchTrashButton")->isEnabled());
    }
};

} // namespace sondrel

QTEST_MAIN(sondrel::SmartSearchViewTest)
#include "smart_search_view_test.moc"
