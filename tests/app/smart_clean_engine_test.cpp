// SmartCleanEngine over fake hooks and a scripted monitor: the scan waits for both scans, the
// figures and scores it publishes, the clean's re-score, refused requests while busy, and the
// manifest's switches deciding what a real clean on a temporary home removes.

#include "app/smart_clean_engine.h"
#include "app/system_monitor.h"
#include "core/care/care_sources.h"
#include "core/care/care_texts.h"
#include "core/fs/measure_tree.h"
#include "core/removal/permanent_removal.h"
#include "platform/system_sampler.h"
#include "tests/app/care_test_sampler.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <atomic>
#include <fstream>

namespace sondrel {
namespace {

using test::CareFigures;
using test::CareTestSampler;
using test::kGiB;

// Hooks whose scans finish when the test says so, with items the test sets.
struct FakeCollaborators {
    std::vector<CareItem> junk;
    std::vector<CareItem> orphans;
    std::vector<SmartCleanHooks::Done> junkDone;
    std::vector<SmartCleanHooks::Done> appDone;
    std::vector<CareItem> cleaned;
    std::atomic<bool> holdClean{false};
    int junkStarts = 0;

    SmartCleanHooks hooks() {
        SmartCleanHooks hooks;
        hooks.startJunkScan = [this](SmartCleanHooks::Done done) {
            ++junkStarts;
            junkDone.push_back(std::move(done));
        };
        hooks.startAppScan = [this](SmartCleanHooks::Done done) {
            appDone.push_back(std::move(done));
        };
        hooks.junkItems = [this] { return junk; };
        hooks.orphanItems = [this] { return orphans; };
        hooks.clean = [this](const std::vector<CareItem>& items, const CancelToken&,
                             const CareCleanProgress& progress) {
            while (holdClean.load()) {
                QThread::msleep(5);
            }
            CareCleanResult result;
            for (std::size_t i = 0; i < items.size(); ++i) {
                progress(i, items.size());
                result.bytesFreed += items[i].size;
                ++result.removedCount;
            }
            cleaned = items;
            return result;
        };
        return hooks;
    }
    void finishScans() {
        for (auto& done : junkDone) {
            done();
        }
        for (auto& done : appDone) {
            done();
        }
        junkDone.clear();
        appDone.clear();
    }
};

void writeFile(const QString& path, int size) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    std::ofstream(path.toStdString()) << std::string(static_cast<std::size_t>(size), 'x');
}

class SmartCleanEngineTest : public QObject {
    Q_OBJECT

private:
    std::shared_ptr<CareFigures> m_figures;
    std::unique_ptr<SystemMonitor> m_monitor;

    void scanAndWait(SmartCleanEngine& engine, FakeCollaborators& fake) {
        engine.runSmartScan();
        fake.finishScans();
        QVERIFY(QTest::qWaitFor([&] { return !engine.isScanning(); }, 5000));
    }

private slots:
    void init() {
        m_figures = std::make_shared<CareFigures>();
        m_monitor = std::make_unique<SystemMonitor>(std::make_unique<CareTestSampler>(m_figures));
    }

    void startsWithTheInitialValues() {
        FakeCollaborators fake;
        SmartCleanEngine engine(fake.hooks(), m_monitor.get());
        QCOMPARE(engine.healthScore(), 98);
        QCOMPARE(engine.clutterScore(), 60);
        QCOMPARE(engine.diskScore(), 25);
        QCOMPARE(engine.memoryScore(), 15);
        QCOMPARE(engine.statusMessage(), QString("Ready for Smart Scan"));
        QVERIFY(!engine.isScanning() && !engine.isCleaning());
        QVERIFY(!engine.hasScannedInitial() && !engine.hasCompletedClean());
        QCOMPARE(engine.cleanButtonText(), QString("Smart Clean (Zero KB)"));
    }

