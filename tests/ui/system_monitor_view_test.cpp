// The telemetry page rendered offscreen: its texts for scripted figures, its updates, and a
// screenshot of the page on the live machine (saved where SONDREL_SCREENSHOT points, if set).

#include "app/system_monitor.h"
#include "tests/ui/warning_filter.h"
#include "ui/src/shell_setup.h"

#include <QColor>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSysInfo>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <memory>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace sondrel {
namespace {

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

// Every text shown by a Text item under `item`, in tree order.
void collectTexts(QQuickItem* item, QStringList& texts) {
    if (item->inherits("QQuickText") && item->isVisible()) {
        texts.append(item->property("text").toString());
    }
    for (QQuickItem* child : item->childItems()) {
        collectTexts(child, texts);
    }
}

class SystemMonitorViewTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QQuickView> m_view;
    std::unique_ptr<QObject> m_theme;

    // Shows the page for `monitor` in a window of `size`.
    void showPage(SystemMonitor* monitor, QSize size = QSize(1100, 1200)) {
        m_view = std::make_unique<QQuickView>();
        // The same engine set-up as the window: no extra import paths, the symbol image provider.
        installShellImageProviders(*m_view->engine());
        QQmlComponent themeComponent(m_view->engine());
        themeComponent.setData(kThemeQml, QUrl());
        m_theme.reset(themeComponent.create());
        QVERIFY2(m_theme, qPrintable(themeComponent.errorString()));
        m_view->setInitialProperties({{"systemMonitor", QVariant::fromValue<QObject*>(monitor)},
                                      {"theme", QVariant::fromValue<QObject*>(m_theme.get())}});
        m_view->setResizeMode(QQuickView::SizeRootObjectToView);
        m_view->resize(size);
        m_view->setSource(QUrl(QStringLiteral("qrc:/Sondrel/qml/monitor/SystemMonitorView.qml")));
        QVERIFY2(m_view->status() == QQuickView::Ready,
                 qPrintable(m_view->errors().isEmpty() ? QString()
                                                       : m_view->errors().first().toString()));
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    }

    QStringList texts() const {
        QStringList result;
        collectTexts(m_view->rootObject(), result);
        return result;
    }

    QString cardValue(const char* cardName) const {
        auto* card = m_view->rootObject()->findChild<QQuickItem*>(cardName);
        auto* value = card ? card->findChild<QQuickItem*>("valueText") : nullptr;
        return value ? value->property("text").toString() : QString();
    }

private slots:
    void cleanup() {
        m_view.reset();
        m_theme.reset();
    }

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

        auto* chart = m_view->rootObject()->findChild<QQuickItem*>("cpuHistoryChart");
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
        auto* chart = m_view->rootObject()->findChild<QQuickItem*>("cpuHistoryChart");
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

        const QImage image = m_view->grabWindow();
        QVERIFY(!image.isNull());
        QCOMPARE(image.size(), QSize(1100, 840) * m_view->devicePixelRatio());
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
