import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

/// What a form of a new element is for, and between which nodes the element will stand.
ColumnLayout {
    id: root

    required property string title
    required property string nodes

    spacing: 6

    Label {
        text: root.title
        font.bold: true
        font.pixelSize: 16
    }
    Label {
        id: nodesLabel

        objectName: "nodes"
        Layout.fillWidth: true
        elide: Text.ElideRight
        text: qsTr("Between nodes: ") + root.nodes
    }
    Rectangle {
        Layout.fillWidth: true
        Layout.topMargin: 4
        implicitHeight: 1
        color: nodesLabel.palette.mid
    }
}
