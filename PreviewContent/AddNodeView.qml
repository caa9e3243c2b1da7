import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views

/// The form for a new node.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    property string startX
    property string startY
    property string startZ
    property bool connectToLast
    readonly property Item firstField: xField

    signal dismiss()

    implicitWidth: 350
    implicitHeight: 160

    Component.onCompleted: {
        startX = projectViewModel.lastUsedStartX;
        startY = projectViewModel.lastUsedStartY;
        startZ = projectViewModel.lastUsedStartZ;
        connectToLast = projectViewModel.lastUsedConnectToLast;
    }

    function cancel() {
        dismiss();
    }

    function confirm() {
        const numbers = Form.numbers([xField, yField, zField]);
        if (numbers === null) {
            StandardOutput.print("Invalid input coordinates");
            return;
        }
        projectViewModel.addNode(numbers[0], numbers[1], numbers[2], connectToLast);
        projectViewModel.lastUsedStartX = startX;
        projectViewModel.lastUsedStartY = startY;
        projectViewModel.lastUsedStartZ = startZ;
        projectViewModel.lastUsedConnectToLast = connectToLast;
        dismiss();
    }

    component Coordinate: NumberField {
        Layout.fillWidth: true
        Layout.preferredWidth: 1
    }

    ColumnLayout {
        anchors {
            fill: parent
            margins: 10
        }
        spacing: 14

        Label {
            text: qsTr("Coordinates:")
        }
        RowLayout {
            Layout.topMargin: -8
            spacing: 8

            Coordinate {
                id: xField

                objectName: "x"
                placeholderText: qsTr("x")
                text: root.startX
                onTextEdited: root.startX = text
            }
            Coordinate {
                id: yField

                objectName: "y"
                placeholderText: qsTr("y")
                text: root.startY
                onTextEdited: root.startY = text
            }
            Coordinate {
                id: zField

                objectName: "z"
                placeholderText: qsTr("z")
                text: root.startZ
                onTextEdited: root.startZ = text
            }
        }
        SmallSwitch {
            objectName: "connectToLast"
            text: qsTr("Connect to Last")
            checked: root.connectToLast
            onToggled: root.connectToLast = checked
        }
        Item {
            Layout.fillHeight: true
        }
        FormButtons {
            confirmText: qsTr("Add Node")
            onCanceled: root.cancel()
            onConfirmed: root.confirm()
        }
    }
}
