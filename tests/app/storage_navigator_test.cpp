#include "app/storage_contents_model.h"
#include "app/storage_details.h"
#include "app/storage_navigator.h"
#include "tests/ui/storage_test_tree.h"

#include <QSignalSpy>
#include <QTest>

using namespace sondrel;
using sondrel::test::childNamed;
using sondrel::test::makeStorageTestTree;

class StorageNavigatorTest : public QObject {
    Q_OBJECT

private slots:
    void sizeMeasureSwitchReLaysTheViewsWithoutARescan() {
        // Sizes on disk first; an empty disk image is large only by its length.
        const auto makeTree = [] {
            auto tree = std::make_shared<FileTree>("/scan/box");
            NodeArena& a = tree->arena();
            FileNode* image = a.create("disk.img", false, 4096, 1, FileCategory::other);
            image->otherSize = 1'000'000'000;
            FileNode* doc = a.create("report.pdf", false, 300'000, 1, FileCategory::document);
            doc->otherSize = 299'000;
            FileNode* root = a.create("box", true, 304'096, 2, FileCategory::other);
            root->otherSize = 1'000'299'000;
            setChildren(root, std::vector<FileNode*>{doc, image});
            tree->declareMeasure(SizeMeasure::allocated);
            tree->setRoot(root);
            return FileItem::rootOf(tree);
        };
        StorageNavigator nav;
        QSignalSpy mutated(&nav, &StorageNavigator::treeMutated);
        const FileItem root = makeTree();
        nav.setRoot(root);
        StorageContentsModel* rows = nav.contents();
        const auto firstName = [rows] {
            return rows->data(rows->index(0), StorageContentsModel::NameRole).toString();
        };
        QVERIFY(!nav.apparentSize());
        QCOMPARE(root.size(), 304'096);
        QCOMPARE(firstName(), QStringLiteral("report.pdf"));

        nav.setSelectedItem(childNamed(root, "report.pdf"));
        nav.setApparentSize(true);
        QCOMPARE(mutated.count(), 1);
        QCOMPARE(root.size(), 1'000'299'000);
        QCOMPARE(firstName(), QStringLiteral("disk.img"));
        QVERIFY(nav.hasSelection()); // the selection stays

        // A new scan's tree is shown in the chosen measure.
        const FileItem next = makeTree();
        nav.setRoot(next);
        QCOMPARE(next.tree()->measure(), SizeMeasure::apparent);
        QCOMPARE(next.size(), 1'000'299'000);
        nav.setApparentSize(false);
        QCOMPARE(next.size(), 304'096);
    }

    void drillDownUpAndBreadcrumb() {
        StorageNavigator nav;
        const FileItem root = makeStorageTestTree();
        nav.setRoot(root);
        const FileItem projects = childNamed(root, "Projects");
        const FileItem app = childNamed(projects, "app");

        nav.setCurrentFolder(childNamed(root, "notes.txt")); // a file: ignored
        QCOMPARE(nav.currentFolder(), root);
        nav.setCurrentFolder(app);
        QCOMPARE(nav.details()->breadcrumbNames(), (QStringList{"home", "Projects", "app"}));
        nav.details()->navigateToBreadcrumb(1);
        QCOMPARE(nav.currentFolder(), projects);
        nav.goUp();
        QCOMPARE(nav.currentFolder(), root);
        nav.goUp(); // at the root nothing changes
        QCOMPARE(nav.currentFolder(), root);
        QCOMPARE(nav.details()->breadcrumbNames(), QStringList{"home"});

        // A folder of another tree is never shown against this root.
        const FileItem other = makeStorageTestTree();
        nav.setCurrentFolder(childNamed(other, "Videos"));
        QCOMPARE(nav.currentFolder(), root);
    }

    void contentsAreSortedAndFollowTheFolder() {
        StorageNavigator nav;
        const FileItem root = makeStorageTestTree();
        nav.setRoot(root);
        StorageContentsModel* rows = nav.contents();
        QCOMPARE(rows->count(), 4);
        const QStringList expected{"Videos", "Projects", "exact.iso", "notes.txt"};
        for (int i = 0; i < rows->count(); ++i) {
            QCOMPARE(rows->data(rows->index(i), StorageContentsModel::NameRole).toString(),
                     expected[i]);
        }
        QCOMPARE(rows->data(rows->index(0), StorageContentsModel::ShareTextRole).toString(),
                 QStringLiteral("64.0%"));
        rows->zoom(0);
        QCOMPARE(nav.currentFolder(), childNamed(root, "Videos"));
        QCOMPARE(rows->count(), 2);
        rows->zoom(0); // a file: no drill-down
        QCOMPARE(nav.currentFolder(), childNamed(root, "Videos"));
        rows->select(1);
        QCOMPARE(nav.details()->selectedName(), QStringLiteral("clip.mov"));
        QVERIFY(rows->data(rows->index(1), StorageContentsModel::IsSelectedRole).toBool());
    }

    void breakdownCoversTheWholeSubtreeLargestFirst() {
        StorageNavigator nav;
        nav.setRoot(makeStorageTestTree());
        const QVariantList rows = nav.details()->breakdown();
        QCOMPARE(rows.size(), 4);
        const auto field = [&](int i, const char* key) {
            return rows[i].toMap().value(QString::fromLatin1(key)).toString();
        };
        QCOMPARE(field(0, "name"), QStringLiteral("Videos"));
        QCOMPARE(field(0, "sizeText"), QStringLiteral("40 MB"));
        // Projects is a folder of folders: its code below counts, not the folder as "Other".
        QCOMPARE(field(1, "name"), QStringLiteral("Developer"));
        QCOMPARE(field(1, "sizeText"), QStringLiteral("12 MB"));
        QCOMPARE(field(3, "sizeText"), QStringLiteral("5 KB"));
        QCOMPARE(nav.details()->folderItemsText(), QStringLiteral("5 items"));
    }

    void arrowsMoveTheSelectionAndEnterZooms() {
        StorageNavigator nav;
        const FileItem root = makeStorageTestTree();
        nav.setRoot(root);
        nav.selectAdjacent(1);
        QCOMPARE(nav.selectedItem(), childNamed(root, "Videos"));
        nav.selectAdjacent(-1); // clamped at the first
        QCOMPARE(nav.selectedItem(), childNamed(root, "Videos"));
        nav.selectAdjacent(10);
        QCOMPARE(nav.selectedItem(), childNamed(root, "notes.txt"));
        nav.zoomIntoSelection(); // a file
        QCOMPARE(nav.currentFolder(), root);
        nav.selectAdjacent(-2);
        nav.zoomIntoSelection();
        QCOMPARE(nav.currentFolder(), childNamed(root, "Projects"));
    }

    void trashingUpdatesTheParentAndTheSelection() {
        StorageNavigator nav;
        const FileItem root = makeStorageTestTree();
        nav.setRoot(root);
        std::vector<std::string> trashed;
        bool succeed = false;
        nav.setTrasher([&](const std::string& path) {
            trashed.push_back(path);
            TrashResult result;
            result.ok = succeed;
            result.error = succeed ? "" : "permission denied";
            result.trashedPath = "/trash/files/Videos";
            result.infoPath = "/trash/info/Videos.trashinfo";
            return result;
        });
        std::vector<std::string> restored;
        bool restoreSucceeds = false;
        nav.setRestorer([&](const std::string& trashedPath, const std::string& infoPath) {
            restored.push_back(trashedPath + " " + infoPath);
            RestoreResult result;
            result.ok = restoreSucceeds;
            result.error = "something else now exists at its original place";
            return result;
        });
        const FileItem videos = childNamed(root, "Videos");
        nav.setSelectedItem(childNamed(videos, "movie.mp4"));
        QVERIFY(!nav.details()->trashSelected()); // the Trash refused: nothing changes
        QCOMPARE(videos.size(), 40'000'000);
        QCOMPARE(nav.contents()->count(), 4);
        // ... and says why, in one line, with nothing to undo.
        QCOMPARE(nav.notice(), QString("Could not move movie.mp4 to the Trash: permission denied"));
        QVERIFY(!nav.canUndoTrash());
        nav.undoTrash();
        QVERIFY(restored.empty());

        succeed = true;
        QSignalSpy mutated(&nav, &StorageNavigator::treeMutated);
        QVERIFY(nav.trashFileItem(videos));
        QCOMPARE(trashed.back(), std::string("/scan/home/Videos"));
        QCOMPARE(mutated.count(), 1);
        QVERIFY(!nav.hasSelection()); // the selection was inside the trashed folder
        QCOMPARE(root.size(), 22'490'760);
        QCOMPARE(nav.contents()->count(), 3);
        QCOMPARE(nav.notice(), QString("Moved Videos to the Trash"));
        QVERIFY(nav.canUndoTrash());

        // A refused restore keeps the tree as it is and says why.
        nav.undoTrash();
        QCOMPARE(restored,
                 std::vector<std::string>{"/trash/files/Videos /trash/info/Videos.trashinfo"});
        QCOMPARE(nav.notice(), QString("Could not restore Videos: something else now exists at "
                                       "its original place"));
        QVERIFY(!nav.canUndoTrash());
        QCOMPARE(nav.contents()->count(), 3);

        // Undo puts the folder back into the tree, at its place by size.
        restoreSucceeds = true;
        restored.clear();
        const FileItem iso = childNamed(root, "exact.iso");
        QVERIFY(nav.trashFileItem(iso));
        QCOMPARE(nav.contents()->count(), 2);
        nav.undoTrash();
        QCOMPARE(restored.size(), 1u);
        QCOMPARE(nav.notice(), QString("Restored exact.iso"));
        QVERIFY(!nav.canUndoTrash());
        QCOMPARE(nav.contents()->count(), 3);
        QVERIFY(childNamed(root, "exact.iso"));
        QCOMPARE(mutated.count(), 3);
        nav.dismissNotice();
        QVERIFY(nav.notice().isEmpty());
    }

    void longBreadcrumbsCollapseTheMiddle() {
        const QStringList names = {"home", "a", "b", "c", "d", "current"};
        const auto shown = [](const QVariantList& elements) {
            QStringList out;
            for (const QVariant& e : elements) {
                const QVariantMap map = e.toMap();
                out << map["name"].toString() + "@" + map["index"].toString();
            }
            return out;
        };
        QCOMPARE(shown(StorageDetails::collapseBreadcrumb(names, 6)),
                 (QStringList{"home@0", "a@1", "b@2", "c@3", "d@4", "current@5"}));
        QCOMPARE(shown(StorageDetails::collapseBreadcrumb(names, 4)),
                 (QStringList{"home@0", QString::fromUtf8("\u2026@-1"), "d@4", "current@5"}));
        // Never fewer than the root, the ellipsis and the viewed folder.
        const QVariantList tight = StorageDetails::collapseBreadcrumb(names, 0);
        QCOMPARE(shown(tight),
                 (QStringList{"home@0", QString::fromUtf8("\u2026@-1"), "current@5"}));
        QVERIFY(tight[1].toMap()["isEllipsis"].toBool());
        QStringList hidden;
        for (const QVariant& h : tight[1].toMap()["hidden"].toList()) {
            hidden << h.toMap()["name"].toString();
        }
        QCOMPARE(hidden, (QStringList{"a", "b", "c", "d"}));
        QCOMPARE(shown(StorageDetails::collapseBreadcrumb({"home"}, 0)), QStringList{"home@0"});
    }

    void rationaleUsesPlatformTerms() {
        StorageNavigator nav;
        const FileItem root = makeStorageTestTree();
        nav.setRoot(root);
        nav.setSelectedItem(childNamed(root, "exact.iso"));
        QVERIFY(!nav.details()->selectedRationale().isEmpty());
        QVERIFY(!nav.details()->selectedRationale().contains(QStringLiteral("Finder")));
        QVERIFY(!nav.details()->selectedIsApplication());
        nav.setApplicationMatcher([](const std::string& path) { return path.ends_with(".iso"); });
        QVERIFY(nav.details()->selectedIsApplication());
        QCOMPARE(StorageDetails::platformText(QStringLiteral("Move to macOS Trash")),
                 QStringLiteral("Move to Trash"));
        QCOMPARE(StorageDetails::platformText(QStringLiteral("Reveal in macOS Finder")),
                 QStringLiteral("Show in Files"));
    }
};

QTEST_GUILESS_MAIN(StorageNavigatorTest)
#include "storage_navigator_test.moc"
