import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

/// Lists the mouse and key controls of the 3D view.
Dialog {
    id: root

    parent: Overlay.overlay
    anchors.centerIn: parent
    modal: true
    title: qsTr("Mouse and Keys")
    standardButtons: Dialog.Close

    GridLayout {
        columns: 2
        columnSpacing: 24
        rowSpacing: 6

        Repeater {
            model: [
                qsTr("Click"), qsTr("open a node or a bar, or collect a node for a new element"),
                qsTr("Drag, arrow keys"), qsTr("turn"),
                qsTr("Right or Shift drag, two fingers, Shift + arrow keys"), qsTr("move"),
                qsTr("Wheel, pinch, + and −"), qsTr("zoom to the pointer"),
                qsTr("F"), qsTr("fit to the structure"),
                qsTr("P"), qsTr("parallel projection or perspective"),
                qsTr("Ctrl + 1, 2, 3, 4"), qsTr("front, top, right, isometric")
            ]

            Label {
                required property string modelData
                required property int index

                text: modelData
                font.bold: index % 2 === 0
            }
        }
    }
}
