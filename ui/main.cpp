// Entry point of the desktop application `sondrel`.

#include <QApplication>
#include <QQmlApplicationEngine>

int main(int argc, char* argv[]) {
    // QApplication (not QGuiApplication) because the tray icon needs the widgets module.
    QApplication app(argc, argv);
    QApplication::setOrganizationName("Sondrel");
    QApplication::setApplicationName("Sondrel");
    QApplication::setApplicationVersion(SONDREL_VERSION);

    QQmlApplicationEngine engine;
    QObject::connect(
        &engine, &QQmlApplicationEngine::objectCreationFailed, &app,
        [] { QCoreApplication::exit(1); }, Qt::QueuedConnection);
    engine.load(QUrl(QStringLiteral("qrc:/Sondrel/qml/Main.qml")));
    return QApplication::exec();
}
