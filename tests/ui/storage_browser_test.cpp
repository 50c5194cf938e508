// The storage section offscreen: threshold filter, empty state, inspect and zoom on the
// canvases, and the details pane, driven with real mouse events.
#include "app/storage_details.h"
#include "app/storage_navigator.h"
#include "core/removal/trash.h"
#include "core/removal/trash_restore.h"
#include "core/scan/tree_scan.h"
#include "tests/ui/storage_test_tree.h"
#include "tests/ui/warning_filter.h"
#include "ui/src/color_rings_canvas_view.h"
#include "ui/src/symbol_icons.h"
#include "ui/src/treemap_canvas_view.h"

#include <QColor>
#include <QImage>
#include <QMimeData>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQmlProperty>
#include <QQuickImageProvider>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickView>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

using namespace sondrel;
using sondrel::test::childNamed;
using sondrel::test::makeStorageTestTree;

namespace {

// The colour roles the storage views read from the theme.
class TestTheme : public QObject {
    Q_OBJECT
    Q_PROPERTY(QColor background MEMBER m_background NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor cardBackground MEMBER m_card NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor border MEMBER m_border NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor accent MEMBER m_accent NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor secondaryAccent MEMBER m_accent NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor textPrimary MEMBER m_text NOTIFY currentThemeNameChanged)
    Q_PROPERTY(QColor textSecondary MEMBER m_text2 NOTIFY currentThemeNameChanged)
signals:
    void currentThemeNameChanged();

private:
    QColor m_background{0x0f, 0x11, 0x15};
    QColor m_card{0x1b, 0x1e, 0x25};
    QColor m_border{0x33, 0x37, 0x40};
    QColor m_accent{0x3d, 0x8b, 0xff};
    QColor m_text{Qt::white};
    QColor m_text2{0x9a, 0xa0, 0xab};
};

} // namespace

class StorageBrowserTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QQuickView> m_view;
    std::unique_ptr<StorageNavigator> m_navigator;
    std::unique_ptr<TestTheme> m_theme;
    FileItem m_root;

    // The item called `name` in the visual tree (Repeater delegates are not QObject children
    // of the root, so findChild alone misses them).
    template <typename T> T* find(const char* name) const {
        const QString wanted = QString::fromLatin1(name);
        std::vector<QQuickItem*> pending{m_view->rootObject()};
        while (!pending.empty()) {
            QQuickItem* item = pending.back();
            pending.pop_back();
            if (item->objectName() == wanted) {
                if (auto* typed = qobject_cast<T*>(item)) {
                    return typed;
                }
            }
            const auto children = item->childItems();
            pending.insert(pending.end(), children.begin(), children.end());
        }
        return nullptr;
    }
    // Clicks the centre of `item` in the window.
    void click(QQuickItem* item) const {
        QVERIFY(item != nullptr);
        const QPointF centre = item->mapToScene({item->width() / 2, item->height() / 2});
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, centre.toPoint());
    }
    QPoint scenePoint(QQuickItem* canvas, const FileItem& item) const {
        const QPointF local = qobject_cast<StorageCanvas*>(canvas)->centerOf(item);
        return canvas->mapToScene(local).toPoint();
    }
    TreemapCanvasView* showTreemap() {
        m_navigator->setVisualizerMode(1);
        auto* canvas = find<TreemapCanvasView>("treemapCanvas");
        if (canvas != nullptr) {
            if (!QTest::qWaitFor([canvas] { return canvas->width() > 100; })) {
                return nullptr;
            }
        }
        return canvas;
    }

    // A new window with the browser over the navigator, shown and exposed.
    void showView() {
        m_view = std::make_unique<QQuickView>();
        m_view->engine()->addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);
        m_view->setInitialProperties({
            {QStringLiteral("navigator"), QVariant::fromValue<QObject*>(m_navigator.get())},
            {QStringLiteral("diskScanner"), QVariant::fromValue<QObject*>(nullptr)},
            {QStringLiteral("theme"), QVariant::fromValue<QObject*>(m_theme.get())},
        });
        m_view->setResizeMode(QQuickView::SizeRootObjectToView);
        m_view->resize(1200, 800);
        m_view->setSource(QUrl(QStringLiteral("qrc:/Sondrel/qml/storage/StorageBrowser.qml")));
        QCOMPARE(m_view->status(), QQuickView::Ready);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    }

