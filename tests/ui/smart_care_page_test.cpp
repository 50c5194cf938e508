// The Smart Care dashboard and its manifest sheet rendered offscreen over an engine with fake
// scans and fixed disk and memory figures: the condition line and the gauge's colour at 84, 79
// and with nothing reclaimable, the manifest's rows, their switches and the execute button, and
// the Linux wording. No QML warning is allowed. With SONDREL_SCREENSHOT=DIR the dashboard and the
// sheet are saved as DIR/smart-care.png and DIR/smart-care-manifest.png.

#include "app/smart_clean_engine.h"
#include "app/system_monitor.h"
#include "platform/system_sampler.h"
#include "tests/app/care_test_sampler.h"
#include "tests/ui/page_harness.h"
#include "tests/ui/warning_filter.h"

#include <QQuickItem>
#include <QRegularExpression>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <memory>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

using namespace sondrel::test;

// The items a scan of a developer's home might find.
std::vector<CareItem> homeJunk(std::int64_t scale) {
    return {
        {"/home/ada/.npm/_cacache", 6 * scale, CareCategory::developerCaches, false},
        {"/home/ada/.cache/pip", 3 * scale, CareCategory::developerCaches, false},
        {"/home/ada/.cache/thumbnails", 2 * scale, CareCategory::appCaches, false},
        {"/var/cache/app-updates", scale, CareCategory::appCaches, true},
        {"/home/ada/.xsession-errors.old", scale / 4, CareCategory::logs, false},
        {"/home/ada/.local/share/Trash/files/old-backup.tar", 3 * scale, CareCategory::trash,
         false},
    };
}

class SmartCarePageTest : public QObject {
    Q_OBJECT

private:
    std::shared_ptr<CareFigures> m_figures = std::make_shared<CareFigures>();
    std::unique_ptr<SystemMonitor> m_monitor;
    std::vector<CareItem> m_junk;
    std::vector<CareItem> m_orphans;
    std::unique_ptr<SmartCleanEngine> m_engine;
    std::unique_ptr<PageView> m_view;
    QObject* m_page = nullptr;

    void scan() {
        m_engine->runSmartScan();
        QVERIFY(QTest::qWaitFor([&] { return !m_engine->isScanning(); }, 5000));
        QTest::qWait(20);
    }

private slots:
    void init() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        m_monitor = std::make_unique<SystemMonitor>(std::make_unique<CareTestSampler>(m_figures));
        SmartCleanHooks hooks;
        hooks.startJunkScan = [](const SmartCleanHooks::Done& done) { done(); };
        hooks.startAppScan = [](const SmartCleanHooks::Done& done) { done(); };
        hooks.junkItems = [this] { return m_junk; };
        hooks.orphanItems = [this] { return m_orphans; };
        m_engine = std::make_unique<SmartCleanEngine>(hooks, m_monitor.get());

