import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views

/// Shows a node's place and displacement and edits its load and translational restraints.
Item {
    id: root

    required property var nodeID
    required property ProjectViewModel projectViewModel
    /// The selection that opened the sheet; the sheet sets it to null when it is closed.
    required property var selectedNodeForSheet
    property string loadX: "0.0"
    property string loadY: "0.0"
    property string loadZ: "0.0"
    property bool restX: false
    property bool restY: false
    property bool restZ: false

    readonly property var node: projectViewModel.nodeContents(nodeID)
    readonly property Item firstField: xField

    signal dismiss()

    implicitWidth: 300
    implicitHeight: 200

    Component.onCompleted: {
        loadX = NumberFormat.text(node.loadX);
        loadY = NumberFormat.text(node.loadY);
        loadZ = NumberFormat.text(node.loadZ);
        restX = node.restX;
        restY = node.restY;
        restZ = node.restZ;
    }

    function cancel() {
        selectedNodeForSheet = null;
        dismiss();
    }

    function confirm() {
        const load = Form.numbers([xField, yField, zField]);
        if (load === null) {
            StandardOutput.print("Invalid load input");
            return;
        }
        projectViewModel.setLoadAndRestraint(nodeID, load[0], load[1], load[2], restX, restY, restZ);
        selectedNodeForSheet = null;
        dismiss();
    }

    component Value: Label {
        Layout.fillWidth: true
        Layout.preferredWidth: 1
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 8
    }

    component LoadField: NumberField {
        Layout.fillWidth: true
        Layout.preferredWidth: 1
        Accessible.name: qsTr("Load %1").arg(placeholderText)
    }

    component Restraint: SmallSwitch {
        Layout.fillWidth: true
        Layout.preferredWidth: 1
        font.pixelSize: 11
    }

    ColumnLayout {
        anchors {
            fill: parent
            margins: 8
        }
        spacing: 15

        ColumnLayout {
            spacing: 4

            Label {
                objectName: "id"
                text: "ID: " + root.nodeID
                font.bold: true
            }
            RowLayout {
                Value {
                    objectName: "coordinateX"
                    text: "X: " + NumberFormat.fixed(root.node.x, 2)
                }
                Value {
                    text: "Y: " + NumberFormat.fixed(root.node.y, 2)
                }
                Value {
                    text: "Z: " + NumberFormat.fixed(root.node.z, 2)
                }
            }
            RowLayout {
                Value {
                    objectName: "displacementX"
                    text: "u: " + NumberFormat.fixed(root.node.u, 3)
                }
                Value {
                    text: "v: " + NumberFormat.fixed(root.node.v, 3)
                }
                Value {
                    text: "w: " + NumberFormat.fixed(root.node.w, 3)
                }
            }
        }
        RowLayout {
            spacing: 6

            Label {
                text: qsTr("Load:")
            }
            LoadField {
                id: xField

                objectName: "loadX"
                placeholderText: "X"
                text: root.loadX
                onTextEdited: root.loadX = text
            }
            LoadField {
                id: yField

                objectName: "loadY"
                placeholderText: "Y"
                text: root.loadY
                onTextEdited: root.loadY = text
            }
            LoadField {
                id: zField

                objectName: "loadZ"
                placeholderText: "Z"
                text: root.loadZ
                onTextEdited: root.loadZ = text
            }
        }
        RowLayout {
            Restraint {
                objectName: "restX"
                text: qsTr("Restrain X")
                checked: root.restX
                onToggled: root.restX = checked
            }
            Restraint {
                objectName: "restY"
                text: qsTr("Restrain Y")
                checked: root.restY
                onToggled: root.restY = checked
            }
            Restraint {
                objectName: "restZ"
                text: qsTr("Restrain Z")
                checked: root.restZ
                onToggled: root.restZ = checked
            }
        }
        FormButtons {
            confirmText: qsTr("Apply")
            onCanceled: root.cancel()
            onConfirmed: root.confirm()
        }
    }
}
