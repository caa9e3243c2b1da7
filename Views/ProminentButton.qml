import QtQuick
import QtQuick.Controls

/// A button filled with the accent colour: the main action of a window or sheet.
Button {
    id: root

    highlighted: true
    contentItem: Text {
        text: root.text
        font: root.font
        color: root.enabled ? root.palette.highlightedText : root.palette.buttonText
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
    background: Rectangle {
        implicitWidth: 80
        implicitHeight: 24
        radius: 2
        color: !root.enabled ? root.palette.button : root.down ? Qt.darker(root.palette.highlight, 1.25)
             : root.hovered ? Qt.lighter(root.palette.highlight, 1.1) : root.palette.highlight
        border.color: root.visualFocus ? root.palette.windowText : Qt.darker(color, 1.3)
    }
}