        m_view = std::make_unique<PageView>();
        QCOMPARE(m_view->load("qrc:/Sondrel/qml/care/SmartCareDashboard.qml",
                              {{"engine", QVariant::fromValue<QObject*>(m_engine.get())}},
                              {1080, 860}),
                 QString());
        m_page = m_view->page();
    }

    void cleanup() {
        m_view.reset();
        m_engine.reset();
        m_monitor.reset();
    }

    void conditionLineAndGauge() {
        const QColor green("#34c759");
        const QColor secondary = m_view->theme()->property("secondaryAccent").value<QColor>();
        QQuickItem* ring = findItem(m_page, "healthRing");
        QVERIFY(ring);

        // 52 + 20 + 12 = 84 with something to reclaim.
        m_junk = {{"/home/ada/.cache/a", kGiB / 2, CareCategory::appCaches, false}};
        m_figures->availableBytes = 20 * kGiB;
        m_figures->memoryPercent = 85;
        scan();
        QCOMPARE(textOf(m_page, "healthScoreText"), QString("84"));
        QCOMPARE(textOf(m_page, "conditionText"), QString("System Condition: Good"));
        QCOMPARE(ring->property("startColor").value<QColor>(), green);

        // 44 + 20 + 15 = 79: no green in the gauge.
        m_junk = {{"/home/ada/.cache/a", 2 * kGiB, CareCategory::appCaches, false}};
        m_figures->memoryPercent = 50;
        scan();
        QCOMPARE(textOf(m_page, "healthScoreText"), QString("79"));
        QCOMPARE(textOf(m_page, "conditionText"), QString("System Condition: Good"));
        QCOMPARE(ring->property("startColor").value<QColor>(), secondary);
        QCOMPARE(textOf(m_page, "cleanButton"), QString("Smart Clean (2.15 GB)"));

        // Nothing to reclaim reads Optimal whatever the score (60 + 6 + 8 = 74).
        m_junk.clear();
        m_figures->availableBytes = kGiB;
        m_figures->memoryPercent = 95;
        scan();
        QCOMPARE(textOf(m_page, "healthScoreText"), QString("74"));
        QCOMPARE(textOf(m_page, "conditionText"), QString("System Condition: Optimal"));
        QCOMPARE(textOf(m_page, "summarySentence"),
                 QString("Your system is currently running lean and optimized."));
        QCOMPARE(textOf(m_page, "cleanButton"), QString("Smart Clean (Zero KB)"));

        // The parameters panel shows the three sub-scores.
        QVERIFY(!findItem(m_page, "parametersPanel")->isVisible());
        QVERIFY(QMetaObject::invokeMethod(findItem(m_page, "parametersButton"), "clicked"));
        QVERIFY(findItem(m_page, "parametersPanel")->isVisible());
        QCOMPARE(textOf(findItem(m_page, "storageHeadroomCard"), "scoreText"), QString("6/25"));
        QCOMPARE(textOf(findItem(m_page, "diskHygieneCard"), "detailText"),
                 QString("0 KB Junk (Clean)"));
        QCOMPARE(findShown(m_page, "categoryCard").size(), 6);
    }

    void manifestSwitchesAndExecute() {
        m_junk = homeJunk(100'000'000);
        m_orphans = {
            {"/home/ada/.config/OldEditor", 45'000'000, CareCategory::orphanedLeftovers, false}};
        m_figures->availableBytes = 40 * kGiB;
        scan();
        QVERIFY(QMetaObject::invokeMethod(findItem(m_page, "parametersButton"), "clicked"));
        QTest::qWait(50);
        const QString shots = qEnvironmentVariable("SONDREL_SCREENSHOT");
        if (!shots.isEmpty()) {
            QVERIFY(m_view->view().grabWindow().save(shots + "/smart-care.png"));
        }

        QVERIFY(QMetaObject::invokeMethod(findItem(m_page, "cleanButton"), "clicked"));
        QObject* sheet = m_page->findChild<QObject*>("manifestSheet");
        QVERIFY(sheet);
        QTRY_VERIFY(sheet->property("opened").toBool());
        // The sheet's rows hang below the window's overlay, not below the page.
        QQuickItem* content = m_view->view().contentItem();
        const QList<QQuickItem*> rows = findShown(content, "manifestRow");
        QCOMPARE(rows.size(), 5);
        QCOMPARE(textOf(rows[4], "rowTitle"), QString("Empty Trash Bin"));
        QCOMPARE(textOf(rows[4], "rowBadge"), QString("User Review"));
        QCOMPARE(textOf(content, "freeSpaceTitle"),
                 QString("Why might reported free space in Files differ after cleanup?"));
        QCOMPARE(textOf(content, "executeButton"), QString("Execute Cleanup (1.57 GB)"));
        QVERIFY(findItem(content, "adminNote")->isVisible());

        // The rows expand to their exact items; the explanation to the Linux reasons.
        rows[0]->setProperty("expanded", true);
        QObject* notes = findItem(content, "manifestNotes");
        QVERIFY(notes);
        notes->setProperty("showFreeSpaceInfo", true);
        QTest::qWait(50);
        QCOMPARE(findShown(content, "freeSpaceReason").size(), 4);
        QCOMPARE(findItem(rows[0], "itemList")->property("count").toInt(), 2);
        if (!shots.isEmpty()) {
            QVERIFY(m_view->view().grabWindow().save(shots + "/smart-care-manifest.png"));
            // The notes at the end of the sheet: the safety net and the free-space reasons.
            auto* flickable = qvariant_cast<QQuickItem*>(
                findItem(content, "manifestScroll")->property("contentItem"));
            QVERIFY(flickable);
            flickable->setProperty("contentY", flickable->property("contentHeight").toReal() -
                                                   flickable->height());
            QTest::qWait(50);
            QVERIFY(m_view->view().grabWindow().save(shots + "/smart-care-manifest-notes.png"));
            flickable->setProperty("contentY", 0);
        }

        // A real click on the Trash row's switch, then every other row off by its signal.
        QQuickItem* trashSwitch = findItem(rows[4], "rowSwitch");
        QVERIFY(trashSwitch);
        QVERIFY(QMetaObject::invokeMethod(trashSwitch, "toggle"));
        QVERIFY(QMetaObject::invokeMethod(trashSwitch, "toggled"));
        QVERIFY(!m_engine->switches().isOn(CareCategory::trash));
        QCOMPARE(textOf(content, "executeButton"), QString("Execute Cleanup (1.27 GB)"));
        for (int i = 0; i < 4; ++i) {
            QVERIFY(QMetaObject::invokeMethod(rows[i], "toggled", Q_ARG(bool, false)));
        }
        QCOMPARE(textOf(content, "executeButton"), QString("No Items Selected"));
        QVERIFY(!findItem(content, "executeButton")->isEnabled());
        QCOMPARE(textOf(content, "selectedTotalText"), QString("Zero KB"));

        // Closing and opening again starts with every row on.
        QVERIFY(QMetaObject::invokeMethod(findItem(content, "cancelButton"), "clicked"));
        QTRY_VERIFY(!sheet->property("visible").toBool());
        QVERIFY(QMetaObject::invokeMethod(sheet, "open"));
        QTRY_VERIFY(sheet->property("opened").toBool());
        QVERIFY(findItem(content, "executeButton")->isEnabled());
    }
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::SmartCarePageTest)
#include "smart_care_page_test.moc"
