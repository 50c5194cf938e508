#include "ui/src/tray_icon.h"

#include "app/navigation_section.h"
#include "ui/src/app_actions.h"
#include "ui/src/symbol_icons.h"

#include <QAction>
#include <QIcon>
#include <QPixmap>

namespace sondrel {

TrayIcon::TrayIcon(AppActions* actions, QObject* parent)
    : QObject(parent), m_menu(std::make_unique<QMenu>()) {
    QPixmap sun = QPixmap::fromImage(SymbolIcons::instance().render(
        QStringLiteral("sun.min.fill"), QSize(64, 64), QColor(0xff, 0x73, 0x33)));
    m_icon.setIcon(QIcon(sun));
    m_icon.setToolTip(QStringLiteral("Sondrel"));

    m_menu->addAction(QStringLiteral("Sondrel Storage Studio"), actions,
                      &AppActions::bringAppToFront);
    m_menu->addSeparator();
    // "Open Storage Scopix": the storage section's title from the section table.
    const NavigationSection::Row& storage = NavigationSection::table()[NavigationSection::Storage];
    QAction* open =
        m_menu->addAction(QStringLiteral("Open %1").arg(QString::fromUtf8(storage.title)), actions,
                          [actions] { actions->openSection(NavigationSection::Storage); });
    open->setShortcut(QKeySequence(QStringLiteral("Ctrl+O")));
    m_menu->addAction(QStringLiteral("About Sondrel"), actions, &AppActions::showAboutPanel);
    // "&&": a single '&' would mark the next letter as the mnemonic and vanish.
    m_menu->addAction(QStringLiteral("Help && Support (%1)").arg(AppActions::supportEmail()),
                      actions, &AppActions::showHelpPanel);
    m_menu->addSeparator();
    QAction* quit =
        m_menu->addAction(QStringLiteral("Quit Sondrel"), actions, &AppActions::quitApp);
    quit->setShortcut(QKeySequence(QStringLiteral("Ctrl+Q")));
    m_icon.setContextMenu(m_menu.get());

    // A plain click on the icon brings the window forward, as the first menu item does.
    connect(&m_icon, &QSystemTrayIcon::activated, actions,
            [actions](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger) {
                    actions->bringAppToFront();
                }
            });
}

TrayIcon::~TrayIcon() {
    m_icon.hide();
}

bool TrayIcon::show() {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        return false;
    }
    m_icon.show();
    return true;
}

} // namespace sondrel
