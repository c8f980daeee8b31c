import QtQuick 2.0
import Strandel 1.0

// The instrument's state in one line. If the daemon does not run, shows the reason and no stale
// values.
Rectangle {
    id: bar

    // The model; an application can set its own instance.
    property Instrument instrument: Instrument {}

    implicitWidth: 800
    implicitHeight: 40
    width: implicitWidth
    height: implicitHeight
    color: "#20262c"

    Sign {
        objectName: "profile"
        anchors { left: parent.left; leftMargin: 12; verticalCenter: parent.verticalCenter }
        text: bar.instrument.profile
        visible: bar.instrument.problem === ""
    }

    Sign {
        objectName: "problem"
        anchors.centerIn: parent
        text: bar.instrument.problem
        tone: "bad"
        visible: text !== ""
    }

    Row {
        objectName: "signs"
        anchors { right: parent.right; rightMargin: 12; verticalCenter: parent.verticalCenter }
        height: 24
        spacing: 18
        visible: bar.instrument.problem === ""

        LinkSign { objectName: "ethernet"; name: "LAN"; link: bar.instrument.ethernet }
        LinkSign { objectName: "wifi"; name: "Wi-Fi"; link: bar.instrument.wifi }
        SignalBars { objectName: "strength"; strength: bar.instrument.wifi.strength }
        LinkSign { objectName: "accessPoint"; name: "AP"; link: bar.instrument.accessPoint }
        Sign {
            objectName: "sdCard"
            text: "SD"
            tone: bar.instrument.sdCard === "mounted" ? "good"
                : bar.instrument.sdCard === "inserted" ? "busy" : "off"
        }
        Sign {
            objectName: "usbKey"
            text: "USB"
            tone: bar.instrument.usbKey === "mounted" ? "good"
                : bar.instrument.usbKey === "inserted" ? "busy" : "off"
        }
        Sign {
            objectName: "backlight"
            text: "\u2600 " + bar.instrument.backlight + " %"
            visible: bar.instrument.backlight >= 0
        }
        BatteryGauge {
            objectName: "battery"
            level: bar.instrument.batteryLevel
            isCharging: bar.instrument.chargerConnected
        }
    }
}