private slots:
    // The app's style, which paints menus from the palette of the window they open in.
    void initTestCase() { QQuickStyle::setStyle(QStringLiteral("Basic")); }

    void init() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        m_navigator = std::make_unique<StorageNavigator>();
        m_theme = std::make_unique<TestTheme>();
        m_root = makeStorageTestTree();
        m_navigator->setRoot(m_root);
        showView();
    }

    void cleanup() {
        m_view.reset();
        m_navigator.reset();
        m_theme.reset();
    }

    void thresholdKeepsAnItemOfExactlyTheThreshold() {
        TreemapCanvasView* canvas = showTreemap();
        QVERIFY(canvas != nullptr);
        QCOMPARE(canvas->shapeCount(), 4);
        click(find<QQuickItem>("threshold > 10 MB"));
        QCOMPARE(canvas->minSizeThreshold(), 10'485'760);
        QStringList kept;
        for (const FileItem& item : canvas->filteredItems()) {
            kept << QString::fromStdString(std::string(item.name()));
        }
        QCOMPARE(kept, (QStringList{"Videos", "Projects", "exact.iso"}));
        QCOMPARE(canvas->shapeCount(), 3);
    }

    void everythingFilteredShowsEmptyStateAndResetRestores() {
        TreemapCanvasView* canvas = showTreemap();
        QVERIFY(canvas != nullptr);
        auto* empty = find<QQuickItem>("emptyState");
        QVERIFY(empty != nullptr);
        QVERIFY(!empty->isVisible());
        click(find<QQuickItem>("threshold > 1 GB"));
        QCOMPARE(canvas->shapeCount(), 0);
        QVERIFY(canvas->isFilteredEmpty());
        QVERIFY(empty->isVisible());
        click(find<QQuickItem>("resetFilter"));
        QCOMPARE(canvas->minSizeThreshold(), 0);
        QCOMPARE(canvas->shapeCount(), 4);
        QVERIFY(!empty->isVisible());
    }

    void doubleClickOnFileSectorSelectsButDoesNotZoom() {
        auto* canvas = find<ColorRingsCanvasView>("ringsCanvas");
        QVERIFY(canvas != nullptr);
        QTRY_VERIFY(canvas->shapeCount() > 0);
        const FileItem file = childNamed(m_root, "exact.iso");
        QTest::mouseDClick(m_view.get(), Qt::LeftButton, {}, scenePoint(canvas, file));
        QCOMPARE(m_navigator->currentFolder(), m_root);
        QCOMPARE(m_navigator->selectedItem(), file);

        // A double click on a folder sector zooms into it.
        const FileItem videos = childNamed(m_root, "Videos");
        QTest::mouseDClick(m_view.get(), Qt::LeftButton, {}, scenePoint(canvas, videos));
        QCOMPARE(m_navigator->currentFolder(), videos);
        QCOMPARE(m_navigator->details()->breadcrumbNames(), (QStringList{"home", "Videos"}));
        // After a zoom nothing is selected: the details pane shows the folder's overview.
        QVERIFY(!m_navigator->hasSelection());
    }

    // In the treemap the pointer of a zooming double click lies on a tile of the new view; the
    // click's closing release must not select it.
    void doubleClickZoomInTheTreemapSelectsNothing() {
        TreemapCanvasView* canvas = showTreemap();
        QVERIFY(canvas != nullptr);
        const FileItem projects = childNamed(m_root, "Projects");
        QTest::mouseDClick(m_view.get(), Qt::LeftButton, {}, scenePoint(canvas, projects));
        QCOMPARE(m_navigator->currentFolder(), projects);
        QVERIFY(!m_navigator->hasSelection());
        // "Up Level" above the treemap goes back, and is disabled at the scan root.
        auto* up = find<QQuickItem>("treemapUpLevel");
        QVERIFY(up != nullptr && up->isEnabled());
        click(up);
        QCOMPARE(m_navigator->currentFolder(), m_root);
        QVERIFY(!up->isEnabled());
        QTest::mouseDClick(m_view.get(), Qt::LeftButton, {}, scenePoint(canvas, projects));
        QCOMPARE(m_navigator->currentFolder(), projects);
        // The next single click selects again.
        QTRY_VERIFY(canvas->shapeCount() > 0);
        const FileItem first = canvas->filteredItems().front();
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, scenePoint(canvas, first));
        QCOMPARE(m_navigator->selectedItem(), first);
    }

    // The rings' cached layer is painted in horizontal bands on several threads: every sector
    // must be painted, and nothing may jump where the bands meet.
    void ringsArePaintedWholeAcrossTheBands() {
        auto* canvas = find<ColorRingsCanvasView>("ringsCanvas");
        QVERIFY(canvas != nullptr);
        QTRY_VERIFY(canvas->shapeCount() > 0);
        const QImage shot = m_view->grabWindow().convertToFormat(QImage::Format_RGB32);
        const QRgb card = m_theme->property("cardBackground").value<QColor>().rgb();
        for (const FileItem& item : canvas->filteredItems()) {
            if (canvas->centerOf(item).x() >= 0) {
                QVERIFY2(shot.pixel(scenePoint(canvas, item)) != card,
                         std::string(item.name()).c_str());
            }
        }
        // Where the middle row of the canvas (the bands' seam) crosses a sector away from its
        // edges, the shading changes by a level or two per row; a band painted off by a row or
        // not at all changes it by far more.
        const QPointF origin = canvas->mapToScene({0, 0});
        const int seam = static_cast<int>(canvas->height() / 2);
        const auto sectorAround = [canvas](int x, int y) {
            const FileItem item = canvas->itemAt({x + 0.5, y + 0.5});
            for (int dy = -2; dy <= 2; ++dy) {
                for (int dx = -2; dx <= 2; ++dx) {
                    if (canvas->itemAt({x + dx + 0.5, y + dy + 0.5}) != item) {
                        return FileItem{};
                    }
                }
            }
            return item;
        };
        const auto jump = [](QRgb a, QRgb b) {
            return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                             std::abs(qBlue(a) - qBlue(b))});
        };
        int checked = 0;
        for (int x = 2; x < canvas->width() - 2; ++x) {
            if (!sectorAround(x, seam)) {
                continue;
            }
            const QPoint at = (origin + QPointF(x, seam)).toPoint();
            QVERIFY2(jump(shot.pixel(at - QPoint(0, 1)), shot.pixel(at)) <= 12,
                     qPrintable(QString::number(x)));
            ++checked;
        }
        QVERIFY(checked > 100);
    }

    void hoverFollowsThePointerAndTheHoleClearsIt() {
        auto* canvas = find<ColorRingsCanvasView>("ringsCanvas");
        QVERIFY(canvas != nullptr);
        QTRY_VERIFY(canvas->shapeCount() > 0);
        const QPointF hole = canvas->mapToScene({canvas->width() / 2, canvas->height() / 2 + 5});
        QTest::mouseMove(m_view.get(), hole.toPoint());
        QVERIFY(!canvas->hudIsHover());
        const FileItem videos = childNamed(m_root, "Videos");
        QTest::mouseMove(m_view.get(), scenePoint(canvas, videos));
        QTRY_VERIFY(canvas->hudIsHover());
        QCOMPARE(canvas->hudName(), QStringLiteral("Videos"));
        QCOMPARE(canvas->hudShareText(), QStringLiteral("64.0% of folder"));
        QCOMPARE(canvas->hudItemsText(), QStringLiteral("2 items"));
        QTest::mouseMove(m_view.get(), hole.toPoint());
        QTRY_VERIFY(!canvas->hudIsHover());
        // Nothing selected: the drive stands in (the viewed folder is not shown).
        QCOMPARE(canvas->hudName(), QStringLiteral("Internal Drive"));
        QCOMPARE(canvas->hudIcon(), QStringLiteral("internaldrive.fill"));
        QVERIFY(canvas->hudSizeText().isEmpty());
        // A selected file keeps the drive icon; a selected folder shows the gear-badged folder.
        m_navigator->setSelectedItem(childNamed(m_root, "exact.iso"));
        QCOMPARE(canvas->hudName(), QStringLiteral("exact.iso"));
        QCOMPARE(canvas->hudIcon(), QStringLiteral("internaldrive.fill"));
        m_navigator->setSelectedItem(videos);
        QCOMPARE(canvas->hudIcon(), QStringLiteral("folder.badge.gearshape.fill"));
        QTest::mouseMove(m_view.get(), scenePoint(canvas, childNamed(m_root, "exact.iso")));
        QTRY_COMPARE(canvas->hudIcon(), QStringLiteral("doc.fill"));
    }

    void clickSelectsAndTheDetailsPaneShowsTheRationale() {
        TreemapCanvasView* canvas = showTreemap();
        QVERIFY(canvas != nullptr);
        const FileItem file = childNamed(m_root, "exact.iso");
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, scenePoint(canvas, file));
        QCOMPARE(m_navigator->selectedItem(), file);
        auto* rationale = find<QQuickItem>("rationale");
        QVERIFY(rationale != nullptr);
        QVERIFY(rationale->isVisible());
        const QString text = rationale->property("text").toString();
        QVERIFY(!text.isEmpty());
        QCOMPARE(text, m_navigator->details()->selectedRationale());

        click(find<QQuickItem>("clearSelection"));
        QVERIFY(!m_navigator->hasSelection());
        QVERIFY(!rationale->isVisible());
    }

    void keysMoveTheSelectionZoomAndGoUp() {
        QTRY_VERIFY(m_view->rootObject()->hasActiveFocus());
        QTest::keyClick(m_view.get(), Qt::Key_Right);
        QCOMPARE(m_navigator->selectedItem(), childNamed(m_root, "Videos"));
        QTest::keyClick(m_view.get(), Qt::Key_Down);
        QCOMPARE(m_navigator->selectedItem(), childNamed(m_root, "Projects"));
        QTest::keyClick(m_view.get(), Qt::Key_Return);
        QCOMPARE(m_navigator->currentFolder(), childNamed(m_root, "Projects"));
        QTest::keyClick(m_view.get(), Qt::Key_Backspace);
        QCOMPARE(m_navigator->currentFolder(), m_root);
    }

    void contextMenuTrashesThroughTheNavigator() {
        TreemapCanvasView* canvas = showTreemap();
        QVERIFY(canvas != nullptr);
        std::vector<std::string> trashed;
        m_navigator->setTrasher([&](const std::string& path) {
            trashed.push_back(path);
            TrashResult result;
            result.ok = true;
            result.trashedPath = "/trash/files/Videos";
            result.infoPath = "/trash/info/Videos.trashinfo";
            return result;
        });
        int restores = 0;
        m_navigator->setRestorer([&](const std::string&, const std::string&) {
            ++restores;
            RestoreResult result;
            result.ok = true;
            return result;
        });
        QSignalSpy menu(canvas, &StorageCanvas::contextMenuRequested);
        const FileItem videos = childNamed(m_root, "Videos");
        QTest::mouseClick(m_view.get(), Qt::RightButton, {}, scenePoint(canvas, videos));
        QCOMPARE(menu.count(), 1);
        // The right-clicked item is selected and named by the menu's first line.
        QCOMPARE(m_navigator->selectedItem(), videos);
        QCOMPARE(canvas->contextName(), QStringLiteral("Videos"));
        // The menu's items live in the popup layer, outside the page's item tree.
        QObject* title = canvas->findChild<QObject*>("contextMenuTitle");
        QVERIFY(title != nullptr);
        QCOMPARE(title->property("text").toString(), QStringLiteral("Videos"));
        QVERIFY(canvas->contextIsDirectory());
        QVERIFY(!canvas->contextIsApplication());      // no application catalogue in this test
        QTest::keyClick(m_view.get(), Qt::Key_Escape); // closes the menu
        canvas->trashContextItem();
        QCOMPARE(trashed, std::vector<std::string>{"/scan/home/Videos"});
        QCOMPARE(canvas->shapeCount(), 3);
        QCOMPARE(canvas->centerOf(videos), QPointF(-1, -1)); // its tile is gone

        // The notice names the item and offers to undo.
        auto* notice = find<QQuickItem>("trashNotice");
        QVERIFY(notice != nullptr);
        QTRY_VERIFY(notice->isVisible());
        QCOMPARE(find<QQuickItem>("trashNoticeText")->property("text").toString(),
                 QStringLiteral("Moved Videos to the Trash"));
        const QString shots = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            QVERIFY(m_view->grabWindow().save(shots + "/storage-trash-notice-undo.png"));
        }
        click(find<QQuickItem>("undoTrashButton"));
        QCOMPARE(restores, 1);
        QCOMPARE(canvas->shapeCount(), 4);
        QCOMPARE(find<QQuickItem>("trashNoticeText")->property("text").toString(),
                 QStringLiteral("Restored Videos"));
        QVERIFY(!find<QQuickItem>("undoTrashButton")->isVisible());
        click(find<QQuickItem>("dismissNoticeButton"));
        QTRY_VERIFY(!notice->isVisible());
    }

    void escapeClearsTheSelection() {
        auto* canvas = find<ColorRingsCanvasView>("ringsCanvas");
        QVERIFY(canvas != nullptr);
        QTRY_VERIFY(canvas->shapeCount() > 0);
        const FileItem file = childNamed(m_root, "exact.iso");
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, scenePoint(canvas, file));
        QCOMPARE(m_navigator->selectedItem(), file);
        QTest::keyClick(m_view.get(), Qt::Key_Escape);
        QVERIFY(!m_navigator->hasSelection());
    }

    void droppedFolderIsReportedAndOtherDropsIgnored() {
        auto* canvas = find<ColorRingsCanvasView>("ringsCanvas");
        QVERIFY(canvas != nullptr);
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        QSignalSpy dropped(m_view->rootObject(), SIGNAL(folderDropped(QString)));
        const QPoint at = canvas->mapToScene({canvas->width() / 4, canvas->height() / 4}).toPoint();
        const auto drop = [&](const QList<QUrl>& urls) {
            QMimeData mime;
            mime.setUrls(urls);
            QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(m_view.get(), &enter);
            const bool targeted = canvas->isTargetedForDrop();
            QDropEvent dropEvent(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(m_view.get(), &dropEvent);
            return targeted;
        };
        QVERIFY(!drop({QUrl(QStringLiteral("https://example.org/folder"))}));
        QCOMPARE(dropped.count(), 0);
        QVERIFY(drop({QUrl::fromLocalFile(folder.path())}));
        QCOMPARE(dropped.count(), 1);
        QCOMPARE(dropped.front().front().toString(), folder.path());
        QVERIFY(!canvas->isTargetedForDrop());
    }

    // Twelve folders deep, the breadcrumb folds its middle into an ellipsis whose menu lists
    // them, and the viewed folder stays whole and clear of the switches beside the bar.
    void deepBreadcrumbKeepsTheViewedFolderInSight() {
        // Drawn as in the app, whose window gives its menus the theme's colours.
        const QColor background = m_theme->property("background").value<QColor>();
        const QColor card = m_theme->property("cardBackground").value<QColor>();
        const QColor text = m_theme->property("textPrimary").value<QColor>();
        m_view->setColor(background);
        QObject* browser = m_view->rootObject();
        for (const auto& [role, colour] : {std::pair{"window", card},
                                           {"windowText", text},
                                           {"base", card},
                                           {"text", text},
                                           {"light", card.lighter(140)},
                                           {"midlight", card.lighter(120)}}) {
            QVERIFY(QQmlProperty::write(browser, QStringLiteral("palette.") + role, colour));
        }
        auto tree = std::make_shared<FileTree>("/scan/home");
        NodeArena& arena = tree->arena();
        FileNode* folder = arena.create("Final Deliverables", true, 0, 0, FileCategory::other);
        FileNode* file = arena.create("cut.mp4", false, 5'000'000, 1, FileCategory::video);
        setChildren(folder, std::vector<FileNode*>{file});
        for (int level = 11; level >= 0; --level) {
            FileNode* up =
                arena.create(level == 0 ? "home" : "Project level " + std::to_string(level), true,
                             0, 0, FileCategory::other);
            setChildren(up, std::vector<FileNode*>{folder});
            folder = up;
        }
        for (FileNode* node = file->parent; node != nullptr; node = node->parent) {
            node->size = 5'000'000;
            node->otherSize = 5'000'000;
            node->fileCount = 1;
            sumCategoryBytes(node);
        }
        tree->setRoot(folder);
        m_navigator->setRoot(FileItem::rootOf(tree));
        FileItem deepest = FileItem::rootOf(tree);
        while (deepest.children().front().isDirectory()) {
            deepest = deepest.children().front();
        }
        m_navigator->setCurrentFolder(deepest);
        QTest::qWait(50); // the breadcrumb's delegates are rebuilt for the new chain

        auto* ellipsis = find<QQuickItem>("crumbEllipsis");
        QVERIFY(ellipsis != nullptr);
        auto* current = find<QQuickItem>("crumb Final Deliverables");
        QVERIFY(current != nullptr);
        QTRY_VERIFY(current->isVisible() && current->width() > 0);
        auto* measureSwitch = find<QQuickItem>("measure Size on disk");
        QVERIFY(measureSwitch != nullptr);
        const qreal currentRight = current->mapToScene({current->width(), 0}).x();
        QVERIFY2(currentRight <= measureSwitch->mapToScene({0, 0}).x(),
                 "the viewed folder runs under the switches");
        QVERIFY(find<QQuickItem>("crumb home") != nullptr);

        click(ellipsis);
        auto* menu = ellipsis->findChild<QObject*>("crumbEllipsisMenu");
        QVERIFY(menu != nullptr);
        QTRY_VERIFY(menu->property("opened").toBool());
        const QString shots = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            QTest::qWait(300);
            QVERIFY(m_view->grabWindow().save(shots + "/breadcrumb-deep.png"));
        }
        QTest::keyClick(m_view.get(), Qt::Key_Escape);
        QTRY_VERIFY(!menu->property("opened").toBool());
    }

    // Hovering a tile names it, its size and its share; the measure switch flips the navigator.
    void treemapReadoutNamesTheHoveredTileAndSizesSwitch() {
        TreemapCanvasView* canvas = showTreemap();
        QVERIFY(canvas != nullptr);
        const FileItem videos = childNamed(m_root, "Videos");
        QTest::mouseMove(m_view.get(), scenePoint(canvas, videos));
        auto* readout = find<QQuickItem>("treemapHoverReadout");
        QVERIFY(readout != nullptr);
        QTRY_COMPARE(readout->property("text").toString(),
                     QStringLiteral("Videos — %1 • 64.0%")
                         .arg(QString::fromStdString(videos.formattedSize())));

        click(find<QQuickItem>("measure Apparent size"));
        QVERIFY(m_navigator->apparentSize());
        click(find<QQuickItem>("measure Size on disk"));
        QVERIFY(!m_navigator->apparentSize());
    }

    // Writes treemap.png, treemap-breakdown.png and rings.png of a real scanned folder into the
    // folder named by SONDREL_SCREENSHOT_DIR (skipped when unset); SONDREL_SCREENSHOT_SOURCE
    // names the folder to scan (default /usr/share). Only reads the scanned folder.
    void screenshotsOfAScannedFolder() {
        const QString out = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        if (out.isEmpty()) {
            QSKIP("set SONDREL_SCREENSHOT_DIR to write screenshots");
        }
        const QString source = qEnvironmentVariable("SONDREL_SCREENSHOT_SOURCE", "/usr/share");
        const ScanResult scan = scanTree(source.toStdString(), {}, CancelToken{});
        QVERIFY(scan.tree != nullptr);
        m_navigator->setRoot(FileItem::rootOf(scan.tree));
        m_view->resize(1280, 760);
        m_view->setColor(m_theme->property("background").value<QColor>());

        TreemapCanvasView* treemap = showTreemap();
        QVERIFY(treemap != nullptr);
        QTRY_VERIFY(treemap->shapeCount() > 0);
        const FileItem largest = treemap->filteredItems().front();
        m_navigator->setSelectedItem(largest);
        QTest::mouseMove(m_view.get(), scenePoint(treemap, treemap->filteredItems()[1]));
        QTest::qWait(400);
        QVERIFY(m_view->grabWindow().save(out + "/treemap.png"));
        m_navigator->clearSelection();
        QTest::qWait(200);
        QVERIFY(m_view->grabWindow().save(out + "/treemap-breakdown.png"));

        m_navigator->setVisualizerMode(0);
        auto* rings = find<ColorRingsCanvasView>("ringsCanvas");
        QVERIFY(rings != nullptr);
        QTRY_VERIFY(rings->shapeCount() > 0);
        QTest::mouseMove(m_view.get(), scenePoint(rings, rings->filteredItems().front()));
        QTest::qWait(400);
        QVERIFY(m_view->grabWindow().save(out + "/rings.png"));
    }
};

QTEST_MAIN(StorageBrowserTest)
#include "storage_browser_test.moc"
