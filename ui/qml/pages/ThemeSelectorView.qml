import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// "Themes & Settings": the four theme cards (a click applies and stores the theme), the help and
// support section and the local-only note.
Rectangle {
    id: page

    required property var theme
    required property var appActions

    color: theme.background

    ScrollView {
        id: scroll
        anchors.fill: parent
        contentWidth: availableWidth
        clip: true

        ColumnLayout {
            width: scroll.availableWidth - 56
            x: 28
            spacing: 22

            Item { Layout.preferredHeight: 6 }

            SectionHeader {
                theme: page.theme
                title: "Appearance & Themes"
                subtitle: "Customize your Sondrel aesthetic with crafted developer palettes"
                symbol: "paintpalette.fill"
                Layout.fillWidth: true
            }

            GridLayout {
                columns: 2
                columnSpacing: 16
                rowSpacing: 16
                Layout.fillWidth: true

                Repeater {
                    model: page.theme.themes()
                    delegate: ThemeCard {
                        required property var modelData
                        theme: page.theme
                        entry: modelData
                        isCurrent: page.theme.currentDisplayName === modelData.name
                        Layout.fillWidth: true
                        Layout.preferredWidth: 1
                        onPicked: page.theme.currentThemeName = modelData.name
                    }
                }
            }

            Card {
                theme: page.theme
                Layout.fillWidth: true
                implicitHeight: help.implicitHeight + 40

                ColumnLayout {
                    id: help
                    anchors.fill: parent
                    anchors.margins: 20
                    spacing: 14

                    RowLayout {
                        spacing: 9
                        Icon {
                            name: "questionmark.circle.fill"
                            color: page.theme.accent
                            size: 18
                        }
                        Text {
                            text: "Help & Customer Support"
                            color: page.theme.textPrimary
                            font.pixelSize: 16
                            font.bold: true
                        }
                    }
                    RowLayout {
                        spacing: 12
                        ThemedButton {
                            theme: page.theme
                            text: "Email Support"
                            symbol: "questionmark.circle.fill"
                            prominent: true
                            onClicked: page.appActions.openSupportEmail()
                        }
                        Text {
                            text: page.appActions.supportEmail
                            color: page.theme.textSecondary
                            font.pixelSize: 13
                        }
                    }
                    RowLayout {
                        spacing: 12
                        ThemedButton {
                            theme: page.theme
                            text: "Help Guides"
                            symbol: "arrow.up.right.square"
                            onClicked: page.appActions.openGuides()
                        }
                        Text {
                            text: page.appActions.guidesUrl
                            color: page.theme.textSecondary
                            font.pixelSize: 13
                        }
                    }
                }
            }

            RowLayout {
                spacing: 8
                Layout.fillWidth: true
                Icon {
                    name: "info.circle.fill"
                    color: page.theme.secondaryAccent
                    size: 15
                }
                Text {
                    text: "Sondrel runs 100% locally on your machine with no network telemetry or account needed."
                    color: page.theme.textSecondary
                    font.pixelSize: 12
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }
            }

            Item { Layout.preferredHeight: 10 }
        }
    }
}
