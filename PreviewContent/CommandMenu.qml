import QtQuick
import QtQuick.Controls

/// A menu whose items show their shortcuts.
Menu {
    id: root

    width: 260

    delegate: MenuItem {
        id: item

        rightPadding: 12
        Accessible.name: text.replace("&", "")

        Shortcut {
            id: sequence

            enabled: false
            sequence: item.action ? item.action.shortcut : ""
        }

        Label {
            anchors {
                right: parent.right
                rightMargin: item.rightPadding
                verticalCenter: parent.verticalCenter
            }
            text: sequence.nativeText
            opacity: 0.7
            color: item.highlighted ? item.palette.highlightedText : item.palette.windowText
        }
    }
}
