import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views

/// "Cancel" and the button that does what the form is for, at the right.
RowLayout {
    id: root

    required property string confirmText
    property bool prominent: false

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
    Loader {
        sourceComponent: root.prominent ? prominentButton : plainButton
    }

    Component {
        id: plainButton

        Button {
            objectName: "confirm"
            horizontalPadding: 10
            text: root.confirmText
            onClicked: root.confirmed()
        }
    }

    Component {
        id: prominentButton

        ProminentButton {
            objectName: "confirm"
            horizontalPadding: 10
            text: root.confirmText
            onClicked: root.confirmed()
        }
    }
}