    void scanWaitsForBothScansAndScores() {
        FakeCollaborators fake;
        fake.junk = {{"/h/.cache/npm", 2 * kGiB, CareCategory::developerCaches, false},
                     {"/h/.local/share/Trash/files/x", kGiB, CareCategory::trash, false}};
        fake.orphans = {{"/h/.config/Gone", kGiB / 2, CareCategory::orphanedLeftovers, false}};
        m_figures->availableBytes = 10 * kGiB;
        m_figures->memoryPercent = 80;
        SmartCleanEngine engine(fake.hooks(), m_monitor.get());
        engine.runSmartScan();
        QVERIFY(engine.isScanning());
        QCOMPARE(engine.progressText(), QString::fromStdString(careScanPhaseText(true, true)));

        fake.junkDone.front()();
        QTest::qWait(50);
        QVERIFY(engine.isScanning()); // the app scan still runs
        QCOMPARE(engine.progressText(), QString("Looking for leftovers of removed apps..."));
        QCOMPARE(engine.summaryValue().totalReclaimableBytes(), 0);

        fake.appDone.front()();
        QVERIFY(QTest::qWaitFor([&] { return !engine.isScanning(); }, 5000));
        QCOMPARE(engine.summaryValue(), (SmartCleanSummary{2 * kGiB, kGiB / 2, 0, 0, kGiB}));
        QCOMPARE(engine.clutterScore(), 32); // 3.5 GiB
        QCOMPARE(engine.diskScore(), 14);
        QCOMPARE(engine.memoryScore(), 12);
        QCOMPARE(engine.healthScore(), 58);
        QCOMPARE(engine.conditionText(), QString("System Condition: Moderate Clutter"));
        QVERIFY(!engine.gaugeIsGreen());
        QVERIFY(engine.hasScannedInitial());
        QCOMPARE(engine.statusMessage(),
                 QString::fromStdString(careScanCompletedStatus(3 * kGiB + kGiB / 2)));
        QCOMPARE(engine.selectedBytes(), 3 * kGiB + kGiB / 2);
        QCOMPARE(engine.manifestRows().size(), 5);
    }

    void nothingFoundReadsLean() {
        FakeCollaborators fake;
        SmartCleanEngine engine(fake.hooks(), m_monitor.get());
        scanAndWait(engine, fake);
        QCOMPARE(engine.summaryValue(), SmartCleanSummary{});
        QCOMPARE(engine.statusMessage(), QString::fromStdString(careScanCompletedStatus(0)));
        QVERIFY(engine.statusMessage().endsWith("running lean and optimized"));
        QCOMPARE(engine.conditionText(), QString("System Condition: Optimal"));
        QCOMPARE(engine.healthScore(), 100);
    }

    void dependencyFoldersDoNotLowerTheScore() {
        // The junk hook maps groups as the window's does: dependency folders count nowhere.
        struct Group {
            JunkType type;
            const char* name;
            std::int64_t size;
        };
        const std::vector<Group> groups = {{JunkType::nodeModules, "nodeModules", 80 * kGiB},
                                           {JunkType::logs, "logs", 1000}};
        FakeCollaborators fake;
        SmartCleanHooks hooks = fake.hooks();
        hooks.junkItems = [&groups] {
            std::vector<CareItem> items;
            for (const Group& group : groups) {
                if (const auto category = careCategoryOf(group.type)) {
                    items.push_back(
                        {std::string("/h/") + group.name, group.size, *category, false});
                }
            }
            return items;
        };
        SmartCleanEngine engine(hooks, m_monitor.get());
        scanAndWait(engine, fake);
        QCOMPARE(engine.summaryValue().totalReclaimableBytes(), 1000);
        QCOMPARE(engine.healthScore(), 100);
    }

    void scanAndCleanRefusedWhileBusyAndCleanRescores() {
        FakeCollaborators fake;
        fake.junk = {{"/h/.cache/a", 30 * kGiB, CareCategory::appCaches, false}};
        m_figures->availableBytes = 2 * kGiB;
        m_figures->memoryPercent = 95;
        SmartCleanEngine engine(fake.hooks(), m_monitor.get());
        scanAndWait(engine, fake);
        QCOMPARE(engine.healthScore(), 25); // 10 + 6 + 8

        // A scan while scanning does nothing; so does a clean.
        engine.runSmartScan();
        QCOMPARE(fake.junkStarts, 2);
        engine.runSmartScan();
        QCOMPARE(fake.junkStarts, 2);
        engine.cleanAll();
        QVERIFY(!engine.isCleaning());
        fake.finishScans();
        QVERIFY(QTest::qWaitFor([&] { return !engine.isScanning(); }, 5000));

        fake.holdClean = true;
        QSignalSpy completed(&engine, &SmartCleanEngine::cleanCompleted);
        engine.cleanAll();
        QVERIFY(engine.isCleaning());
        QCOMPARE(engine.cleanButtonText(), QString("Cleaning..."));
        QCOMPARE(engine.statusMessage(), QString::fromStdString(careCleaningStatus()));
        engine.runSmartScan(); // refused during a clean
        QCOMPARE(fake.junkStarts, 2);
        QVERIFY(!engine.isScanning());
        fake.holdClean = false;
        QVERIFY(completed.wait(5000));

        QVERIFY(!engine.isCleaning());
        QVERIFY(engine.hasCompletedClean());
        QCOMPARE(engine.cleanedBytesLastRun(), 30 * kGiB);
        QCOMPARE(engine.summaryValue(), SmartCleanSummary{});
        QCOMPARE(engine.clutterScore(), 60);
        QCOMPARE(engine.diskScore(), 14); // the clean's table has no step of 6
        QCOMPARE(engine.memoryScore(), 8);
        QCOMPARE(engine.healthScore(), 95);
        QCOMPARE(engine.statusMessage(),
                 QString::fromStdString(careCleanCompletedStatus(30 * kGiB)));
        QCOMPARE(engine.savedText(), QString::fromStdString(careSavedText(30 * kGiB)));
    }

