import QtQuick
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views

/// The form for a chain of beams over the collected nodes. Both rows of second moments of area have the same label; the
/// upper one is about the local y axis, the lower one about z.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    required property var nodeIDs
    property string area: "100.0"
    property string iy: "1000.0"
    property string iz: "1000.0"
    property string youngModulus: "210000.0"
    property string shearModulus: "80000.0"
    readonly property Item firstField: areaRow.field

    signal dismiss()

    implicitWidth: 340
    implicitHeight: layout.implicitHeight + 20

    Component.onCompleted: nodeIDs = nodeIDs.slice()  // a copy: nodes collected later do not belong to this form

    function cancel() {
        dismiss();
    }

    function confirm() {
        Precondition.require(nodeIDs.length >= 1, "A beam form needs nodes");
        const numbers = Form.numbers([areaRow.field, iyRow.field, izRow.field, modulusRow.field, shearRow.field]);
        if (numbers === null)
            return;
        Form.forEachPair(nodeIDs, (start, end) => projectViewModel.addBeam(start, end, ...numbers));
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
            title: qsTr("Configure New Beam")
            nodes: Form.joinedString(root.nodeIDs)
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
            id: iyRow

            objectName: "iy"
            label: qsTr("Iy:")
            placeholder: qsTr("Inertia Y")
            value: root.iy
            onEdited: text => root.iy = text
        }
        FormRow {
            id: izRow

            objectName: "iz"
            label: qsTr("Iy:")
            placeholder: qsTr("Inertia Y")
            value: root.iz
            onEdited: text => root.iz = text
        }
        FormRow {
            id: modulusRow

            objectName: "youngModulus"
            label: qsTr("E:")
            placeholder: qsTr("Young's Modulus")
            value: root.youngModulus
            onEdited: text => root.youngModulus = text
        }
        FormRow {
            id: shearRow

            objectName: "shearModulus"
            label: qsTr("G:")
            placeholder: qsTr("Shear Modulus")
            value: root.shearModulus
            onEdited: text => root.shearModulus = text
        }
        FormButtons {
            Layout.topMargin: 6
            prominent: true
            confirmText: qsTr("Add Beam")
            onCanceled: root.cancel()
            onConfirmed: root.confirm()
        }
    }
}
