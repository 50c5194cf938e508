import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The search field and the size, type and order menus. Every change goes to the results model,
// which refilters without a new search.
RowLayout {
    id: bar

    required property var search
    required property var theme
    readonly property var results: search.results
    readonly property var labels: search.labels
    property alias field: field

    // Down in the search field moves into the list.
    signal listFocusRequested()

    spacing: 10

    TextField {
        id: field
        objectName: "searchField"
        Layout.fillWidth: true
        Layout.minimumWidth: 140
        implicitHeight: 34
        leftPadding: 34
        rightPadding: 30
        placeholderText: bar.labels.searchPlaceholder
        placeholderTextColor: bar.theme.textSecondary
        color: bar.theme.textPrimary
        font.pixelSize: 13
        text: bar.results.query
        onTextEdited: bar.results.query = text
        Keys.onEscapePressed: bar.results.query = ""
        Keys.onDownPressed: bar.listFocusRequested()

        background: Rectangle {
            radius: 9
            color: bar.theme.cardBackground
            border.color: field.activeFocus ? bar.theme.accent : bar.theme.border
        }
        Icon {
            x: 11
            anchors.verticalCenter: parent.verticalCenter
            name: "magnifyingglass"
            size: 14
            color: bar.theme.textSecondary
        }
        ToolButton {
            objectName: "clearSearchButton"
            visible: field.text.length > 0
            x: field.width - width - 4
            anchors.verticalCenter: parent.verticalCenter
            width: 24
            height: 24
            focusPolicy: Qt.NoFocus
            Accessible.name: "Clear"
            onClicked: bar.results.query = ""
            contentItem: Icon {
                name: "xmark.circle.fill"
                size: 14
                color: bar.theme.textSecondary
            }
            background: Item {}
        }
    }

    SearchMenu {
        objectName: "sizeMenu"
        theme: bar.theme
        model: bar.results.sizeOptionLabels
        currentIndex: bar.results.sizeOption
        onActivated: index => bar.results.sizeOption = index
        Accessible.name: "Size"
        implicitWidth: 120
    }
    Text {
        text: bar.labels.typeLabel
        color: bar.theme.textSecondary
        font.pixelSize: 13
    }
    SearchMenu {
        objectName: "typeMenu"
        theme: bar.theme
        model: bar.results.categoryOptionLabels
        currentIndex: bar.results.categoryOption
        onActivated: index => bar.results.categoryOption = index
        Accessible.name: bar.labels.typeLabel
        implicitWidth: 150
    }
    Text {
        text: bar.labels.sortLabel
        color: bar.theme.textSecondary
        font.pixelSize: 13
    }
    SearchMenu {
        objectName: "sortMenu"
        theme: bar.theme
        model: bar.results.sortOptionLabels
        currentIndex: bar.results.sortOption
        onActivated: index => bar.results.sortOption = index
        Accessible.name: bar.labels.sortLabel
        implicitWidth: 90
    }
}
