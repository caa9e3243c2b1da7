import QtQuick
import QtQuick.Shapes

/// A filled shape with a light sign in it.
Item {
    id: root

    enum Sign {
        ArrowDown,
        Checkmark,
        ExclamationMark
    }

    required property int sign
    required property color color

    implicitWidth: 48
    implicitHeight: 48

    // Paths in a square of 48 units.
    readonly property string circle: "M 24 2 A 22 22 0 1 1 23.99 2 Z"
    readonly property string triangle: "M 24 4 Q 26 4 27.2 6 L 46 39 Q 48 44 43 44 L 5 44 Q 0 44 2 39 L 20.8 6 Q 22 4 24 4 Z"
    readonly property var strokes: ["M 24 12 L 24 34 M 15 26 L 24 35 L 33 26", "M 14 25 L 21.5 32.5 L 34.5 16.5",
        "M 24 17 L 24 29 M 24 36.4 L 24 36.6"]

    Shape {
        anchors.centerIn: parent
        width: 48
        height: 48
        scale: root.width / 48
        layer.enabled: true
        layer.samples: 4

        ShapePath {
            strokeColor: "transparent"
            fillColor: root.color

            PathSvg {
                path: root.sign === Symbol.ExclamationMark ? root.triangle : root.circle
            }
        }
        ShapePath {
            strokeColor: "white"
            strokeWidth: 4
            capStyle: ShapePath.RoundCap
            joinStyle: ShapePath.RoundJoin
            fillColor: "transparent"

            PathSvg {
                path: root.strokes[root.sign]
            }
        }
    }
}
