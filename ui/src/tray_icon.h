#pragma once
// TrayIcon: Sondrel's icon in the desktop's system tray with its menu ("Sondrel Storage
// Studio", "Open Storage Scopix", "About Sondrel", "Help & Support (...)", "Quit Sondrel").
// Created only when the desktop offers a tray; the application works fully without one.
//
// Threading: GUI thread only.

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <memory>

namespace sondrel {

class AppActions;

class TrayIcon : public QObject {
    Q_OBJECT

public:
    /// Builds the icon and its menu over `actions` (not owned; must outlive this object).
    explicit TrayIcon(AppActions* actions, QObject* parent = nullptr);
    ~TrayIcon() override;
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    /// Shows the icon. Returns false (and shows nothing) when the desktop has no tray.
    bool show();

    /// The tray menu (owned by this object), for inspection.
    QMenu* menu() const { return m_menu.get(); }

private:
    std::unique_ptr<QMenu> m_menu;
    QSystemTrayIcon m_icon;
};

} // namespace sondrel
