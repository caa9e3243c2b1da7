import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views

/// A text for the user to read, closed by a button; a second button may offer an action.
Item {
    id: root

    required property string text
    property string closeText: qsTr("Close")
    /// The text of the button that offers an action; empty for none.
    property string action: ""

    signal dismiss()
    signal acted()

    implicitWidth: 440
    implicitHeight: stack.implicitHeight + 32

    function confirm() {
        dismiss();
    }

    ColumnLayout {
        id: stack

        anchors {
            fill: parent
            margins: 16
        }
        spacing: 12

        Label {
            objectName: "notice"
            Layout.fillWidth: true
            Layout.fillHeight: true
            text: root.text
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            maximumLineCount: 20
            elide: Text.ElideRight
        }
        RowLayout {
            spacing: 8

            Button {
                objectName: "action"
                horizontalPadding: 12
                visible: root.action !== ""
                text: root.action
                onClicked: root.acted()
            }
            Item {
                Layout.fillWidth: true
            }
            ProminentButton {
                horizontalPadding: 12
                text: root.closeText
                onClicked: root.dismiss()
            }
        }
    }
}
