// The main window offscreen: every page loads without a QML warning, the sidebar lists the eight
// sections in order, Ctrl+N switches sections, a theme pick recolours the pages, and the
// permission dialog's Cancel leaves the target and the tree as they were.

#include "app/app_root.h"
#include "app/navigation_section.h"
#include "app/qt_conversions.h"
#include "tests/ui/page_harness.h"
#include "tests/ui/warning_filter.h"
#include "ui/src/app_actions.h"
#include "ui/src/shell_setup.h"
#include "ui/src/symbol_icons.h"
#include "ui/src/tray_icon.h"

#ifndef Q_MOC_RUN
#include "platform/locations.h"
#endif

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMessageBox>
#include <QPalette>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <algorithm>
#include <memory>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

using test::findItem;

constexpr int kScanTimeoutMs = 30000;

// The first item under `root` (depth first) of the C++ class `className` or one derived from it.
QQuickItem* findItemOfClass(QQuickItem* root, const char* className) {
    if (root->inherits(className)) {
        return root;
    }
    const QList<QQuickItem*> children = root->childItems();
    for (QQuickItem* child : children) {
        if (QQuickItem* found = findItemOfClass(child, className)) {
            return found;
        }
    }
    return nullptr;
}

// True for a card: the Card component (and what derives from it) or any rounded panel with a
// visible border drawn as one.
bool isCard(const QQuickItem* item) {
    for (const QMetaObject* meta = item->metaObject(); meta != nullptr; meta = meta->superClass()) {
        if (QByteArray(meta->className()).startsWith("Card_QMLTYPE")) {
            return true;
        }
    }
    const auto* pen = qvariant_cast<QObject*>(item->property("border"));
    return pen != nullptr && item->property("radius").toReal() >= 8 &&
           pen->property("width").toReal() >= 1;
}

// Every visible Text under `item` whose text runs past its card (or past the window when it
// is in no card), as "text (N px too wide)".
void collectOverflows(QQuickItem* item, const QRectF& window, QStringList& overflows) {
    if (!item->isVisible() || item->opacity() <= 0) {
        return;
    }
    if (item->inherits("QQuickText") && !item->property("text").toString().isEmpty()) {
        const qreal drawn = std::max(item->width(), item->property("contentWidth").toReal());
        const QRectF text = item->mapRectToScene(QRectF(0, 0, drawn, item->height()));
        QRectF bounds = window;
        for (QQuickItem* up = item->parentItem(); up != nullptr; up = up->parentItem()) {
            if (isCard(up)) {
                bounds = up->mapRectToScene(QRectF(0, 0, up->width(), up->height()));
                break;
            }
        }
        const qreal excess = std::max(text.right() - bounds.right(), bounds.left() - text.left());
        if (excess > 1.0) {
            overflows << QStringLiteral("%1 (%2 px too wide)")
                             .arg(item->property("text").toString())
                             .arg(excess, 0, 'f', 0);
        }
    }
    const QList<QQuickItem*> children = item->childItems();
    for (QQuickItem* child : children) {
        collectOverflows(child, window, overflows);
    }
}

} // namespace

class ShellWindowTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<AppRoot> m_root;
    std::unique_ptr<AppActions> m_actions;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QQuickWindow* m_window = nullptr;

    // SONDREL_SCREENSHOT_HOME=DIR shows a populated home of one's own in the pictures.
    QString home() const {
        const QString own = qEnvironmentVariable("SONDREL_SCREENSHOT_HOME");
        return own.isEmpty() ? m_dir.path() + "/home" : own;
    }

