import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views

/// The import form: the cross-section, Young's modulus and behaviour of elements for which the files give none.
Item {
    id: root

    required property var files
    readonly property Item firstField: areaRow.field
    readonly property string names: files.map(file => decodeURIComponent(String(file).replace(/.*\//, ""))).join(", ")

    signal dismiss()
    signal confirmed(real area, real youngModulus, bool isNonLinear)

    implicitWidth: 400
    implicitHeight: layout.implicitHeight + 20

    function confirm() {
        const numbers = Form.numbers([areaRow.field, modulusRow.field]);
        if (numbers !== null)
            confirmed(numbers[0], numbers[1], nonLinear.checked);
    }

    ColumnLayout {
        id: layout

        anchors {
            fill: parent
            margins: 10
        }
        spacing: 10

        Label {
            Layout.fillWidth: true
            text: qsTr("Import %1").arg(root.names)
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            font.bold: true
            font.pixelSize: 16
        }
        Label {
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            text: qsTr("The content of the files is added to the structure. Bars without section or material in the files get these values:")
        }
        FormRow {
            id: areaRow

            objectName: "area"
            label: qsTr("Area:")
            placeholder: qsTr("Area")
            value: "25.0"
        }
        FormRow {
            id: modulusRow

            objectName: "youngModulus"
            label: qsTr("Young's Modulus:")
            placeholder: qsTr("Young's Modulus")
            value: "100e3"
        }
        CheckBox {
            id: nonLinear

            text: qsTr("Large displacements (non-linear)")
        }
        FormButtons {
            Layout.topMargin: 6
            prominent: true
            confirmText: qsTr("Import")
            onCanceled: root.dismiss()
            onConfirmed: root.confirm()
        }
    }
}
