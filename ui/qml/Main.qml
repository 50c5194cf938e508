import QtQuick
import QtQuick.Controls

ApplicationWindow {
    id: window
    width: 1240
    height: 780
    minimumWidth: 1040
    minimumHeight: 680
    visible: true
    title: "Sondrel"
    color: "#0f1115"

    Label {
        anchors.centerIn: parent
        text: "Sondrel"
        color: "white"
        font.pixelSize: 32
    }
}
