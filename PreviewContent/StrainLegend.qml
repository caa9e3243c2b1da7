import QtQuick
import Gavrel.PreviewContent
import Gavrel.Views

/// The legend of the colours of bars: the extreme strains as numbers, with the colours between them.
Rectangle {
    id: root

    enum Results { Current, Outdated, OfFile }

    required property var legend
    property int results: StrainLegend.Current

    implicitWidth: Math.max(row.width, title.width) + 24
    implicitHeight: row.height + title.height + 26
    radius: 6
    color: "#d9202328"
    visible: legend.shown
    Accessible.role: Accessible.Graphic
    Accessible.name: visible ? qsTr("Strain from %1 to %2").arg(upper.text).arg(lower.text) : ""

    component Entry: Text {
        color: "#f2f3f5"
        font.pixelSize: 12
    }

    Entry {
        id: title

        x: 12
        y: 8
        objectName: "legendTitle"
        text: root.results === StrainLegend.Outdated ? qsTr("Strain (outdated)")
            : root.results === StrainLegend.Current ? qsTr("Strain")
            : root.legend.shown && (root.legend.min !== 0 || root.legend.max !== 0) ? qsTr("Strain (kept in the file)") : qsTr("Strain (not solved)")
        font.bold: true
    }

    Row {
        id: row

        x: 12
        y: title.height + 14
        spacing: 8

        Column {
            Repeater {
                model: root.legend.shown ? root.legend.colors : []

                Rectangle {
                    required property color modelData

                    width: 16
                    height: 7
                    color: modelData
                }
            }
        }
        Item {
            width: Math.max(upper.width, lower.width, meaning.width)
            height: 16 * 7 + 7

            Entry {
                id: upper

                objectName: "legendMax"
                text: root.legend.shown ? NumberFormat.significant(root.legend.max, 4) : ""
            }
            Entry {
                id: meaning

                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("+ shortened\n− stretched")
                opacity: 0.75
            }
            Entry {
                id: lower

                objectName: "legendMin"
                anchors.bottom: parent.bottom
                text: root.legend.shown ? NumberFormat.significant(root.legend.min, 4) : ""
            }
        }
    }
}
