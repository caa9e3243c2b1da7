import QtQuick
import QtQuick3D
import Gavrel.Viewport

/// Draws a scene, and lets its user turn it and click on it.
Item {
    id: root

    required property DrawnScene contents
    property bool navigable: true
    property bool selecting: false
    property bool showsNodeNumbers: false
    property bool showsElementNumbers: false
    property bool showsStatistics: false
    readonly property alias camera: viewCamera
    // Corners of a tube's section, by the number of tubes and whether graphics hardware draws them.
    readonly property int shapeSides: {
        const tubes = root.contents.tubes.size;
        const fine = tubes <= 2000 ? 20 : tubes <= 20000 ? 12 : 8;
        return hardware.accelerated ? fine : tubes <= 2000 ? fine : tubes <= 20000 ? 8 : 4;
    }
    readonly property bool antialiased: hardware.accelerated || root.contents.tubes.size <= 5000

    // Without a graphics processor, a large structure is drawn as lines until it has come to rest.
    readonly property bool asLines: moving && !hardware.accelerated && root.contents.tubes.size > 5000
    property bool moving: false

    ViewCamera {
        id: viewCamera

        onTurned: {
            root.moving = true;
            rest.restart();
        }

        contents: root.contents
        width: root.width
        height: root.height
        corner: triad.width + 2 * triad.anchors.margins
    }

    Timer {
        id: rest

        interval: 300
        onTriggered: root.moving = false
    }

    GraphicsHardware {
        id: hardware
    }

    component Shapes: Model {
        id: shapes

        required property int shape
        readonly property int triangles: instancing.size * geometry.triangles

        pickable: false
        geometry: ShapeGeometry {
            shape: shapes.shape
            sides: root.shapeSides
        }
        materials: ShapeMaterial {
            thickening: viewCamera.thickening
            thickness: viewCamera.thickness
            lightDirection: viewCamera.lightDirection
            isBall: shapes.shape === ShapeGeometry.Ball
        }
    }

    View3D {
        anchors.fill: parent
        camera: viewCamera.parallel ? parallelCamera : perspectiveCamera
        environment: SceneEnvironment {
            backgroundMode: SceneEnvironment.Color
            clearColor: root.contents.background
            antialiasingMode: root.antialiased ? SceneEnvironment.MSAA : SceneEnvironment.NoAA
            antialiasingQuality: SceneEnvironment.Medium
            tonemapMode: SceneEnvironment.TonemapModeNone
        }

        PerspectiveCamera {
            id: perspectiveCamera

            position: viewCamera.position
            rotation: viewCamera.rotation
            fieldOfView: viewCamera.fieldOfView
            clipNear: viewCamera.clipNear
            clipFar: viewCamera.clipFar
        }
        OrthographicCamera {
            id: parallelCamera

            position: viewCamera.position
            rotation: viewCamera.rotation
            horizontalMagnification: viewCamera.magnification
            verticalMagnification: viewCamera.magnification
            clipNear: viewCamera.clipNear
            clipFar: viewCamera.clipFar
        }
        Shapes {
            id: balls

            visible: !root.asLines
            shape: ShapeGeometry.Ball
            instancing: root.contents.balls
        }
        Shapes {
            id: tubes

            visible: !root.asLines
            shape: ShapeGeometry.Tube
            instancing: root.contents.tubes
        }
        Model {
            visible: root.asLines
            geometry: LineGeometry {
                tubes: root.contents.tubes
                shown: root.asLines
            }
            materials: LineMaterial {
                nearest: viewCamera.clipNear
                farthest: viewCamera.clipFar
            }
        }
        Shapes {
            id: cones

            visible: !root.asLines
            shape: ShapeGeometry.Cone
            instancing: root.contents.cones
        }
        Shapes {
            shape: ShapeGeometry.Ball
            instancing: root.contents.markedBalls
        }
        Shapes {
            shape: ShapeGeometry.Tube
            instancing: root.contents.markedTubes
        }
        Shapes {
            shape: ShapeGeometry.Ball
            instancing: root.contents.highlightedBall
        }
        Shapes {
            shape: ShapeGeometry.Tube
            instancing: root.contents.highlightedTube
        }
    }

    SceneLabels {
        anchors.fill: parent
        camera: viewCamera
        nodeNumbers: root.showsNodeNumbers
        elementNumbers: root.showsElementNumbers
        visible: nodeNumbers || elementNumbers
    }

    Navigation {
        anchors.fill: parent
        camera: viewCamera
        enabled: root.navigable
        selecting: root.selecting
        onHoverEnded: root.contents.clearHighlight()
    }

    AxisTriad {
        id: triad

        anchors {
            left: parent.left
            bottom: parent.bottom
            margins: 8
        }
        width: 90
        height: 90
        camera: viewCamera
    }

    RenderingStatistics {
        anchors {
            left: parent.left
            top: parent.top
            margins: 12
        }
        visible: root.showsStatistics
        shapes: root.contents.balls.size + root.contents.tubes.size + root.contents.cones.size
        triangles: balls.triangles + tubes.triangles + cones.triangles
    }
}
