import QtQuick

// A symbol icon ("trash.fill", "square.grid.2x2.fill", ...) from the vendored icon set, drawn
// in one colour. Unknown names draw a question mark.
Image {
    id: icon

    property string name
    property color color: "white"
    property real size: 16

    width: size
    height: size
    implicitWidth: size
    implicitHeight: size
    sourceSize.width: Math.ceil(size * 2)
    sourceSize.height: Math.ceil(size * 2)
    fillMode: Image.PreserveAspectFit
    smooth: true
    source: name.length > 0 ? "image://symbol/" + name + "/" + String(color).substring(1) : ""
}
