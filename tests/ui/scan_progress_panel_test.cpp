// The scan progress panel offscreen, over a scripted scanner: the "Stop" button shows only while
// a scan runs and a click on it cancels that scan.

#include "tests/ui/page_harness.h"
#include "tests/ui/warning_filter.h"

#include <QQuickItem>
#include <QRegularExpression>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace {

// The scanner properties the panel reads, set by the test; cancel() ends the "scan" as the
// real scanner does (idle at once, "Scan cancelled").
class ScriptedScanner : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isScanning MEMBER m_scanning NOTIFY changed)
    Q_PROPERTY(QString progressText MEMBER m_progressText NOTIFY changed)
    Q_PROPERTY(QString currentPath MEMBER m_currentPath NOTIFY changed)
public:
    Q_INVOKABLE void cancel() {
        ++m_cancels;
        m_scanning = false;
        m_progressText = QStringLiteral("Scan cancelled");
        emit changed();
    }
    void startScan() {
        m_scanning = true;
        m_progressText = QStringLiteral("Scanning... 1,204 items, 3.2 GB");
        m_currentPath = QStringLiteral("/usr/share/doc");
        emit changed();
    }

    bool m_scanning = false;
    QString m_progressText;
    QString m_currentPath;
    int m_cancels = 0;
signals:
    void changed();
};

class PanelTheme : public QObject {
    Q_OBJECT
    Q_PROPERTY(QColor background MEMBER m_background CONSTANT)
    Q_PROPERTY(QColor cardBackground MEMBER m_card CONSTANT)
    Q_PROPERTY(QColor border MEMBER m_border CONSTANT)
    Q_PROPERTY(QColor accent MEMBER m_accent CONSTANT)
    Q_PROPERTY(QColor secondaryAccent MEMBER m_accent CONSTANT)
    Q_PROPERTY(QColor textPrimary MEMBER m_text CONSTANT)
    Q_PROPERTY(QColor textSecondary MEMBER m_text2 CONSTANT)

    QColor m_background{0x0f, 0x11, 0x15};
    QColor m_card{0x1b, 0x1e, 0x25};
    QColor m_border{0x33, 0x37, 0x40};
    QColor m_accent{0x3d, 0x8b, 0xff};
    QColor m_text{Qt::white};
    QColor m_text2{0x9a, 0xa0, 0xab};
};

QQuickItem* findItem(QQuickItem* root, const QString& name) {
    if (root->objectName() == name) {
        return root;
    }
    const QList<QQuickItem*> children = root->childItems();
    for (QQuickItem* child : children) {
        if (QQuickItem* found = findItem(child, name)) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

class ScanProgressPanelTest : public QObject {
    Q_OBJECT

private slots:
    void stopCancelsTheRunningScan() {
        QTest::failOnWarning(sondrel::test::anyWarning());
        ScriptedScanner scanner;
        sondrel::test::PageView view;
        QCOMPARE(view.load("qrc:/Sondrel/qml/pages/ScanProgressPanel.qml",
                           {{"scanner", QVariant::fromValue<QObject*>(&scanner)}}, {700, 420}),
                 QString());

        QQuickItem* stop = sondrel::test::findItem(view.page(), "stopScanButton");
        QVERIFY(stop != nullptr);
        QVERIFY(!stop->isVisible());

        scanner.startScan();
        QTRY_VERIFY(stop->isVisible());
        const QString shots = qEnvironmentVariable("SONDREL_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            QVERIFY(view.view().grabWindow().save(shots + "/scan-progress-stop.png"));
        }
        const QPointF centre = stop->mapToScene({stop->width() / 2, stop->height() / 2});
        QTest::mouseClick(&view.view(), Qt::LeftButton, {}, centre.toPoint());
        QCOMPARE(scanner.m_cancels, 1);
        QTRY_VERIFY(!stop->isVisible());
    }
};

QTEST_MAIN(ScanProgressPanelTest)
#include "scan_progress_panel_test.moc"
