import QtQuick

// The switch between sizes on disk (allocated blocks, the default) and apparent sizes (file
// lengths); the views re-lay at once without a new scan.
SegmentedSwitch {
    required property var navigator

    objectNamePrefix: "measure "
    options: [
        { title: "Size on disk", symbol: "internaldrive.fill" },
        { title: "Apparent size", symbol: "doc.fill" }
    ]
    currentIndex: navigator.apparentSize ? 1 : 0
    onPicked: index => navigator.apparentSize = index === 1
}
