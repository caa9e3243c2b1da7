import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views

/// The form for a chain of trusses over the collected nodes, at least two.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    required property var nodeIDs
    property string area: "25.0"
    property string youngModulus: "100e3"
    readonly property Item firstField: areaRow.field

    signal dismiss()

    implicitWidth: 340
    implicitHeight: layout.implicitHeight + 20

    Component.onCompleted: {
        nodeIDs = nodeIDs.slice();  // a copy: nodes collected later do not belong to this form
        Precondition.require(nodeIDs.length >= 2, "A truss form needs two nodes");
    }

    function cancel() {
        dismiss();
    }

    function confirm() {
        Precondition.require(nodeIDs.length >= 1, "A truss form needs nodes");
        const numbers = Form.numbers([areaRow.field, modulusRow.field]);
        if (numbers === null) {
            StandardOutput.print("Invalid input for Area or Young's Modulus");
            return;
        }
        Form.forEachPair(nodeIDs, (start, end) => projectViewModel.addTruss(start, end, numbers[0], numbers[1]));
        projectViewModel.appMode = AppMode.normal;
        projectViewModel.selectedNodesForTruss = [];
        dismiss();
    }

    ColumnLayout {
        id: layout

        anchors {
            fill: parent
            margins: 10
        }
        spacing: 10

        FormHeader {
            title: qsTr("Configure New Truss")
            nodes: root.nodeIDs.slice(0, 2).join(qsTr(" and "))
        }
        Label {
            text: qsTr("Properties:")
            font.bold: true
        }
        FormRow {
            id: areaRow

            objectName: "area"
            label: qsTr("Area:")
            placeholder: qsTr("Area")
            value: root.area
            onEdited: text => root.area = text
        }
        FormRow {
            id: modulusRow

            objectName: "youngModulus"
            label: qsTr("Young's Modulus:")
            placeholder: qsTr("Young's Modulus")
            value: root.youngModulus
            onEdited: text => root.youngModulus = text
        }
        FormButtons {
            Layout.topMargin: 6
            prominent: true
            confirmText: qsTr("Add Truss")
            onCanceled: root.cancel()
            onConfirmed: root.confirm()
        }
    }
}
