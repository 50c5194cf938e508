import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQml
import "components"
import "pages"
import "monitor"
import "search"
import Sondrel
import "apps"
import "duplicates"
import "care"
import "junk"

// The main window: the sidebar of eight sections beside the selected section's page. Every
// engine comes from `appRoot`; no page creates one.
ApplicationWindow {
    id: window

    required property var appRoot
    required property var appActions
    readonly property var theme: appRoot.themeManager
    // The section table: rows of section, title, symbol and page, in sidebar order.
    readonly property var sections: appRoot.sections
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

        // One page per row of the section table; each page takes its name from the table, and
        // the stack shows the page the table names for the selected section.
        StackLayout {
            id: pages
            objectName: "pages"
            currentIndex: {
                const page = window.sections[window.appRoot.selectedSection].page
                for (let i = 0; i < children.length; ++i) {
                    if (children[i].objectName === page)
                        return i
                }
                return -1
            }
            Layout.fillWidth: true
            Layout.fillHeight: true

            SmartCareDashboard {
                objectName: window.sections[Section.SmartCare].page
                engine: window.appRoot.smartCleanEngine
                theme: window.theme
            }
            StoragePage {
                objectName: window.sections[Section.Storage].page
                appRoot: window.appRoot
                theme: window.theme
            }
            DuplicateHunterPage {
                objectName: window.sections[Section.Duplicates].page
                scanner: window.appRoot.duplicateScanner
                theme: window.theme
            }
            AppUninstallerPage {
                objectName: window.sections[Section.Uninstaller].page
                scanner: window.appRoot.appScanner
                theme: window.theme
            }
            JunkCleanerView {
                objectName: window.sections[Section.Junk].page
                scanner: window.appRoot.junkScanner
                theme: window.theme
            }
            SmartSearchView {
                objectName: window.sections[Section.Search].page
                search: window.appRoot.largeFileSearch
                theme: window.theme
            }
            SystemMonitorView {
                objectName: window.sections[Section.Monitor].page
                systemMonitor: window.appRoot.systemMonitor
                theme: window.theme
            }
            ThemeSelectorView {
                objectName: window.sections[Section.Settings].page
                theme: window.theme
                appActions: window.appActions
            }
        }
    }

    // Ctrl+1 .. Ctrl+8 switch sections, in the table's order.
    Instantiator {
        model: window.sections
        delegate: Shortcut {
            required property int index
            required property var modelData
            sequence: "Ctrl+" + (index + 1)
            context: Qt.ApplicationShortcut
            onActivated: window.appRoot.selectedSection = modelData.section
        }
    }

    // Ctrl+W closes the window as its title bar's close button does: into the tray when one is
    // shown, otherwise quitting.
    Shortcut {
        sequences: [StandardKey.Close]
        context: Qt.ApplicationShortcut
        onActivated: window.close()
    }

    Shortcut {
        sequence: StandardKey.Quit
        context: Qt.ApplicationShortcut
        onActivated: window.appActions.quitApp()
    }

    Component.onCompleted: window.appRoot.windowAppeared()
}
