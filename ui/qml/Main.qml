import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQml
import "components"
import "pages"
import "monitor"
import "search"

// The main window: the sidebar of eight sections beside the selected section's page. Every
// engine comes from `appRoot`; no page creates one.
ApplicationWindow {
    id: window

    required property var appRoot
    required property var appActions
    readonly property var theme: appRoot.themeManager
    // An opaque mix of the card fill over the background, for popups and menus.
    readonly property color popupColor: Qt.tint(theme.background, theme.cardBackground)

    width: 1240
    height: 800
    minimumWidth: 1040
    minimumHeight: 680
    visible: true
    title: "Sondrel"
    color: theme.background

    palette.window: popupColor
    palette.windowText: theme.textPrimary
    palette.base: popupColor
    palette.text: theme.textPrimary
    palette.button: popupColor
    palette.buttonText: theme.textPrimary
    palette.highlight: theme.accent
    palette.highlightedText: "white"
    palette.light: Qt.lighter(popupColor, 1.4)
    palette.midlight: Qt.lighter(popupColor, 1.2)
    palette.mid: theme.border
    palette.dark: Qt.darker(popupColor, 1.4)
    palette.shadow: "black"
    palette.placeholderText: theme.textSecondary

    menuBar: AppMenuBar {
        appActions: window.appActions
        theme: window.theme
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Sidebar {
            appRoot: window.appRoot
            theme: window.theme
            Layout.fillHeight: true
        }

        StackLayout {
            id: pages
            objectName: "pages"
            currentIndex: window.appRoot.selectedSection
            Layout.fillWidth: true
            Layout.fillHeight: true

            PlaceholderPage {
                objectName: "smartCarePage"
                theme: window.theme
                title: "Smart Care"
                symbol: "bolt.shield.fill"
            }
            StoragePage {
                objectName: "storagePage"
                appRoot: window.appRoot
                theme: window.theme
            }
            PlaceholderPage {
                objectName: "duplicatesPage"
                theme: window.theme
                title: "Duplicate Hunter"
                symbol: "doc.on.doc.fill"
            }
            PlaceholderPage {
                objectName: "uninstallerPage"
                theme: window.theme
                title: "App Uninstaller"
                symbol: "trash.fill"
            }
            PlaceholderPage {
                objectName: "junkPage"
                theme: window.theme
                title: "Junk & Dev Cache"
                symbol: "sparkles"
            }
            SmartSearchView {
                objectName: "searchPage"
                search: window.appRoot.largeFileSearch
                theme: window.theme
            }
            SystemMonitorView {
                objectName: "monitorPage"
                systemMonitor: window.appRoot.systemMonitor
                theme: window.theme
            }
            ThemeSelectorView {
                objectName: "settingsPage"
                theme: window.theme
                appActions: window.appActions
            }
        }
    }

    // Ctrl+1 .. Ctrl+8 switch sections.
    Instantiator {
        model: 8
        delegate: Shortcut {
            required property int index
            sequence: "Ctrl+" + (index + 1)
            context: Qt.ApplicationShortcut
            onActivated: window.appRoot.selectedSection = index
        }
    }

    Shortcut {
        sequence: StandardKey.Quit
        context: Qt.ApplicationShortcut
        onActivated: window.appActions.quitApp()
    }

    Component.onCompleted: window.appRoot.windowAppeared()
}
