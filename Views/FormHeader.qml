import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

/// The header of a form for new elements: its title and the nodes that the elements will connect.
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
        // Only as wide as the fields below; the list of nodes may be longer.
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
