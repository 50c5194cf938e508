import QtQuick
import QtQuick.Layouts

// The sidebar's foot: disk use, the total available space and the memory load, from the system
// monitor's last sample.
Card {
    id: strip

    required property var appRoot

    objectName: "liveStrip"
    implicitHeight: column.implicitHeight + 24
    radius: 11

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 12
        spacing: 7

        RowLayout {
            spacing: 7
            Icon {
                name: "internaldrive.fill"
                color: strip.theme.accent
                size: 15
                Layout.alignment: Qt.AlignTop
            }
            ColumnLayout {
                spacing: 1
                Layout.fillWidth: true
                Text {
                    objectName: "diskStripText"
                    text: strip.appRoot.diskStripText.length > 0 ? strip.appRoot.diskStripText
                                                                 : "Disk: …"
                    color: strip.theme.textPrimary
                    font.pixelSize: 11
                    Layout.fillWidth: true
                    elide: Text.ElideRight
                }
                Text {
                    objectName: "diskFreeStripText"
                    text: strip.appRoot.diskFreeStripText
                    color: strip.theme.textSecondary
                    font.pixelSize: 11
                    Layout.fillWidth: true
                    elide: Text.ElideRight
                }
            }
        }

        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 5
            radius: 2.5
            color: strip.theme.border

            Rectangle {
                width: parent.width * strip.appRoot.diskUsedFraction
                height: parent.height
                radius: parent.radius
                gradient: Gradient {
                    orientation: Gradient.Horizontal
                    GradientStop { position: 0; color: strip.theme.accent }
                    GradientStop { position: 1; color: strip.theme.secondaryAccent }
                }
            }
        }

        RowLayout {
            spacing: 7
            Icon {
                name: "externaldrive.fill.badge.icloud"
                color: strip.theme.secondaryAccent
                size: 15
            }
            Text {
                objectName: "availableStripText"
                text: strip.appRoot.availableStripText
                color: strip.theme.textSecondary
                font.pixelSize: 11
                Layout.fillWidth: true
                elide: Text.ElideRight
            }
        }

        RowLayout {
            spacing: 7
            Icon {
                name: "memorychip"
                color: strip.theme.accent
                size: 15
            }
            Text {
                objectName: "ramStripText"
                text: strip.appRoot.ramStripText
                color: strip.theme.textPrimary
                font.pixelSize: 11
                Layout.fillWidth: true
            }
        }
    }
}
