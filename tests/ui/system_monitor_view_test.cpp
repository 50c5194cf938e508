// The telemetry page rendered offscreen: its texts for scripted figures, its updates, and a
// screenshot of the page on the live machine (saved where SONDREL_SCREENSHOT points, if set).

#include "app/system_monitor.h"
#include "tests/ui/page_harness.h"
#include "tests/ui/warning_filter.h"

#include <QColor>
#include <QImage>
#include <QQuickItem>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSysInfo>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <memory>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

using namespace sondrel::test;

// Figures that give round texts: 25% load (20 user, 5 system), 7 of 16 GB memory, a 500 GB disk
// with 200 GB available and 25 GB reserved for root, so 275 GB used, df's Use% 58%.
class FixedSampler final : public SystemSampler {
public:
    std::vector<ProcessorTicks> processorTicks() override {
        m_ticks.user += m_userStep;
        m_ticks.system += 5;
        m_ticks.idle += 95 - m_userStep;
        return {m_ticks};
    }
    MemoryStats memory() override {
        return {16'000'000'000, 4'000'000'000, 2'000'000'000, 1'000'000'000, 5'000'000'000};
    }
    DiskStats disk() override {
        return {500'000'000'000, 200'000'000'000, 0, 200'000'000'000, 25'000'000'000};
    }
    HostFacts hostFacts() override { return {"tester", "Testix 1, kernel 6.1", 7200.0}; }

    std::uint64_t m_userStep = 20;

private:
    ProcessorTicks m_ticks{1000, 1000, 1000, 0};
};

class SystemMonitorViewTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<PageView> m_view;

    // Shows the page for `monitor` in a window of `size`.
    void showPage(SystemMonitor* monitor, QSize size = QSize(1100, 1200)) {
        m_view = std::make_unique<PageView>();
        QCOMPARE(m_view->load("qrc:/Sondrel/qml/monitor/SystemMonitorView.qml",
                              {{"systemMonitor", QVariant::fromValue<QObject*>(monitor)}}, size),
                 QString());
    }

    QStringList texts() const { return shownTexts(m_view->page()); }

    QString cardValue(const char* cardName) const {
        auto* card = m_view->page()->findChild<QQuickItem*>(cardName);
        auto* value = card ? card->findChild<QQuickItem*>("valueText") : nullptr;
        return value ? value->property("text").toString() : QString();
    }

private slots:
    void cleanup() { m_view.reset(); }

    void showsTheMonitorsFigures() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        SystemMonitor monitor(std::make_unique<FixedSampler>());
        monitor.refresh();
        monitor.refresh();
        showPage(&monitor);
        if (QTest::currentTestFailed()) {
            return;
        }

        const QStringList shown = texts();
        const QStringList expected = {
            "Live Telemetry",
            "Live Updating",
            "Processor Load",
            "25%",
            "User: 20% | System: 5%",
            "Memory Pressure",
            "44%",
            "7 GB of 16 GB",
            "58%",
            "275 GB of 500 GB (200 GB available)",
            "CPU Activity History",
            "Last 30 Seconds",
            "Memory Allocation",
            "Active",
            "4 GB",
            "Wired",
            "2 GB",
            "Compressed",
            "1 GB",
            "Free",
            "5 GB",
            "Storage",
            "Total: 500 GB",
            "Used Space",
            "275 GB",
            "Purgeable",
            "Zero KB",
            "Physical Free",
            "200 GB",
            "Reserved for the system",
            "25 GB",
            "System Uptime",
            "tester",
            "Testix 1, kernel 6.1",
            "2.0 hours",
        };
        for (const QString& text : expected) {
            QVERIFY2(shown.contains(text), qPrintable("missing text: " + text));
        }
        const QVariantMap labels = SystemMonitor::labels();
        for (const char* key : {"headerSubtitle", "storageCardTitle", "availableRowLabel",
                                "hostNameLabel", "osVersionLabel"}) {
            QVERIFY2(shown.contains(labels[key].toString()), key);
        }

        auto* chart = m_view->page()->findChild<QQuickItem*>("cpuHistoryChart");
        QVERIFY(chart);
        QCOMPARE(chart->property("values").value<QList<double>>(), monitor.cpuHistory());
    }

    void followsNewSamples() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        auto sampler = std::make_unique<FixedSampler>();
        FixedSampler* fixed = sampler.get();
        SystemMonitor monitor(std::move(sampler));
        showPage(&monitor);
        if (QTest::currentTestFailed()) {
            return;
        }
        QCOMPARE(cardValue("processorCard"), QString("0%"));
        QCOMPARE(cardValue("memoryCard"), QString("0%"));

        monitor.refresh();
        monitor.refresh();
        QCOMPARE(cardValue("processorCard"), QString("25%"));
        fixed->m_userStep = 70;
        monitor.refresh();
        QCOMPARE(cardValue("processorCard"), QString("75%"));
        QCOMPARE(cardValue("storageCard"), QString("58%"));
        auto* chart = m_view->page()->findChild<QQuickItem*>("cpuHistoryChart");
        QCOMPARE(chart->property("values").value<QList<double>>().last(), 75.0);
    }

    void rendersLiveFigures() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        SystemMonitor monitor;
        monitor.startMonitoring();
        for (int i = 0; i < 12; ++i) {
            QTest::qWait(150);
            monitor.refresh();
        }
        showPage(&monitor, QSize(1100, 840));
        if (QTest::currentTestFailed()) {
            return;
        }
        QVERIFY(texts().contains(QSysInfo::machineHostName()));

        const QImage image = m_view->view().grabWindow();
        QVERIFY(!image.isNull());
        QCOMPARE(image.size(), QSize(1100, 840) * m_view->view().devicePixelRatio());
        // The accent colour of the bars and the chart is on the page.
        bool hasAccent = false;
        for (int y = 0; y < image.height() && !hasAccent; y += 2) {
            for (int x = 0; x < image.width() && !hasAccent; x += 2) {
                const QColor c = image.pixelColor(x, y);
                hasAccent = c.red() > 200 && c.green() < 90 && c.blue() < 120;
            }
        }
        QVERIFY(hasAccent);
        const QString path = qEnvironmentVariable("SONDREL_SCREENSHOT");
        if (!path.isEmpty()) {
            QVERIFY(image.save(path));
        }
        monitor.stopMonitoring();
    }
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::SystemMonitorViewTest)
#include "system_monitor_view_test.moc"