    void allSwitchesOffSelectsNothing() {
        FakeCollaborators fake;
        fake.junk = {{"/h/.cache/a", 5000, CareCategory::appCaches, false}};
        SmartCleanEngine engine(fake.hooks(), m_monitor.get());
        scanAndWait(engine, fake);
        QVERIFY(engine.canExecute());
        for (int category = 0; category < 5; ++category) {
            engine.setCategorySwitch(category, false);
        }
        QVERIFY(!engine.canExecute());
        QCOMPARE(engine.executeButtonText(), QString("No Items Selected"));
        engine.cleanAll();
        QVERIFY(!engine.isCleaning());
        engine.resetSwitches();
        QCOMPARE(engine.executeButtonText(), QString("Execute Cleanup (5 KB)"));
    }

    // The real clean on a temporary home: a row switched off is left exactly as it was.
    void switchedOffRowsAreNotTouched_data() {
        QTest::addColumn<int>("off");
        QTest::newRow("Empty Trash Bin off") << int(CareCategory::trash);
        QTest::newRow("Orphaned App Leftovers off") << int(CareCategory::orphanedLeftovers);
    }
    void switchedOffRowsAreNotTouched() {
        QFETCH(int, off);
        QTemporaryDir dir;
        const QString home = dir.filePath("home");
        writeFile(home + "/.cache/thumbnails/a.png", 20000);
        writeFile(home + "/.config/GoneApp/settings.ini", 3000);
        writeFile(home + "/.local/share/Trash/files/old.iso", 40000);
        writeFile(home + "/.local/share/Trash/info/old.iso.trashinfo",
                  0); // a record for the trashed item
        const std::string h = home.toStdString();
        const auto item = [](const std::string& path, CareCategory category) {
            return CareItem{path, measureTree(path).allocated, category, false};
        };
        FakeCollaborators fake;
        fake.junk = {item(h + "/.cache/thumbnails", CareCategory::appCaches),
                     item(h + "/.local/share/Trash/files/old.iso", CareCategory::trash)};
        fake.orphans = {item(h + "/.config/GoneApp", CareCategory::orphanedLeftovers)};
        SmartCleanHooks hooks = fake.hooks();
        const RemovalContext context = RemovalContext::forUser(h, h + "/.local/share", {h});
        // What the junk and app scans would have found, for their chains.
        CareSources sources;
        const auto junk = [](const std::string& path, const std::string& root, JunkType type) {
            JunkItem found;
            found.path = path;
            found.root = root;
            found.type = type;
            found.size = measureTree(path).allocated;
            return found;
        };
        sources.junk = {junk(h + "/.cache/thumbnails", h + "/.cache", JunkType::userCaches),
                        junk(h + "/.local/share/Trash/files/old.iso",
                             h + "/.local/share/Trash/files", JunkType::trash)};
        sources.orphans.push_back({});
        sources.orphans.back().path = h + "/.config/GoneApp";
        sources.orphans.back().size = fake.orphans.front().size;
        hooks.clean = [context, sources](const std::vector<CareItem>& items,
                                         const CancelToken& cancel,
                                         const CareCleanProgress& progress) {
            return cleanFromSources(items, sources, context, cancel, progress);
        };
        SmartCleanEngine engine(hooks, m_monitor.get());
        scanAndWait(engine, fake);
        const qint64 expected =
            engine.selectedBytes() - engine.manifest().row(CareCategory(off)).totalBytes;
        engine.setCategorySwitch(off, false);
        QCOMPARE(engine.selectedBytes(), expected);
        QSignalSpy completed(&engine, &SmartCleanEngine::cleanCompleted);
        engine.cleanAll();
        QVERIFY(completed.wait(10000));
        QCOMPARE(engine.cleanedBytesLastRun(), expected);
        QCOMPARE(engine.cleanFailureText(), QString());

        const bool trashKept = pathExists(h + "/.local/share/Trash/files/old.iso");
        const bool orphanKept = pathExists(h + "/.config/GoneApp/settings.ini");
        QCOMPARE(trashKept, off == int(CareCategory::trash));
        QCOMPARE(orphanKept, off == int(CareCategory::orphanedLeftovers));
        QVERIFY(!pathExists(h + "/.cache/thumbnails"));
        if (off != int(CareCategory::trash)) {
            QVERIFY(!pathExists(h + "/.local/share/Trash/info/old.iso.trashinfo"));
        }
    }
};

} // namespace
} // namespace sondrel

QTEST_GUILESS_MAIN(sondrel::SmartCleanEngineTest)
#include "smart_clean_engine_test.moc"