private slots:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        QStandardPaths::setTestModeEnabled(true);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
        QDir().mkpath(home() + "/data/folder");
        QFile file(home() + "/data/folder/file.bin");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(50000, 'x'));
        file.close();

        QTest::failOnWarning(sondrel::test::anyWarning());
        m_root = std::make_unique<AppRoot>(Locations::forLinux(toPathBytes(home())));
        m_actions = std::make_unique<AppActions>();
        m_engine = std::make_unique<QQmlApplicationEngine>();
        QSignalSpy finished(m_root->diskScanner(), &DiskScanner::scanFinished);
        m_window = loadMainWindow(*m_engine, m_root.get(), m_actions.get());
        QVERIFY(m_window != nullptr);
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
        // The window's first appearance scans the home folder.
        QVERIFY(finished.count() > 0 || finished.wait(kScanTimeoutMs));
        QCOMPARE(m_root->selectedTargetFolder(), home());
    }

    void init() { QTest::failOnWarning(sondrel::test::anyWarning()); }

    void cleanupTestCase() {
        m_engine.reset();
        m_root.reset();
    }

    void windowMeetsMinimumSize() {
        QVERIFY(m_window->minimumWidth() >= 1040);
        QVERIFY(m_window->minimumHeight() >= 680);
        QCOMPARE(m_root->selectedSection(), 0);
    }

    // At the minimum size no text of any section runs past its card.
    void everyPageFitsTheMinimumSize() {
        const QSize before = m_window->size();
        m_window->resize(m_window->minimumWidth(), m_window->minimumHeight());
        QTRY_COMPARE(m_window->width(), m_window->minimumWidth());
        const QString shots = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        for (int i = 0; i < NavigationSection::kCount; ++i) {
            m_root->setSelectedSection(i);
            QTest::qWait(50);
            QStringList overflows;
            const QRectF window(0, 0, m_window->width(), m_window->height());
            collectOverflows(m_window->contentItem(), window, overflows);
            QVERIFY2(overflows.isEmpty(),
                     qPrintable(QStringLiteral("section %1: ").arg(i) + overflows.join("; ")));
            if (!shots.isEmpty() && i == NavigationSection::Storage) {
                QVERIFY(m_window->grabWindow().save(shots + "/minimum-size-storage.png"));
            }
        }
        m_root->setSelectedSection(0);
        m_window->resize(before);
    }

    void sidebarShowsSectionsInOrder() {
        QStringList shown;
        for (int i = 0; i < 8; ++i) {
            QQuickItem* row = findItem(m_window, QStringLiteral("sectionRow%1").arg(i));
            QVERIFY2(row != nullptr, qPrintable(QStringLiteral("row %1").arg(i)));
            shown << findItem(row, QStringLiteral("sectionTitle"))->property("text").toString();
        }
        QCOMPARE(shown, AppRoot::sectionTitles());
        QCOMPARE(shown.first(), QStringLiteral("Smart Care"));
    }

    void everyPageLoads() {
        QQuickItem* pages = findItem(m_window, QStringLiteral("pages"));
        QVERIFY(pages != nullptr);
        for (int i = 0; i < 8; ++i) {
            m_root->setSelectedSection(i);
            QCOMPARE(pages->property("currentIndex").toInt(), i);
            QTRY_VERIFY(pages->childItems().at(i)->isVisible());
            QTest::qWait(50);
        }
        m_root->setSelectedSection(0);
        QVERIFY(!m_root->systemMonitor()->isMonitoring());
    }

    // The sidebar's rows, the page stack and Ctrl+N all follow the section table: row N shows
    // the table's title and symbol, and selecting a section shows exactly the page it names.
    void sidebarAndPagesAgreeWithTheTable() {
        QQuickItem* pages = findItem(m_window, QStringLiteral("pages"));
        QVERIFY(pages != nullptr);
        QCOMPARE(pages->childItems().size(), NavigationSection::kCount);
        m_window->requestActivate();
        for (const NavigationSection::Row& entry : NavigationSection::table()) {
            const QString page = QString::fromUtf8(entry.page);
            QQuickItem* row = findItem(m_window, QStringLiteral("sectionRow%1").arg(entry.id));
            QVERIFY(row != nullptr);
            QCOMPARE(findItem(row, QStringLiteral("sectionTitle"))->property("text").toString(),
                     QString::fromUtf8(entry.title));
            QCOMPARE(findItem(row, QStringLiteral("sectionSymbol"))->property("name").toString(),
                     QString::fromUtf8(entry.symbol));

            m_root->setSelectedSection(NavigationSection::SmartCare == entry.id
                                           ? NavigationSection::Settings
                                           : NavigationSection::SmartCare);
            QTest::keyClick(m_window, static_cast<Qt::Key>(int(Qt::Key_1) + int(entry.id)),
                            Qt::ControlModifier);
            QCOMPARE(m_root->selectedSection(), static_cast<int>(entry.id));
            int named = 0;
            for (QQuickItem* child : pages->childItems()) {
                named += child->objectName() == page ? 1 : 0;
                QTRY_COMPARE(child->isVisible(), child->objectName() == page);
            }
            QVERIFY2(named == 1, qPrintable(page));
            // SONDREL_SCREENSHOT=DIR keeps a picture of each section as DIR/PAGE.png.
            const QString shots = qEnvironmentVariable("SONDREL_SCREENSHOT");
            if (!shots.isEmpty()) {
                QTest::qWait(1500); // the section's first scan

                QVERIFY(m_window->grabWindow().save(shots + "/" + page + ".png"));
            }
            if (QQuickItem* unavailable = findItem(findItem(pages, page), "unavailableText")) {
                QVERIFY(unavailable->property("text").toString().startsWith(
                    QString::fromUtf8(entry.title) + " is not available"));
            }
        }
        // The storage page's "uninstall" request names its section through the table too.
        QQuickItem* browser = findItem(m_window, QStringLiteral("storageBrowser"));
        QVERIFY(browser != nullptr);
        QVERIFY(QMetaObject::invokeMethod(browser, "uninstallRequested", Q_ARG(QString, home())));
        QCOMPARE(m_root->selectedSection(), static_cast<int>(NavigationSection::Uninstaller));
        m_root->setSelectedSection(NavigationSection::SmartCare);
    }

    // QML names sections through the table (Section.Storage), never by number.
    void qmlHasNoSectionNumbers() {
        const QRegularExpression literal(
            QStringLiteral(R"(selectedSection\s*=\s*\d|model:\s*8\b)"));
        int files = 0;
        QDirIterator it(QStringLiteral(":/Sondrel/qml"), {QStringLiteral("*.qml")}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            QFile file(it.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString text = QString::fromUtf8(file.readAll());
            QVERIFY2(!literal.match(text).hasMatch(), qPrintable(file.fileName()));
            ++files;
        }
        QVERIFY(files > 20);
    }

    void controlDigitSwitchesSections() {
        m_window->requestActivate();
        QTest::keyClick(m_window, Qt::Key_3, Qt::ControlModifier);
        QCOMPARE(m_root->selectedSection(), 2);
        QTest::keyClick(m_window, Qt::Key_8, Qt::ControlModifier);
        QCOMPARE(m_root->selectedSection(), 7);
        QTest::keyClick(m_window, Qt::Key_1, Qt::ControlModifier);
        QCOMPARE(m_root->selectedSection(), 0);
    }

    void arrowsMoveInTheSidebar() {
        QQuickItem* list = findItem(m_window, QStringLiteral("sectionList"));
        QVERIFY(list != nullptr);
        list->forceActiveFocus();
        QTest::keyClick(m_window, Qt::Key_Down);
        QTest::keyClick(m_window, Qt::Key_Down);
        QCOMPARE(m_root->selectedSection(), 2);
        QTest::keyClick(m_window, Qt::Key_Up);
        QCOMPARE(m_root->selectedSection(), 1);
        QTest::keyClick(m_window, Qt::Key_Up);
        QTest::keyClick(m_window, Qt::Key_Up);
        QCOMPARE(m_root->selectedSection(), 0);
        QCOMPARE(list->property("currentIndex").toInt(), 0);
    }

    void themePickRecoloursPages() {
        QQuickItem* settingsPage = findItem(m_window, QStringLiteral("settingsPage"));
        QQuickItem* storagePage = findItem(m_window, QStringLiteral("storagePage"));
        QVERIFY(settingsPage && storagePage);
        m_root->themeManager()->setCurrentThemeName(QStringLiteral("Obsidian Dark"));
        const QColor obsidian = palette(AppTheme::obsidian).background;
        QCOMPARE(settingsPage->property("color").value<QColor>(), obsidian);

        // Clicking the "Deep Ocean" card picks it.
        m_root->setSelectedSection(7);
        QQuickItem* oceanCard = findItem(settingsPage, QStringLiteral("themeCard_Deep Ocean"));
        QVERIFY(oceanCard != nullptr);
        QTRY_VERIFY(oceanCard->isVisible() && oceanCard->width() > 0);
        const QPointF centre =
            oceanCard->mapToScene(QPointF(oceanCard->width() / 2, oceanCard->height() - 10));
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centre.toPoint());
        QTRY_COMPARE(m_root->themeManager()->currentThemeName(), QStringLiteral("Deep Ocean"));
        const QColor ocean = palette(AppTheme::ocean).background;
        QCOMPARE(settingsPage->property("color").value<QColor>(), ocean);
        QCOMPARE(storagePage->property("color").value<QColor>(), ocean);
        QCOMPARE(m_window->color(), ocean);
        QVERIFY(findItem(oceanCard, QStringLiteral("checkMark"))->isVisible());
        m_root->themeManager()->setCurrentThemeName(QStringLiteral("Obsidian Dark"));
    }

    // The folder panel opens in the current theme with the folder it starts in; cancelling it
    // starts no scan.
    void folderChooserIsDrawnInTheTheme() {
        m_root->themeManager()->setCurrentThemeName(QStringLiteral("Deep Ocean"));
        m_root->setSelectedSection(NavigationSection::Storage);
        QQuickItem* dialogs = findItem(m_window, QStringLiteral("scanTargetDialogs"));
        QVERIFY(dialogs != nullptr);
        QObject* panel = dialogs->findChild<QObject*>(QStringLiteral("customFolderDialog"));
        QVERIFY(panel != nullptr);
        QTRY_VERIFY(!m_root->diskScanner()->isScanning());
        QSignalSpy scans(m_root->diskScanner(), &DiskScanner::isScanningChanged);
        QVERIFY(QMetaObject::invokeMethod(dialogs, "chooseCustomFolder"));
        QTRY_VERIFY(panel->property("visible").toBool());
        // The path bar is drawn on the theme's panel colour, not on white: its light text reads.
        QQuickItem* pathBar = nullptr;
        QTRY_VERIFY((pathBar = findItemOfClass(m_window->contentItem(),
                                               "QQuickFolderBreadcrumbBar")) != nullptr);
        auto* pathBackground = pathBar->property("background").value<QQuickItem*>();
        QVERIFY(pathBackground != nullptr);
        QTRY_VERIFY(pathBackground->property("color").value<QColor>().lightnessF() < 0.3);
        const QString shots = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            QTest::qWait(500);
            QVERIFY(m_window->grabWindow().save(shots + "/folder-chooser-deep-ocean.png"));
        }
        QVERIFY(QMetaObject::invokeMethod(panel, "reject"));
        QTRY_VERIFY(!panel->property("visible").toBool());
        QCOMPARE(scans.count(), 0);
        m_root->themeManager()->setCurrentThemeName(QStringLiteral("Obsidian Dark"));
        m_root->setSelectedSection(NavigationSection::SmartCare);
    }

    // Tab reaches the theme cards, the focused card shows its ring, Space picks it; Escape
    // closes an open dialog.
    void keyboardReachesThemeCards() {
        m_root->themeManager()->setCurrentThemeName(QStringLiteral("Obsidian Dark"));
        m_root->setSelectedSection(NavigationSection::Settings);
        m_window->requestActivate();
        QQuickItem* list = findItem(m_window, QStringLiteral("sectionList"));
        QVERIFY(list != nullptr);
        list->forceActiveFocus(Qt::TabFocusReason);
        QQuickItem* card = nullptr;
        for (int i = 0; i < 40 && card == nullptr; ++i) {
            QTest::keyClick(m_window, Qt::Key_Tab);
            QQuickItem* focused = m_window->activeFocusItem();
            if (focused != nullptr && focused->objectName().startsWith("themeCard_") &&
                focused->objectName() != QStringLiteral("themeCard_Obsidian Dark")) {
                card = focused;
            }
        }
        QVERIFY2(card != nullptr, "no theme card took the focus");
        QQuickItem* ring = findItem(card, QStringLiteral("focusRing"));
        QVERIFY(ring != nullptr && ring->isVisible());
        const QString shots = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            QVERIFY(m_window->grabWindow().save(shots + "/keyboard-focus-theme-card.png"));
        }
        const QString name = card->objectName().mid(QStringLiteral("themeCard_").size());
        QTest::keyClick(m_window, Qt::Key_Space);
        QTRY_COMPARE(m_root->themeManager()->currentThemeName(), name);
        // What Qt draws itself follows the theme: the application palette's window colour.
        QCOMPARE(QGuiApplication::palette().color(QPalette::Window),
                 m_root->themeManager()->background());
        m_root->themeManager()->setCurrentThemeName(QStringLiteral("Obsidian Dark"));
        QCOMPARE(QGuiApplication::palette().color(QPalette::Window),
                 m_root->themeManager()->background());
    }

    // The About and Help panels (message boxes) are drawn in the current theme, not the light
    // system style: widgets take the application palette, which follows the theme.
    void aboutAndHelpUseTheTheme() {
        m_root->themeManager()->setCurrentThemeName(QStringLiteral("Deep Ocean"));
        const QColor background = m_root->themeManager()->background();
        const QString shots = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        for (const bool about : {true, false}) {
            QMessageBox box(QMessageBox::Information, QStringLiteral("Sondrel"),
                            about ? QStringLiteral("Sondrel")
                                  : QStringLiteral("Sondrel Help & Support"));
            box.setInformativeText(about ? AppActions::aboutText() : AppActions::helpText());
            box.addButton(about ? QStringLiteral("Contact Support")
                                : QStringLiteral("Email Support"),
                          QMessageBox::ActionRole);
            box.addButton(QStringLiteral("Close"), QMessageBox::RejectRole);
            QCOMPARE(box.palette().color(QPalette::Window), background);
            const QColor text = box.palette().color(QPalette::WindowText);
            QVERIFY(qAbs(text.lightness() - background.lightness()) > 100);
            const QImage image = box.grab().toImage();
            QVERIFY(!image.isNull());
            // A pixel near the top-left corner shows the theme's background, not white.
            QCOMPARE(image.pixelColor(4, 4).rgb(), background.rgb());
            if (!shots.isEmpty()) {
                QVERIFY(image.save(shots + (about ? "/about-panel-deep-ocean.png"
                                                  : "/help-panel-deep-ocean.png")));
            }
        }
        m_root->themeManager()->setCurrentThemeName(QStringLiteral("Obsidian Dark"));
    }

    // Ctrl+W closes the window the way its close button does (the app runs on when a tray
    // keeps it; here nothing quits, as with a tray); the tray's first item brings it back.
    void ctrlWClosesTheWindowAndTheTrayBringsItBack() {
        QGuiApplication::setQuitOnLastWindowClosed(false);
        m_window->requestActivate();
        QTest::keyClick(m_window, Qt::Key_W, Qt::ControlModifier);
        QTRY_VERIFY(!m_window->isVisible());
        TrayIcon tray(m_actions.get());
        if (QGuiApplication::platformName() == QStringLiteral("offscreen")) {
            QTest::ignoreMessage(QtWarningMsg, "This plugin does not support raise()");
        }
        tray.menu()->actions().front()->trigger();
        QTRY_VERIFY(m_window->isVisible());
        QGuiApplication::setQuitOnLastWindowClosed(true);
    }

    // The tray menu: no lost '&', and "Open Storage Scopix" opens the storage section.
    void trayMenuOpensTheStorageSection() {
        TrayIcon tray(m_actions.get());
        m_root->setSelectedSection(NavigationSection::Settings);
        QAction* open = nullptr;
        for (QAction* action : tray.menu()->actions()) {
            QVERIFY2(!action->text().contains(QRegularExpression("&[^&]")) ||
                         action->text().contains("&&"),
                     qPrintable(action->text()));
            if (action->text().startsWith(QStringLiteral("Open "))) {
                open = action;
            }
        }
        QVERIFY(open != nullptr);
        if (QGuiApplication::platformName() == QStringLiteral("offscreen")) {
            QTest::ignoreMessage(QtWarningMsg, "This plugin does not support raise()");
        }
        open->trigger();
        QCOMPARE(m_root->selectedSection(), static_cast<int>(NavigationSection::Storage));
    }

    void permissionCancelKeepsTargetAndTree() {
        m_root->setSelectedSection(1);
        QVERIFY(m_root->scanChosenPath(home() + "/data"));
        QTRY_VERIFY_WITH_TIMEOUT(!m_root->diskScanner()->isScanning(), kScanTimeoutMs);
        QTRY_VERIFY(m_root->navigator()->hasTree());
        const FileItem tree = m_root->navigator()->root();
        const QString target = m_root->selectedTargetFolder();
        QSignalSpy requested(m_root.get(), &AppRoot::scanRequested);

        QVERIFY(!m_root->requestCloudAccessAndScan(home() + "/Nextcloud", "Nextcloud"));
        QObject* dialog = m_window->findChild<QObject*>(QStringLiteral("permissionDialog"));
        QVERIFY(dialog != nullptr);
        QTRY_VERIFY(dialog->property("opened").toBool());
        QCOMPARE(dialog->property("title").toString(),
                 QStringLiteral("Permission Required for Nextcloud"));

        QQuickItem* cancel = findItem(m_window, QStringLiteral("permissionCancelButton"));
        QVERIFY(cancel != nullptr);
        QTRY_VERIFY(cancel->isVisible() && cancel->width() > 0);
        const QPointF centre =
            cancel->mapToScene(QPointF(cancel->width() / 2, cancel->height() / 2));
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centre.toPoint());
        QTRY_VERIFY(!dialog->property("visible").toBool());
        QCOMPARE(m_root->selectedTargetFolder(), target);
        QCOMPARE(m_root->navigator()->root(), tree);
        QCOMPARE(requested.count(), 0);

        // Escape closes the dialog the same way.
        QVERIFY(!m_root->requestCloudAccessAndScan(home() + "/Nextcloud", "Nextcloud"));
        QTRY_VERIFY(dialog->property("opened").toBool());
        QTest::keyClick(m_window, Qt::Key_Escape);
        QTRY_VERIFY(!dialog->property("visible").toBool());
        QCOMPARE(requested.count(), 0);
        QCOMPARE(m_root->selectedTargetFolder(), target);
    }

    void everySymbolHasAnIcon() {
        const QStringList symbols = SymbolIcons::instance().symbols();
        QVERIFY(symbols.size() > 40);
        for (const QString& symbol : AppRoot::sectionSymbols() + symbols) {
            QVERIFY2(QFile::exists(SymbolIcons::instance().filePath(symbol)), qPrintable(symbol));
            const QImage image = SymbolIcons::instance().render(symbol, QSize(16, 16), Qt::red);
            QVERIFY2(image.pixelColor(8, 8).alpha() > 0 || image.pixelColor(4, 4).alpha() > 0 ||
                         !image.isNull(),
                     qPrintable(symbol));
        }
    }
};

} // namespace sondrel

QTEST_MAIN(sondrel::ShellWindowTest)
#include "shell_window_test.moc"
