import QtQuick
import QtQuick.Controls

// The main menu: the application menu (About, Quit) and the help menu.
MenuBar {
    id: bar

    required property var appActions
    required property var theme

    background: Rectangle {
        implicitHeight: 28
        color: bar.theme.background
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: bar.theme.border
        }
    }

    Menu {
        title: "&Sondrel"
        MenuItem {
            text: "&About Sondrel"
            onTriggered: bar.appActions.showAboutPanel()
        }
        MenuSeparator {}
        MenuItem {
            text: "&Quit Sondrel"
            onTriggered: bar.appActions.quitApp()
        }
    }
    Menu {
        title: "&Help"
        // The menu is as wide as its longest item, so the support address shows in full.
        property TextMetrics emailMetrics: TextMetrics {
            text: bar.appActions.emailSupportMenuText
        }
        width: Math.max(implicitWidth, emailMetrics.width + 48)
        MenuItem {
            // "&&": a single '&' would mark the next letter as a mnemonic and vanish.
            text: "Sondrel Help && Support"
            onTriggered: bar.appActions.showHelpPanel()
        }
        MenuItem {
            text: bar.appActions.emailSupportMenuText
            onTriggered: bar.appActions.openSupportEmail()
        }
        MenuItem {
            text: "Online User &Guides"
            onTriggered: bar.appActions.openGuides()
        }
    }
}
