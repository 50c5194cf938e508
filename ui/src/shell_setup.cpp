#include "ui/src/shell_setup.h"

#include "app/app_root.h"
#include "app/navigation_section.h"
#include "ui/src/app_actions.h"
#include "ui/src/symbol_icons.h"

#include <QQmlEngine>
#include <QQuickStyle>
#include <QVariantMap>

namespace sondrel {

void installShellImageProviders(QQmlEngine& engine) {
    if (engine.imageProvider(QStringLiteral("symbol")) == nullptr) {
        engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);
    }
}

void registerShellTypes() {
    static const bool registered = [] {
        qmlRegisterUncreatableMetaObject(NavigationSection::staticMetaObject, "Sondrel", 1, 0,
                                         "Section",
                                         QStringLiteral("Section only names the sections"));
        return true;
    }();
    Q_UNUSED(registered);
}

QQuickWindow* loadMainWindow(QQmlApplicationEngine& engine, AppRoot* root, AppActions* actions) {
    registerShellTypes();
    installShellImageProviders(engine);
    // Every control is painted from the theme; the Basic style takes the palette as given.
    QQuickStyle::setStyle(QStringLiteral("Basic"));
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
    return window;
}

} // namespace sondrel
