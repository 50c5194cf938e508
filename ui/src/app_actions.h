#pragma once
// AppActions: the application-level actions that the main menu, the tray menu and the pages
// share: About and Help panels, opening the support mail, the guides and the website, bringing
// the window to the front and quitting. It also publishes the configured addresses to QML.
//
// Threading: GUI thread only. The panels are modal message boxes (QApplication required).

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWindow>

namespace sondrel {

class AppActions : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString supportEmail READ supportEmail CONSTANT)
    Q_PROPERTY(QString guidesUrl READ guidesUrl CONSTANT)
    Q_PROPERTY(QString websiteUrl READ websiteUrl CONSTANT)
    /// "Email Support (" + address + ")", the help menu's item text.
    Q_PROPERTY(QString emailSupportMenuText READ emailSupportMenuText CONSTANT)

public:
    explicit AppActions(QObject* parent = nullptr);

    static QString supportEmail();
    static QString guidesUrl();
    static QString websiteUrl();
    static QString emailSupportMenuText();

    /// The About panel's informative text (five paragraphs).
    static QString aboutText();
    /// The Help panel's informative text.
    static QString helpText();

    /// The window that bringAppToFront raises (not owned; may go away).
    void setMainWindow(QWindow* window) { m_window = window; }

    /// Shows the About panel ("OK", "Contact Support").
    Q_INVOKABLE void showAboutPanel();
    /// Shows the Help panel ("Email Support", "Visit Guides", "Close").
    Q_INVOKABLE void showHelpPanel();
    /// Opens a mail to the support address in the desktop's mail program.
    Q_INVOKABLE void openSupportEmail();
    /// Opens the online guides in the browser.
    Q_INVOKABLE void openGuides();
    /// Shows, raises and activates the main window (no window: nothing).
    Q_INVOKABLE void bringAppToFront();
    /// Asks for the sidebar section `section` (a NavigationSection::Id) through
    /// sectionRequested, then brings the window to the front.
    Q_INVOKABLE void openSection(int section);
    /// Ends the application.
    Q_INVOKABLE void quitApp();

signals:
    /// A menu asked for a section; the shell makes it the selected one.
    void sectionRequested(int section);

private:
    QPointer<QWindow> m_window;
};

} // namespace sondrel
