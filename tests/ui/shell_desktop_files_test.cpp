// Desktop integration files and texts: the desktop entry and the AppStream metadata pass their
// validators, the entry launches `sondrel` with folders and names the installed icon, and the
// About and Help texts carry the configured addresses.

#include "ui/src/app_actions.h"
#include "ui/src/tray_icon.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QTest>

namespace sondrel {
namespace {

QString assetsDir() {
    return QFileInfo(QStringLiteral(__FILE__))
        .dir()
        .absoluteFilePath(QStringLiteral("../../assets"));
}

// Runs `program` with `arguments`; skips when the tool is not installed.
void expectValid(const QString& program, const QStringList& arguments) {
    if (QStandardPaths::findExecutable(program).isEmpty()) {
        QSKIP(qPrintable(program + QStringLiteral(" is not installed")));
    }
    QProcess process;
    process.start(program, arguments);
    QVERIFY(process.waitForFinished(60000));
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             qPrintable(process.readAllStandardOutput() + process.readAllStandardError()));
}

} // namespace

class ShellDesktopFilesTest : public QObject {
    Q_OBJECT

private slots:
    void desktopEntryIsValid() {
        const QString entry = assetsDir() + QStringLiteral("/desktop/sondrel.desktop");
        QVERIFY(QFileInfo::exists(entry));
        expectValid(QStringLiteral("desktop-file-validate"), {entry});
    }

    void desktopEntryLaunchesWithFolders() {
        QSettings entry(assetsDir() + QStringLiteral("/desktop/sondrel.desktop"),
                        QSettings::IniFormat);
        entry.beginGroup(QStringLiteral("Desktop Entry"));
        QCOMPARE(entry.value(QStringLiteral("Exec")).toString(), QStringLiteral("sondrel %F"));
        QCOMPARE(entry.value(QStringLiteral("Icon")).toString(), QStringLiteral("sondrel"));
        QVERIFY(QFileInfo::exists(assetsDir() + QStringLiteral("/app/sondrel.svg")));
        for (int size : {16, 32, 48, 64, 128, 256}) {
            QVERIFY(
                QFileInfo::exists(assetsDir() + QStringLiteral("/app/sondrel-%1.png").arg(size)));
        }
    }

    void metainfoIsValid() {
        expectValid(QStringLiteral("appstreamcli"),
                    {QStringLiteral("validate"), QStringLiteral("--no-net"),
                     assetsDir() + QStringLiteral("/desktop/sondrel.metainfo.xml")});
    }

    void panelsCarryConfiguredAddresses() {
        const QString about = AppActions::aboutText();
        QVERIFY(about.contains(QStringLiteral("Support: ") + AppActions::supportEmail()));
        QVERIFY(about.contains(QStringLiteral("Website: ") + AppActions::websiteUrl()));
        QVERIFY(about.endsWith(QStringLiteral("100% Local & Privacy-First.")));
        QCOMPARE(about.split(QStringLiteral("\n\n")).size(), 5);
        const QString help = AppActions::helpText();
        QVERIFY(help.contains(QStringLiteral("Direct Email: ") + AppActions::supportEmail()));
        QVERIFY(
            help.contains(QStringLiteral("Documentation & Guides: ") + AppActions::guidesUrl()));
        QVERIFY(help.endsWith(QStringLiteral("We typically respond within 24 hours.")));
        QCOMPARE(AppActions::emailSupportMenuText(),
                 QStringLiteral("Email Support (%1)").arg(AppActions::supportEmail()));
    }

    void trayMenuListsItsItemsInOrder() {
        AppActions actions;
        TrayIcon tray(&actions);
        QStringList items;
        for (const QAction* action : tray.menu()->actions()) {
            // As shown: a single '&' marks a mnemonic and is not drawn, "&&" draws one '&'.
            QString shown = action->text();
            shown.replace(QRegularExpression(QStringLiteral("&(.)")), QStringLiteral("\\1"));
            items << (action->isSeparator() ? QStringLiteral("-") : shown);
        }
        QCOMPARE(items,
                 (QStringList{"Sondrel Storage Studio", "-", "Open Storage Scopix", "About Sondrel",
                              "Help & Support (" + AppActions::supportEmail() + ")", "-",
                              "Quit Sondrel"}));
    }
};

} // namespace sondrel

QTEST_MAIN(sondrel::ShellDesktopFilesTest)
#include "shell_desktop_files_test.moc"
