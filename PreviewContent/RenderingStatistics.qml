import QtQuick
import QtQuick3D

/// How fast the 3D view draws, and how much.
Rectangle {
    id: root

    required property View3D view
    required property int shapes
    required property int triangles

    implicitWidth: text.width + 24
    implicitHeight: text.height + 16
    radius: 6
    color: "#d9202328"

    Text {
        id: text

        x: 12
        y: 8
        color: "#f2f3f5"
        font.pixelSize: 12
        text: qsTr("%1 frames/s, %2 ms a frame\n%3 shapes, %4 triangles").arg(root.view.renderStats.fps)
            .arg(root.view.renderStats.frameTime.toFixed(1)).arg(root.shapes).arg(root.triangles)
    }
}
