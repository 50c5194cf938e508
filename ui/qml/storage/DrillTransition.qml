import QtQuick

// A short zoom-in of `target` whenever the viewed folder changes.
ParallelAnimation {
    id: transition

    required property var target
    required property var navigator

    NumberAnimation {
        target: transition.target
        property: "scale"
        from: 0.94
        to: 1.0
        duration: 220
        easing.type: Easing.OutCubic
    }
    NumberAnimation {
        target: transition.target
        property: "opacity"
        from: 0.35
        to: 1.0
        duration: 220
        easing.type: Easing.OutCubic
    }

    property Connections watcher: Connections {
        target: transition.navigator
        function onCurrentFolderChanged() { transition.restart() }
    }
}
