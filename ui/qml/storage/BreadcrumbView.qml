import QtQuick

// The chain of folders from the scan root to the viewed folder; clicking one goes there. The
// last element (the viewed folder) is drawn in the accent colour.
Row {
    id: crumbs

    required property var details
    required property var theme

    spacing: 4

    Repeater {
        model: crumbs.details.breadcrumbNames

        Row {
            id: crumb
            required property string modelData
            required property int index
            readonly property bool isLast: index === crumbs.details.breadcrumbNames.length - 1
            spacing: 4

            StorageSymbol {
                visible: crumb.index > 0
                anchors.verticalCenter: parent.verticalCenter
                name: "chevron.right"
                size: 10
                tint: crumbs.theme.textSecondary
            }
            StorageButton {
                objectName: "crumb " + crumb.modelData
                theme: crumbs.theme
                symbol: "folder"
                text: crumb.modelData
                leftPadding: 6
                rightPadding: 6
                textColor: crumb.isLast ? crumbs.theme.accent : crumbs.theme.textPrimary
                onClicked: crumbs.details.navigateToBreadcrumb(crumb.index)
            }
        }
    }
}
