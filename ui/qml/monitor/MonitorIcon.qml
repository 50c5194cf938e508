import QtQuick

// A small tinted glyph for a section or card title, named by its symbol name.
// Placeholder drawing (a filled dot) until the shared icon component is wired in.
Rectangle {
    property string name
    implicitWidth: 10
    implicitHeight: 10
    radius: 5
}
