import QtQuick

// A symbol icon ("trash.fill", "square.grid.2x2.fill", ...) from the vendored icon set, drawn
// in one colour. Unknown names draw a question mark.
Item {
    id: icon

    property string name
    property color color: "white"
    property real size: 16

    implicitWidth: size
    implicitHeight: size

    Image {
        anchors.fill: parent
        sourceSize.width: Math.ceil(icon.size * 2)
        sourceSize.height: Math.ceil(icon.size * 2)
        fillMode: Image.PreserveAspectFit
        smooth: true
        source: icon.name.length > 0
                ? "image://symbol/" + icon.name + "/" + String(icon.color).substring(1) : ""
    }
}
