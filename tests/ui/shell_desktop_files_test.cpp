// Desktop integration files and texts: the desktop entry and the AppStream metadata pass their
// validators, the entry launches `sondrel` with folders and names the installed icon, and the
// About and Help texts carry the configured addresses.

#include "core/util/subprocess.h"
#include "ui/src/app_actions.h"
#include "ui/src/tray_icon.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTest>
#include <chrono>

namespace sondrel {
namespace {

QString assetsDir() {
    return QStringLiteral(SONDREL_SOURCE_DIR "/assets");
}

// Runs `program` with `arguments`; skips when the tool is not installed.
void expectValid(const QString& program, const QStringList& arguments) {
    if (QStandardPaths::findExecutable(program).isEmpty()) {
        QSKIP(qPrintable(program + QStringLiteral(" is not installed")));
    }
    SubprocessRequest request;
    request.argv.push_back(program.toStdString());
    for (const QString& argument : arguments) {
        request.argv.push_back(argument.toStdString());
    }
    request.timeout = std::chrono::seconds(60);
    const SubprocessResult result = runSubprocess(request);
    QVERIFY2(result.succeeded(),
             qPrintable(QString::fromStdString(result.startError + result.out + result.err)));
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
            // "&&" in an action text is the escape of a literal "&": compare what is shown.
            items << (action->isSeparator()
                          ? QStringLiteral("-")
                          : action->text().replace(QStringLiteral("&&"), QStringLiteral("&")));
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
