import QtQuick 2.0

// A word in the bar. Its meaning ("plain", "good", "busy", "bad" or "off") determines its colour.
Text {
    property string tone: "plain"

    height: 24
    verticalAlignment: Text.AlignVCenter
    font.pixelSize: 16
    textFormat: Text.PlainText
    color: ({ plain: "#e6e9ec", good: "#6fcf7c", busy: "#f0b84a", bad: "#f0655c", off: "#68727c" })[tone]
}
