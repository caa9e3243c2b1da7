import QtQuick
import QtQuick3D

/// Draws lines in the colours of their ends, darker the deeper they lie between two planes.
CustomMaterial {
    property real nearest: 0
    property real farthest: 1

    shadingMode: CustomMaterial.Unshaded
    vertexShader: "line.vert"
    fragmentShader: "shape.frag"
}
