import QtQuick

// The segmented switch between the two visualisers; the chosen one in the accent colour.
SegmentedSwitch {
    required property var navigator

    objectNamePrefix: "mode "
    options: [
        { title: "Color Rings", symbol: "circle.circle.fill" },
        { title: "Treemap", symbol: "square.grid.2x2.fill" }
    ]
    currentIndex: navigator.visualizerMode
    onPicked: index => navigator.visualizerMode = index
}
