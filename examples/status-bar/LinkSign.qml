import QtQuick 2.0
import Strandel 1.0

// The state of one network link; a question mark if the state is unknown.
Sign {
    property string name
    property Link link

    text: link.state === "unknown" ? name + " ?" : name
    tone: link.online ? "good"
        : link.state === "failure" ? "bad"
        : link.state === "idle" || link.state === "unknown" ? "off" : "busy"
}
