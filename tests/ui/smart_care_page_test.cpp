// The Smart Care dashboard and its manifest sheet rendered offscreen over an engine with fake
// scans and fixed disk and memory figures: the condition line and the gauge's colour at 84, 79
// and with nothing reclaimable, the manifest's rows, their switches and the execute button, and
// the Linux wording. No QML warning is allowed. With SONDREL_SCREENSHOT=DIR the dashboard and the
// sheet are saved as DIR/smart-care.png and DIR/smart-care-manifest.png.

#include "app/smart_clean_engine.h"
#include "app/system_monitor.h"
#include "platform/system_sampler.h"
#include "tests/ui/warning_filter.h"
#include "ui/src/shell_setup.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <memory>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

constexpr std::int64_t kGiB = std::int64_t{1} << 30;

const char* const kThemeQml = R"(
import QtQuick
QtObject {
    property color background: Qt.rgba(0.05, 0.05, 0.07, 1)
    property color cardBackground: Qt.rgba(1, 1, 1, 0.04)
    property color border: Qt.rgba(1, 1, 1, 0.08)
    property color accent: Qt.rgba(1.0, 0.2, 0.35, 1)
    property color secondaryAccent: Qt.rgba(1.0, 0.45, 0.2, 1)
    property color textPrimary: Qt.rgba(0.95, 0.95, 0.97, 1)
    property color textSecondary: Qt.rgba(1, 1, 1, 0.6)
}
)";

struct Figures {
    std::int64_t availableBytes = 100 * kGiB;
    std::uint64_t memoryPercent = 50;
};

class FixedSampler final : public SystemSampler {
public:
    explicit FixedSampler(std::shared_ptr<Figures> figures) : m_figures(std::move(figures)) {}
    std::vector<ProcessorTicks> processorTicks() override { return {}; }
    MemoryStats memory() override {
        MemoryStats memory;
        memory.totalBytes = 100;
        memory.activeBytes = m_figures->memoryPercent;
        return memory;
    }
    DiskStats disk() override {
        DiskStats disk;
        disk.totalBytes = 500 * kGiB;
        disk.freeBytes = disk.availableBytes = m_figures->availableBytes;
        return disk;
    }
    HostFacts hostFacts() override { return {}; }

private:
    std::shared_ptr<Figures> m_figures;
};

// Every QQuickItem below `root` named `name`, through both the object tree and the item tree
// (a popup's items hang below the window's overlay, not below the page), in tree order.
void collect(QObject* object, const QString& name, QList<QQuickItem*>& found,
             QSet<QObject*>& seen) {
    if (object == nullptr || seen.contains(object)) {
        return;
    }
    seen.insert(object);
    auto* item = qobject_cast<QQuickItem*>(object);
    if (item && object->objectName() == name) {
        found.append(item);
    }
    if (item) {
        for (QQuickItem* child : item->childItems()) {
            collect(child, name, found, seen);
        }
    }
    for (QObject* child : object->children()) {
        collect(child, name, found, seen);
    }
}

QList<QQuickItem*> findAll(QObject* root, const QString& name) {
    QList<QQuickItem*> found;
    QSet<QObject*> seen;
    collect(root, name, found, seen);
    return found;
}

QQuickItem* findItem(QObject* root, const QString& name) {
    const QList<QQuickItem*> found = findAll(root, name);
    return found.isEmpty() ? nullptr : found.first();
}

QList<QQuickItem*> findItems(QObject* root, const QString& name) {
    QList<QQuickItem*> shown;
    for (QQuickItem* item : findAll(root, name)) {
        if (item->isVisible()) {
            shown.append(item);
        }
    }
    return shown;
}

QString textOf(QObject* root, const char* name) {
    QQuickItem* item = findItem(root, QString::fromLatin1(name));
    return item ? item->property("text").toString() : QStringLiteral("<missing %1>").arg(name);
}

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
    std::shared_ptr<Figures> m_figures = std::make_shared<Figures>();
    std::unique_ptr<SystemMonitor> m_monitor;
    std::vector<CareItem> m_junk;
    std::vector<CareItem> m_orphans;
    std::unique_ptr<SmartCleanEngine> m_engine;
    std::unique_ptr<QObject> m_theme; // outlives the view, whose bindings read it
    std::unique_ptr<QQuickView> m_view;
    QObject* m_page = nullptr;

    void scan() {
        m_engine->runSmartScan();
        QVERIFY(QTest::qWaitFor([&] { return !m_engine->isScanning(); }, 5000));
        QTest::qWait(20);
    }

