// Entry point of the desktop application `sondrel`. Usage: sondrel [FOLDER]
// With FOLDER (a path or a file:// URL, as file managers and the desktop entry pass it) the
// window opens on the storage section scanning that folder instead of the home folder.

#include "app/app_root.h"
#include "ui/src/app_actions.h"
#include "ui/src/shell_setup.h"
#include "ui/src/tray_icon.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QUrl>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(SondrelPlugin)

namespace {

// The folder named on the command line as an absolute path, or "" when none or not a folder.
QString folderArgument(const QStringList& positional) {
    if (positional.isEmpty()) {
        return {};
    }
    const QUrl url =
        QUrl::fromUserInput(positional.constFirst(), QDir::currentPath(), QUrl::AssumeLocalFile);
    if (!url.isLocalFile()) {
        return {};
    }
    const QFileInfo info(url.toLocalFile());
    return info.isDir() ? info.absoluteFilePath() : QString();
}

} // namespace

int main(int argc, char* argv[]) {
    // QApplication (not QGuiApplication) because the tray icon and the panels need widgets.
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Sondrel"));
    QApplication::setApplicationName(QStringLiteral("Sondrel"));
    QApplication::setApplicationVersion(QStringLiteral(SONDREL_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("sondrel"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/sondrel/app/sondrel.svg")));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("See and reclaim disk space, and watch the machine's load."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("folder"),
                                 QStringLiteral("Folder to scan instead of the home folder."));
    parser.process(app);

    sondrel::AppRoot root;
    const QString folder = folderArgument(parser.positionalArguments());
    if (!folder.isEmpty()) {
        root.openFolderAtStart(folder);
    } else if (!parser.positionalArguments().isEmpty()) {
        qWarning("sondrel: not a folder: %s", qPrintable(parser.positionalArguments().first()));
    }

    sondrel::AppActions actions;
    QQmlApplicationEngine engine;
    if (sondrel::loadMainWindow(engine, &root, &actions) == nullptr) {
        return 1;
    }
    sondrel::TrayIcon tray(&actions);
    // With a tray icon shown, closing the window keeps Sondrel running in the tray (its menu
    // brings the window back or quits); without a tray, closing the window quits.
    QApplication::setQuitOnLastWindowClosed(!tray.show());
    return QApplication::exec();
}
