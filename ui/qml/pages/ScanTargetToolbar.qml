import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The storage section's toolbar: the scan-target menu, "Rescan" and the current target with the
// scanner's status line.
Card {
    id: toolbar

    required property var appRoot

    signal chooseFolderRequested()

    implicitHeight: 58
    radius: 12

    Connections {
        target: toolbar.appRoot
        function onCustomFolderRequested() { toolbar.chooseFolderRequested() }
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 14
        spacing: 10

        ThemedButton {
            id: targetButton
            objectName: "scanTargetButton"
            theme: toolbar.theme
            text: "Scan Target"
            symbol: "internaldrive.fill"
            onClicked: {
                toolbar.appRoot.refreshScanTargets()
                targetMenu.popup(targetButton, 0, targetButton.height + 4)
            }

            Menu {
                id: targetMenu
                objectName: "scanTargetMenu"

                Instantiator {
                    model: toolbar.appRoot.scanTargets
                    delegate: MenuItem {
                        required property int index
                        required property var modelData
                        text: modelData.label
                        icon.source: "image://symbol/" + modelData.symbol + "/"
                                     + String(toolbar.theme.accent).substring(1)
                        icon.color: "transparent"
                        icon.width: 16
                        icon.height: 16
                        onTriggered: toolbar.appRoot.activateScanTarget(index)
                    }
                    onObjectAdded: function (index, object) { targetMenu.insertItem(index, object) }
                    onObjectRemoved: function (index, object) { targetMenu.removeItem(object) }
                }
            }
        }

        ThemedButton {
            objectName: "rescanButton"
            theme: toolbar.theme
            text: "Rescan"
            symbol: "arrow.clockwise"
            prominent: true
            onClicked: toolbar.appRoot.rescan()
        }

        ColumnLayout {
            spacing: 1
            Layout.fillWidth: true
            Layout.leftMargin: 6

            Text {
                objectName: "currentTargetText"
                text: toolbar.appRoot.selectedTargetFolder
                color: toolbar.theme.textPrimary
                font.pixelSize: 13
                font.bold: true
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
            Text {
                text: toolbar.appRoot.diskScanner.progressText
                color: toolbar.theme.textSecondary
                font.pixelSize: 11
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }

        BusyIndicator {
            visible: toolbar.appRoot.diskScanner.isScanning
            running: visible
            Layout.preferredWidth: 26
            Layout.preferredHeight: 26
        }
    }
}
