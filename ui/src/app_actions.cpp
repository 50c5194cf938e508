#include "ui/src/app_actions.h"

#include "core/model/platform_terms.h"
#include "ui/src/app_config.h"

#include <QApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QPushButton>
#include <QSysInfo>
#include <QUrl>

namespace sondrel {

AppActions::AppActions(QObject* parent) : QObject(parent) {}

QString AppActions::supportEmail() {
    return QString::fromLatin1(config::kSupportEmail);
}

QString AppActions::guidesUrl() {
    return QString::fromLatin1(config::kGuidesUrl);
}

QString AppActions::websiteUrl() {
    return QString::fromLatin1(config::kWebsiteUrl);
}

QString AppActions::emailSupportMenuText() {
    return QStringLiteral("Email Support (%1)").arg(supportEmail());
}

QString AppActions::aboutText() {
    const QString platformLine =
        currentTextPlatform() == TextPlatform::macos
            ? QStringLiteral("Native Apple Silicon & Intel")
            : QStringLiteral("Native %1").arg(QSysInfo::buildCpuArchitecture());
    return QStringLiteral("Version %1 (%2)\n\n"
                          "Next-Generation Storage Scopix, 1-Click Smart Care, App Residue "
                          "Cleaner, Duplicate Hunter & Live Telemetry.\n\n"
                          "Support: %3\n\nWebsite: %4\n\n"
                          "100% Local & Privacy-First.")
        .arg(QCoreApplication::applicationVersion(), platformLine, supportEmail(), websiteUrl());
}

QString AppActions::helpText() {
    return QStringLiteral("Questions about a scan, a clean-up or a result you did not expect? "
                          "We are glad to help.\n\n"
                          "Direct Email: %1\n"
                          "Documentation & Guides: %2\n\n"
                          "We typically respond within 24 hours.")
        .arg(supportEmail(), guidesUrl());
}

void AppActions::showAboutPanel() {
    QMessageBox box(QMessageBox::Information, QStringLiteral("About Sondrel"),
                    QStringLiteral("Sondrel"));
    box.setInformativeText(aboutText());
    box.setIconPixmap(QApplication::windowIcon().pixmap(64, 64));
    box.addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    QPushButton* contact =
        box.addButton(QStringLiteral("Contact Support"), QMessageBox::ActionRole);
    box.exec();
    if (box.clickedButton() == contact) {
        openSupportEmail();
    }
}

void AppActions::showHelpPanel() {
    QMessageBox box(QMessageBox::Information, QStringLiteral("Sondrel Help & Support"),
                    QStringLiteral("Sondrel Help & Support"));
    box.setInformativeText(helpText());
    box.setIconPixmap(QApplication::windowIcon().pixmap(64, 64));
    QPushButton* email = box.addButton(QStringLiteral("Email Support"), QMessageBox::ActionRole);
    QPushButton* guides = box.addButton(QStringLiteral("Visit Guides"), QMessageBox::ActionRole);
    box.addButton(QStringLiteral("Close"), QMessageBox::RejectRole);
    box.exec();
    if (box.clickedButton() == email) {
        openSupportEmail();
    } else if (box.clickedButton() == guides) {
        openGuides();
    }
}

void AppActions::openSupportEmail() {
    QDesktopServices::openUrl(QUrl(QStringLiteral("mailto:") + supportEmail()));
}

void AppActions::openGuides() {
    QDesktopServices::openUrl(QUrl(guidesUrl()));
}

void AppActions::openSection(int section) {
    emit sectionRequested(section);
    bringAppToFront();
}

void AppActions::bringAppToFront() {
    if (!m_window) {
        return;
    }
    if (m_window->visibility() == QWindow::Minimized || !m_window->isVisible()) {
        m_window->showNormal();
    }
    m_window->raise();
    m_window->requestActivate();
}

void AppActions::quitApp() {
    QCoreApplication::quit();
}

} // namespace sondrel
