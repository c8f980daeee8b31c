import QtQuick 2.0

// Shows the charge as the filled part of a battery. A green frame means that a charger is connected.
Item {
    id: gauge

    // The charge in percent; negative if it is unknown.
    property int level: -1
    property bool isCharging: false

    width: 52
    height: 24

    Rectangle {
        id: body
        anchors { left: parent.left; verticalCenter: parent.verticalCenter }
        width: 46
        height: 20
        radius: 3
        color: "transparent"
        border { width: 2; color: gauge.isCharging ? "#6fcf7c" : "#e6e9ec" }

        Rectangle {
            objectName: "fill"
            x: 4
            y: 4
            width: Math.max(0, gauge.level) / 100 * (parent.width - 8)
            height: parent.height - 8
            color: gauge.level > 20 || gauge.isCharging ? "#6fcf7c" : "#f0655c"
        }
        Sign {
            anchors.centerIn: parent
            text: "?"
            visible: gauge.level < 0
        }
    }
    Rectangle {
        anchors { left: body.right; leftMargin: 1; verticalCenter: parent.verticalCenter }
        width: 4
        height: 8
        color: body.border.color
    }
}
