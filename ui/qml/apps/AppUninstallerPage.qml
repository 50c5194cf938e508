import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The App Uninstaller: header with "Scan Apps", the two tabs with their counts, then either the
// installed list (search, rows, detail pane) or the orphaned residues. Uninstalling asks first
// and shows the result; the work runs in the scanner, so the window stays responsive.
Rectangle {
    id: page

    required property var scanner
    required property var theme
    readonly property var labels: scanner.labels
    property int selectedTab: 0 // 0 installed apps, 1 orphaned residues
    property string uninstallResult

    color: theme.background

    Connections {
        target: page.scanner
        function onUninstallFinished(success, message) {
            page.uninstallResult = message
            resultDialog.open()
        }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 28
        spacing: 16

        RowLayout {
            spacing: 12
            Layout.fillWidth: true
            SectionHeader {
                theme: page.theme
                title: page.labels.title
                subtitle: page.scanner.isScanning || page.scanner.statusMessage.length > 0
                          ? page.scanner.statusMessage : page.labels.subtitle
                symbol: "trash.fill"
                Layout.fillWidth: true
            }
            BusyIndicator {
                visible: page.scanner.isScanning || page.scanner.isRemoving
                running: visible
                Layout.preferredWidth: 28
                Layout.preferredHeight: 28
            }
            ThemedButton {
                objectName: "scanAppsButton"
                theme: page.theme
                text: page.labels.scanButton
                symbol: "arrow.clockwise"
                prominent: true
                enabled: !page.scanner.isScanning
                onClicked: page.scanner.scanApps()
            }
        }

        RowLayout {
            spacing: 8
            ThemedButton {
                objectName: "installedTab"
                theme: page.theme
                text: page.labels.installedTab.arg(page.scanner.installedCount)
                prominent: page.selectedTab === 0
                onClicked: page.selectedTab = 0
            }
            ThemedButton {
                objectName: "orphansTab"
                theme: page.theme
                text: page.labels.orphansTab.arg(page.scanner.orphanCount)
                prominent: page.selectedTab === 1
                onClicked: page.selectedTab = 1
            }
        }

        RowLayout {
            visible: page.selectedTab === 0
            spacing: 16
            Layout.fillWidth: true
            Layout.fillHeight: true

            Card {
                theme: page.theme
                Layout.preferredWidth: Math.max(300, page.width * 0.38)
                Layout.fillHeight: true

                ColumnLayout {
                    anchors.fill: parent
                    anchors.margins: 12
                    spacing: 10

                    TextField {
                        id: search
                        objectName: "appSearchField"
                        Layout.fillWidth: true
                        implicitHeight: 34
                        leftPadding: 32
                        placeholderText: page.labels.searchPlaceholder
                        placeholderTextColor: page.theme.textSecondary
                        color: page.theme.textPrimary
                        font.pixelSize: 13
                        text: page.scanner.searchText
                        onTextEdited: page.scanner.searchText = text
                        background: Rectangle {
                            radius: 9
                            color: page.theme.cardBackground
                            border.color: search.activeFocus ? page.theme.accent : page.theme.border
                        }
                        Icon {
                            anchors.left: parent.left
                            anchors.leftMargin: 10
                            anchors.verticalCenter: parent.verticalCenter
                            name: "magnifyingglass"
                            size: 14
                            color: page.theme.textSecondary
                        }
                        Icon {
                            anchors.right: parent.right
                            anchors.rightMargin: 8
                            anchors.verticalCenter: parent.verticalCenter
                            visible: search.text.length > 0
                            name: "xmark.circle.fill"
                            size: 14
                            color: page.theme.textSecondary
                            MouseArea {
                                anchors.fill: parent
                                onClicked: page.scanner.searchText = ""
                            }
                        }
                    }

                    ListView {
                        id: appList
                        objectName: "appList"
                        clip: true
                        spacing: 4
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        model: page.scanner.filteredApps
                        delegate: AppRowView {
                            required property var modelData
                            width: appList.width
                            theme: page.theme
                            app: modelData
                            isSelected: modelData.appId === page.scanner.selectedAppId
                            onClicked: page.scanner.selectedAppId = modelData.appId
                        }
                        Text {
                            objectName: "noAppsText"
                            anchors.centerIn: parent
                            visible: appList.count === 0
                            text: page.labels.noApps
                            color: page.theme.textSecondary
                            font.pixelSize: 13
                        }
                    }
                }
            }

            AppDetailPane {
                objectName: "detailPane"
                visible: page.scanner.selectedAppId.length > 0
                theme: page.theme
                scanner: page.scanner
                app: page.scanner.selectedApp
                Layout.fillWidth: true
                Layout.fillHeight: true
                onUninstallRequested: confirmDialog.open()
            }

            Card {
                objectName: "selectPrompt"
                visible: page.scanner.selectedAppId.length === 0
                theme: page.theme
                Layout.fillWidth: true
                Layout.fillHeight: true
                ColumnLayout {
                    anchors.centerIn: parent
                    spacing: 10
                    Icon {
                        name: "cursorarrow.click.2"
                        size: 44
                        color: page.theme.textSecondary
                        Layout.alignment: Qt.AlignHCenter
                    }
                    Text {
                        text: page.labels.selectPrompt
                        color: page.theme.textSecondary
                        font.pixelSize: 15
                        Layout.alignment: Qt.AlignHCenter
                    }
                }
            }
        }

        OrphanedResiduesList {
            objectName: "orphansPane"
            visible: page.selectedTab === 1
            theme: page.theme
            scanner: page.scanner
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
    }

    Dialog {
        id: confirmDialog
        objectName: "confirmDialog"
        anchors.centerIn: parent
        width: Math.min(page.width - 80, 480)
        modal: true
        title: page.scanner.selectedApp.uninstallText ?? ""
        contentItem: Text {
            text: page.scanner.confirmText
            color: page.theme.textPrimary
            wrapMode: Text.WordWrap
            font.pixelSize: 13
        }
        footer: DialogButtonBox {
            Button {
                text: page.labels.confirmCancel
                DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
            }
            Button {
                objectName: "confirmUninstallButton"
                text: page.labels.confirmButton
                DialogButtonBox.buttonRole: DialogButtonBox.DestructiveRole
                onClicked: {
                    page.scanner.uninstall(page.scanner.selectedAppId, true)
                    confirmDialog.close()
                }
            }
        }
    }

    Dialog {
        id: resultDialog
        objectName: "resultDialog"
        anchors.centerIn: parent
        width: Math.min(page.width - 80, 480)
        modal: true
        standardButtons: Dialog.Ok
        contentItem: Text {
            objectName: "resultText"
            text: page.uninstallResult
            color: page.theme.textPrimary
            wrapMode: Text.WordWrap
            font.pixelSize: 13
        }
    }
}
