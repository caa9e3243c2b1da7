import QtQuick
import QtQuick.Controls

/// A compact switch with a text, for narrow rows.
Switch {
    id: root

    padding: 0
    spacing: 4

    indicator: Rectangle {
        y: (root.height - height) / 2
        width: 22
        height: 12
        radius: height / 2
        color: root.checked ? root.palette.highlight : Qt.alpha(root.palette.windowText, 0.3)
        border {
            width: root.visualFocus ? 1 : 0
            color: root.palette.windowText
        }

        Rectangle {
            x: 2 + root.visualPosition * (parent.width - width - 4)
            y: 2
            width: 8
            height: 8
            radius: 4
            color: root.checked ? root.palette.highlightedText : root.palette.window

            Behavior on x {
                NumberAnimation {
                    duration: 80
                }
            }
        }
    }

    contentItem: Text {
        leftPadding: root.indicator.width + root.spacing
        text: root.text
        font: root.font
        color: root.palette.windowText
        verticalAlignment: Text.AlignVCenter
    }
}
