import QtQuick
import QtQuick3D

/// Lights an instanced shape as the scene's lights do: ambient light, and white light from above and in front.
CustomMaterial {
    property real thickening: 0
    property real thickness: 1
    property bool isBall: false
    property vector3d lightDirection: Qt.vector3d(0, 0.70710678, 0.70710678)

    shadingMode: CustomMaterial.Unshaded
    vertexShader: "shape.vert"
    fragmentShader: "shape.frag"
}
