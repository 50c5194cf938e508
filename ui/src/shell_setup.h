#pragma once
// Loading the main window: shared by the `sondrel` executable and the UI tests so that both
// run the same QML with the same engine set-up.

#include <QQmlApplicationEngine>
#include <QQuickWindow>

namespace sondrel {

class AppRoot;
class AppActions;

/// Registers the "symbol" image provider on `engine`.
void installShellImageProviders(QQmlEngine& engine);

/// Loads qrc:/Sondrel/qml/Main.qml into `engine` with `root` and `actions` as its required
/// properties (neither owned; both must outlive the window). Returns the window, or null when
/// loading failed (the QML errors have been printed).
QQuickWindow* loadMainWindow(QQmlApplicationEngine& engine, AppRoot* root, AppActions* actions);

} // namespace sondrel
