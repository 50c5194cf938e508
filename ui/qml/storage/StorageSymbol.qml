import QtQuick

// A symbol icon of the vendored icon set ("folder.fill", ...) tinted in one colour, through the
// application's "symbol" image provider.
Image {
    property string name
    property color tint: "white"
    property real size: 16

    width: size
    height: size
    sourceSize.width: Math.ceil(size * 2)
    sourceSize.height: Math.ceil(size * 2)
    fillMode: Image.PreserveAspectFit
    smooth: true
    source: name.length > 0 ? "image://symbol/" + name + "/" + String(tint).substring(1) : ""
}
