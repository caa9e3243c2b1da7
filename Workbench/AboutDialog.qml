import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

/// What the program is, in which version and under which terms.
Dialog {
    id: root

    parent: Overlay.overlay
    anchors.centerIn: parent
    modal: true
    title: qsTr("About Gavrel")
    standardButtons: Dialog.Close

    ColumnLayout {
        spacing: 8

        Label {
            text: "Gavrel " + Application.version
            font.bold: true
            font.pixelSize: 18
        }
        Label {
            text: qsTr("Static analysis of three-dimensional frameworks of bars and beams")
        }
        Label {
            text: qsTr("Free software under the GNU General Public License, version 3 or later.\nIt comes without any warranty.")
            opacity: 0.8
        }
    }
}
