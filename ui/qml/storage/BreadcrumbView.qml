import QtQuick
import QtQuick.Controls

// The chain of folders from the scan root to the viewed folder; clicking one goes there. The
// last element (the viewed folder) is drawn in the accent colour and is always shown: when the
// chain is longer than the width allows, the middle folders collapse into an ellipsis whose
// menu lists them.
Row {
    id: crumbs

    required property var details
    required property var theme
    /// The widest a single element may be; the number of elements that fit follows from it.
    readonly property int elementWidth: 170

    spacing: 4

    Binding {
        target: crumbs.details
        property: "breadcrumbCapacity"
        value: Math.floor(crumbs.width / (crumbs.elementWidth + 18))
    }

    Repeater {
        model: crumbs.details.breadcrumbElements

        Row {
            id: crumb
            required property var modelData
            required property int index
            readonly property bool isLast: index === crumbs.details.breadcrumbElements.length - 1
            spacing: 4

            StorageSymbol {
                visible: crumb.index > 0
                anchors.verticalCenter: parent.verticalCenter
                name: "chevron.right"
                size: 10
                tint: crumbs.theme.textSecondary
            }
            StorageButton {
                id: button
                objectName: crumb.modelData.isEllipsis ? "crumbEllipsis"
                                                       : "crumb " + crumb.modelData.name
                theme: crumbs.theme
                symbol: crumb.modelData.isEllipsis ? "" : "folder"
                text: crumb.modelData.name
                maximumTextWidth: crumbs.elementWidth - 40
                leftPadding: 6
                rightPadding: 6
                textColor: crumb.isLast ? crumbs.theme.accent : crumbs.theme.textPrimary
                onClicked: crumb.modelData.isEllipsis ? hiddenMenu.popup(button, 0, button.height)
                                                      : crumbs.details.navigateToBreadcrumb(
                                                            crumb.modelData.index)

                Menu {
                    id: hiddenMenu
                    objectName: "crumbEllipsisMenu"

                    Repeater {
                        model: crumb.modelData.hidden
                        MenuItem {
                            required property var modelData
                            text: modelData.name
                            onTriggered: crumbs.details.navigateToBreadcrumb(modelData.index)
                        }
                    }
                }
            }
        }
    }
}
