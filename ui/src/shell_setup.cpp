#include "ui/src/shell_setup.h"

#include "app/app_root.h"
#include "ui/src/app_actions.h"
#include "ui/src/symbol_icons.h"
#include "ui/src/theme_palette.h"

#include <QQuickStyle>
#include <QVariantMap>

namespace sondrel {

void installShellImageProviders(QQmlEngine& engine) {
    if (engine.imageProvider(QStringLiteral("symbol")) == nullptr) {
        engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);
    }
}

QQuickWindow* loadMainWindow(QQmlApplicationEngine& engine, AppRoot* root, AppActions* actions) {
    installShellImageProviders(engine);
    // Every control is painted from the theme; the Basic style takes the palette as given.
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    // What Qt draws itself (folder panels, About and Help, menus) follows the theme too.
    followThemePalette(root->themeManager());
    engine.setInitialProperties({
        {QStringLiteral("appRoot"), QVariant::fromValue(static_cast<QObject*>(root))},
        {QStringLiteral("appActions"), QVariant::fromValue(static_cast<QObject*>(actions))},
    });
    engine.load(QUrl(QStringLiteral("qrc:/Sondrel/qml/Main.qml")));
    if (engine.rootObjects().isEmpty()) {
        return nullptr;
    }
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    if (window != nullptr) {
        actions->setMainWindow(window);
    }
    QObject::connect(actions, &AppActions::sectionRequested, root,
                     [root](int section) { root->setSelectedSection(section); });
    return window;
}

} // namespace sondrel
