#pragma once
// Loading the main window: shared by the `sondrel` executable and the UI tests so that both
// run the same QML with the same engine set-up.

#include <QQmlApplicationEngine>
#include <QQuickWindow>

namespace sondrel {

class AppRoot;
class AppActions;

/// Registers the shell's C++ names for QML in the Sondrel module: `Section`, whose enumerators
/// name the window's sections (Section.Storage). Once per process; later calls do nothing.
void registerShellTypes();

/// Registers the "symbol" image provider on `engine`.
void installShellImageProviders(QQmlEngine& engine);

/// Registers the shell types, then loads qrc:/Sondrel/qml/Main.qml into `engine` with `root` and
/// `actions` as its required properties (neither owned; both must outlive the window). Returns the
/// window, or null when loading failed (the QML errors have been printed).
QQuickWindow* loadMainWindow(QQmlApplicationEngine& engine, AppRoot* root, AppActions* actions);

} // namespace sondrel
