import QtQuick
import Gavrel.Viewport

/// The frame time of the window and the numbers of shapes and triangles in the 3D area.
Rectangle {
    id: root

    required property int shapes
    required property int triangles

    implicitWidth: text.width + 24
    implicitHeight: text.height + 16
    radius: 6
    color: "#d9202328"

    FrameTimer {
        id: timer

        window: root.visible ? root.Window.window : null
    }

    Text {
        id: text

        objectName: "renderingStatistics"
        x: 12
        y: 8
        color: "#f2f3f5"
        font.pixelSize: 12
        text: qsTr("%1 ms a frame\n%2 shapes, %3 triangles").arg(timer.milliseconds.toFixed(1)).arg(root.shapes)
            .arg(root.triangles)
    }
}