private slots:
    void init() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        m_monitor = std::make_unique<SystemMonitor>(std::make_unique<FixedSampler>(m_figures));
        SmartCleanHooks hooks;
        hooks.startJunkScan = [](const SmartCleanHooks::Done& done) { done(); };
        hooks.startAppScan = [](const SmartCleanHooks::Done& done) { done(); };
        hooks.junkItems = [this] { return m_junk; };
        hooks.orphanItems = [this] { return m_orphans; };
        m_engine = std::make_unique<SmartCleanEngine>(hooks, m_monitor.get());

        m_view = std::make_unique<QQuickView>();
        installShellImageProviders(*m_view->engine());
        QQmlComponent themeComponent(m_view->engine());
        themeComponent.setData(kThemeQml, QUrl());
        m_theme.reset(themeComponent.create());
        QVERIFY(m_theme);
        m_view->setInitialProperties({{"engine", QVariant::fromValue<QObject*>(m_engine.get())},
                                      {"theme", QVariant::fromValue<QObject*>(m_theme.get())}});
        m_view->setResizeMode(QQuickView::SizeRootObjectToView);
        m_view->resize(1080, 860);
        m_view->setSource(QUrl("qrc:/Sondrel/qml/care/SmartCareDashboard.qml"));
        QVERIFY2(m_view->status() == QQuickView::Ready,
                 qPrintable(m_view->errors().isEmpty() ? QString()
                                                       : m_view->errors().first().toString()));
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
        m_page = m_view->rootObject();
    }

    void cleanup() {
        m_view.reset();
        m_theme.reset();
        m_engine.reset();
        m_monitor.reset();
    }

    void conditionLineAndGauge() {
        const QColor green("#34c759");
        const QColor secondary = m_theme->property("secondaryAccent").value<QColor>();
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
        QCOMPARE(findItems(m_page, "categoryCard").size(), 6);
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
            QVERIFY(m_view->grabWindow().save(shots + "/smart-care.png"));
        }

        QVERIFY(QMetaObject::invokeMethod(findItem(m_page, "cleanButton"), "clicked"));
        QObject* sheet = m_page->findChild<QObject*>("manifestSheet");
        QVERIFY(sheet);
        QTRY_VERIFY(sheet->property("opened").toBool());
        const QList<QQuickItem*> rows = findItems(m_view->contentItem(), "manifestRow");
        QCOMPARE(rows.size(), 5);
        QCOMPARE(textOf(rows[4], "rowTitle"), QString("Empty Trash Bin"));
        QCOMPARE(textOf(rows[4], "rowBadge"), QString("User Review"));
        QCOMPARE(textOf(m_view->contentItem(), "freeSpaceTitle"),
                 QString("Why might reported free space in Files differ after cleanup?"));
        QCOMPARE(textOf(m_view->contentItem(), "executeButton"),
                 QString("Execute Cleanup (1.57 GB)"));
        QVERIFY(findItem(m_view->contentItem(), "adminNote")->isVisible());

        // The rows expand to their exact items; the explanation to the Linux reasons.
        rows[0]->setProperty("expanded", true);
        QObject* notes = findItem(m_view->contentItem(), "manifestNotes");
        QVERIFY(notes);
        notes->setProperty("showFreeSpaceInfo", true);
        QTest::qWait(50);
        QCOMPARE(findItems(m_view->contentItem(), "freeSpaceReason").size(), 4);
        QCOMPARE(findItem(rows[0], "itemList")->property("count").toInt(), 2);
        if (!shots.isEmpty()) {
            QVERIFY(m_view->grabWindow().save(shots + "/smart-care-manifest.png"));
            // The notes at the end of the sheet: the safety net and the free-space reasons.
            auto* flickable = qvariant_cast<QQuickItem*>(
                findItem(m_view->contentItem(), "manifestScroll")->property("contentItem"));
            QVERIFY(flickable);
            flickable->setProperty("contentY", flickable->property("contentHeight").toReal() -
                                                   flickable->height());
            QTest::qWait(50);
            QVERIFY(m_view->grabWindow().save(shots + "/smart-care-manifest-notes.png"));
            flickable->setProperty("contentY", 0);
        }

        // A real click on the Trash row's switch, then every other row off by its signal.
        QQuickItem* trashSwitch = findItem(rows[4], "rowSwitch");
        QVERIFY(trashSwitch);
        QVERIFY(QMetaObject::invokeMethod(trashSwitch, "toggle"));
        QVERIFY(QMetaObject::invokeMethod(trashSwitch, "toggled"));
        QVERIFY(!m_engine->switches().isOn(CareCategory::trash));
        QCOMPARE(textOf(m_view->contentItem(), "executeButton"),
                 QString("Execute Cleanup (1.27 GB)"));
        for (int i = 0; i < 4; ++i) {
            QVERIFY(QMetaObject::invokeMethod(rows[i], "toggled", Q_ARG(bool, false)));
        }
        QCOMPARE(textOf(m_view->contentItem(), "executeButton"), QString("No Items Selected"));
        QVERIFY(!findItem(m_view->contentItem(), "executeButton")->isEnabled());
        QCOMPARE(textOf(m_view->contentItem(), "selectedTotalText"), QString("Zero KB"));

        // Closing and opening again starts with every row on.
        QVERIFY(
            QMetaObject::invokeMethod(findItem(m_view->contentItem(), "cancelButton"), "clicked"));
        QTRY_VERIFY(!sheet->property("visible").toBool());
        QVERIFY(QMetaObject::invokeMethod(sheet, "open"));
        QTRY_VERIFY(sheet->property("opened").toBool());
        QVERIFY(findItem(m_view->contentItem(), "executeButton")->isEnabled());
    }
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::SmartCarePageTest)
#include "smart_care_page_test.moc"
