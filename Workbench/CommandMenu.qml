import QtQuick
import QtQuick.Controls

/// A menu whose items show their shortcuts.
Menu {
    id: root

    /// Actions and menus; null stands for a separator.
    property var entries: []
    readonly property Component separator: MenuSeparator {}

    width: 260

    Component.onCompleted: {
        for (const entry of entries) {
            if (entry === null)
                addItem(separator.createObject(contentItem));
            else if (entry instanceof Menu)
                addMenu(entry);
            else
                addAction(entry);
        }
    }

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
