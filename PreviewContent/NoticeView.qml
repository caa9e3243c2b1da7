import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views

/// A text that its user should read.
Item {
    id: root

    required property string text

    signal dismiss()

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
        ProminentButton {
            Layout.alignment: Qt.AlignRight
            horizontalPadding: 12
            text: qsTr("Close")
            onClicked: root.dismiss()
        }
    }
}
