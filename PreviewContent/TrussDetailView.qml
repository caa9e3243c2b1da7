import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views

/// Shows a truss and switches it between linear and non-linear behaviour. Beams have no sheet: for the number of a beam
/// it shows the truss with the same number, if there is one.
Item {
    id: root

    required property var elementID
    required property ProjectViewModel projectViewModel
    /// The selection that opened the sheet; null when the sheet is done with it.
    required property var selectedElementForSheet

    readonly property var truss: projectViewModel.trussContents(elementID)
    readonly property Item firstField: cancelButton

    signal dismiss()

    implicitWidth: 300
    implicitHeight: 200

    /// Keeps the selection if there was no truss to show.
    function cancel() {
        if (truss.found)
            selectedElementForSheet = null;
        dismiss();
    }

    /// Writes to the position in the list that equals the number, which is where the program's own trusses stand.
    function apply(isNonLinear) {
        projectViewModel.setNonLinear(elementID, isNonLinear);
        selectedElementForSheet = null;
        dismiss();
    }

    // Three of them have to fit into the frame, whatever the font.
    component Choice: Button {
        implicitWidth: implicitContentWidth + 16
        font.pixelSize: 12
        visible: root.truss.found
    }

    ColumnLayout {
        anchors {
            fill: parent
            margins: 8
        }
        spacing: 8

        Label {
            objectName: "id"
            text: "ID: " + root.elementID
            font.bold: true
        }
        Label {
            objectName: "area"
            visible: root.truss.found
            text: "Area: " + NumberFormat.fixed(root.truss.area, 2)
        }
        Label {
            objectName: "isNonLinear"
            visible: root.truss.found
            text: "isNonLinear: " + root.truss.isNonLinear
        }
        Label {
            objectName: "notFound"
            visible: !root.truss.found
            text: qsTr("Truss element not found.")
        }
        Item {
            Layout.fillHeight: true
        }
        RowLayout {
            spacing: 6

            Item {
                Layout.fillWidth: true
            }
            Choice {
                id: cancelButton

                objectName: "cancel"
                visible: true
                text: qsTr("Cancel")
                onClicked: root.cancel()
            }
            Choice {
                objectName: "applyLinear"
                text: qsTr("Apply Linear")
                onClicked: root.apply(false)
            }
            Choice {
                objectName: "applyNonlinear"
                text: qsTr("Apply Nonlinear")
                onClicked: root.apply(true)
            }
        }
    }
}
