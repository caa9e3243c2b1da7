import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent

/// "Cancel" and the button that does what the form is for, at the right.
RowLayout {
    id: root

    required property string confirmText

    signal canceled()
    signal confirmed()

    spacing: 8

    Item {
        Layout.fillWidth: true
    }
    Button {
        objectName: "cancel"
        horizontalPadding: 10
        text: qsTr("Cancel")
        onClicked: root.canceled()
    }
    ProminentButton {
        objectName: "confirm"
        horizontalPadding: 10
        text: root.confirmText
        onClicked: root.confirmed()
    }
}
