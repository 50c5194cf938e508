// LargeFileResultsModel over more files than the display cap: the first rows only, "Show All"
// inserting the rest as rows, the footer before and after, the cap coming back with a new
// filter, and the list's text for an empty search and for a filter that hides everything.

#include "app/large_file_results_model.h"

#include <QSignalSpy>
#include <QTest>
#include <string>
#include <vector>

namespace sondrel {

namespace {

constexpr int kFileCount = 250;

// kFileCount files from 22.1 MB to 296 MB, largest first, each named after its rank; every
// tenth a video.
LargeFileList manyFiles() {
    std::vector<LargeFile> files;
    for (int i = 0; i < kFileCount; ++i) {
        LargeFile file;
        file.name = "file" + std::to_string(i) + (i % 10 == 0 ? ".mkv" : ".bin");
        file.path = "/home/u/Downloads/" + file.name;
        file.size = 21000000 + static_cast<std::int64_t>(kFileCount - i) * 1100000;
        file.category = categoryFrom(file.path, false);
        file.inode = static_cast<std::uint64_t>(i) + 1;
        files.push_back(std::move(file));
    }
    return LargeFileList(std::move(files));
}

QString nameAt(const LargeFileResultsModel& model, int row) {
    return model.data(model.index(row), LargeFileResultsModel::NameRole).toString();
}

} // namespace

class LargeFileResultsModelTest : public QObject {
    Q_OBJECT

private slots:
    void capsTheRowsAndShowsAllOnRequest() {
        LargeFileResultsModel model;
        model.setFiles(manyFiles());
        // 250 * 21 MB + (1 + ... + 250) * 1.1 MB = 39.7625 GB.
        QCOMPARE(model.rowCount(), 100);
        QCOMPARE(model.filteredCount(), kFileCount);
        QCOMPARE(model.totalCount(), kFileCount);
        QVERIFY(model.canShowAll());
        QCOMPARE(model.showAllText(), QStringLiteral("Show All (250 Files)"));
        QCOMPARE(model.footerText(),
                 QString::fromUtf8("Showing 100 of 250 files \u00b7 Total: 39.76 GB"));
        QCOMPARE(nameAt(model, 99), QStringLiteral("file99.bin"));
        QVERIFY(model.fileAt(100) == nullptr);
        QVERIFY(model.emptyText().isEmpty());

        // Rows past the cap arrive as an insertion, so the view keeps its place and selection.
        model.select(5);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
        model.showAll();
        QCOMPARE(reset.count(), 0);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.front().at(1).toInt(), 100);
        QCOMPARE(inserted.front().at(2).toInt(), kFileCount - 1);
        QCOMPARE(model.rowCount(), kFileCount);
        QVERIFY(!model.canShowAll());
        QCOMPARE(model.footerText(), QString::fromUtf8("Showing 250 files \u00b7 Total: 39.76 GB"));
        QCOMPARE(nameAt(model, kFileCount - 1), QStringLiteral("file249.bin"));
        QCOMPARE(model.selectedCount(), 1);
        model.showAll(); // nothing more to show
        QCOMPARE(inserted.count(), 1);

        // A filter that keeps fewer than the cap shows them all; one that keeps more caps again.
        model.setCategoryOption(3); // Videos
        QCOMPARE(model.rowCount(), 25);
        QVERIFY(!model.canShowAll());
        model.setCategoryOption(0);
        QCOMPARE(model.rowCount(), 100);
        QVERIFY(model.canShowAll());

        // Trashing shown rows pulls the next ones up to the cap.
        model.removePaths({"/home/u/Downloads/file0.mkv", "/home/u/Downloads/file1.bin"});
        QCOMPARE(model.rowCount(), 100);
        QCOMPARE(model.filteredCount(), kFileCount - 2);
        QCOMPARE(nameAt(model, 0), QStringLiteral("file2.bin"));
        QVERIFY(model.footerText().startsWith(QStringLiteral("Showing 100 of 248 files")));

        // A new search starts capped again.
        model.showAll();
        model.setFiles(manyFiles());
        QCOMPARE(model.rowCount(), 100);
        QVERIFY(model.canShowAll());
    }

    void tellsAnEmptySearchFromAFilterThatHidesAll() {
        LargeFileResultsModel model;
        model.setFiles(LargeFileList());
        QCOMPARE(model.emptyText(), QStringLiteral("No large files found"));
        QCOMPARE(model.footerText(), QString::fromUtf8("Showing 0 files \u00b7 Total: Zero KB"));
        model.setQuery(QStringLiteral("anything"));
        QCOMPARE(model.emptyText(), QStringLiteral("No large files found"));

        model.setFiles(manyFiles());
        QCOMPARE(model.emptyText(), QStringLiteral("No files match the filters"));
        model.setQuery(QStringLiteral("  FILE12.BIN "));
        QCOMPARE(model.rowCount(), 1);
        QVERIFY(model.emptyText().isEmpty());
    }
};

} // namespace sondrel

QTEST_MAIN(sondrel::LargeFileResultsModelTest)
#include "large_file_results_model_test.moc"
