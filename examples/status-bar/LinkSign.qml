import QtQuick 2.0
import Strandel 1.0

// One way to the network. Where its state is not known, a question mark says so.
Sign {
    property string name
    property Link link

    text: link.state === "unknown" ? name + " ?" : name
    tone: link.online ? "good"
        : link.state === "failure" ? "bad"
        : link.state === "idle" || link.state === "unknown" ? "off" : "busy"
}
