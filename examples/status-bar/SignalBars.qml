import QtQuick 2.0

// The strength of the network in four bars.
Row {
    id: bars

    // The strength in percent; negative if there is no network.
    property int strength: -1

    height: 24
    spacing: 2
    visible: strength >= 0

    Repeater {
        model: 4
        Rectangle {
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 4
            width: 5
            height: 4 + 4 * index
            color: bars.strength > 25 * index ? "#6fcf7c" : "#68727c"
        }
    }
}
