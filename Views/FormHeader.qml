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
        id: title

        text: root.title
        font.bold: true
        font.pixelSize: 16
    }
    Label {
        objectName: "nodes"
        Layout.fillWidth: true
        // As wide as the fields below, not as the list of nodes.
        Layout.preferredWidth: 1
        wrapMode: Text.Wrap
        maximumLineCount: 6
        elide: Text.ElideRight
        text: qsTr("Between nodes: ") + root.nodes
    }
    Rectangle {
        Layout.fillWidth: true
        Layout.topMargin: 4
        implicitHeight: 1
        color: Qt.alpha(title.palette.windowText, 0.2)
    }
}
