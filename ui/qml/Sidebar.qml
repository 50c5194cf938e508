import QtQuick
import QtQuick.Layouts
import "components"

// The sidebar: the application icon and name, the eight sections (click, or the arrow keys
// while the list has focus) and the live strip of disk and memory figures at its foot.
Rectangle {
    id: sidebar

    required property var appRoot
    required property var theme

    objectName: "sidebar"
    implicitWidth: 236
    color: theme.background

    Rectangle {
        anchors.fill: parent
        color: sidebar.theme.cardBackground
    }
    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: sidebar.theme.border
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 14
        anchors.topMargin: 18
        spacing: 14

        RowLayout {
            spacing: 10
            Layout.leftMargin: 4

            Image {
                id: appIcon
                source: "qrc:/sondrel/app/sondrel.svg"
                sourceSize: Qt.size(80, 80)
                Layout.preferredWidth: 40
                Layout.preferredHeight: 40
                visible: status === Image.Ready
            }
            Icon {
                visible: appIcon.status !== Image.Ready
                name: "sun.max.fill"
                color: sidebar.theme.accent
                size: 32
            }
            ColumnLayout {
                spacing: 0
                Text {
                    text: "Sondrel"
                    color: sidebar.theme.textPrimary
                    font.pixelSize: 18
                    font.bold: true
                }
                Text {
                    text: "Storage Studio"
                    color: sidebar.theme.textSecondary
                    font.pixelSize: 12
                }
            }
        }

        ListView {
            id: sections
            objectName: "sectionList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 3
            focus: true
            activeFocusOnTab: true
            interactive: false
            model: sidebar.appRoot.sections
            currentIndex: sidebar.appRoot.selectedSection

            Keys.onUpPressed: {
                if (currentIndex > 0)
                    sidebar.appRoot.selectedSection = model[currentIndex - 1].section
            }
            Keys.onDownPressed: {
                if (currentIndex < count - 1)
                    sidebar.appRoot.selectedSection = model[currentIndex + 1].section
            }

            delegate: Rectangle {
                id: row

                required property int index
                // The section's row of the section table.
                required property var modelData
                readonly property bool selected: ListView.isCurrentItem

                objectName: "sectionRow" + index
                width: ListView.view.width
                height: 38
                radius: 9
                color: selected ? Qt.rgba(sidebar.theme.accent.r, sidebar.theme.accent.g,
                                          sidebar.theme.accent.b, 0.18)
                                : (mouse.containsMouse ? sidebar.theme.cardBackground : "transparent")

                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 12
                    anchors.rightMargin: 8
                    spacing: 11

                    Icon {
                        objectName: "sectionSymbol"
                        name: row.modelData.symbol
                        color: row.selected ? sidebar.theme.accent : sidebar.theme.textSecondary
                        size: 19
                    }
                    Text {
                        objectName: "sectionTitle"
                        text: row.modelData.title
                        color: row.selected ? sidebar.theme.textPrimary : sidebar.theme.textSecondary
                        font.pixelSize: 14
                        font.bold: row.selected
                        Layout.fillWidth: true
                        elide: Text.ElideRight
                    }
                }

                FocusRing {
                    theme: sidebar.theme
                    shown: row.selected && sections.activeFocus
                }

                MouseArea {
                    id: mouse
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: {
                        sidebar.appRoot.selectedSection = row.modelData.section
                        sections.forceActiveFocus()
                    }
                }
            }
        }

        LiveStrip {
            appRoot: sidebar.appRoot
            theme: sidebar.theme
            Layout.fillWidth: true
        }
    }
}
