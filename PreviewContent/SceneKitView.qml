import QtQuick
import QtQuick3D
import Gavrel.PreviewContent

/// The 3D area: draws the project's scene, and lets the user turn it and click on it.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    property int options: 2
    property real displacementMagnification: 1
    property bool isStrainVisualizationActive: false
    property bool paused: false
    property bool showsNodeNumbers: false
    property bool showsElementNumbers: false
    readonly property alias camera: viewCamera
    readonly property alias contents: sceneContents
    // Corners of a tube's section, by the number of tubes and by who draws them.
    readonly property int shapeSides: {
        const tubes = sceneContents.tubes.size;
        const fine = tubes <= 2000 ? 20 : tubes <= 20000 ? 12 : 8;
        return hardware.accelerated ? fine : tubes <= 2000 ? fine : tubes <= 20000 ? 8 : 4;
    }
    readonly property bool antialiased: hardware.accelerated || sceneContents.tubes.size <= 5000

    signal nodeSelected(var node)
    signal elementSelected(var element)
    signal nodeClicked(var node)
    signal elementClicked(bool isBeam, var element)

    SceneContents {
        id: sceneContents

        projectViewModel: root.projectViewModel
        displacementMagnification: root.displacementMagnification
        isStrainVisualizationActive: root.isStrainVisualizationActive
        paused: root.paused
        onNodeSelected: node => root.nodeSelected(node)
        onElementSelected: element => root.elementSelected(element)
        onNodeClicked: node => root.nodeClicked(node)
        onElementClicked: (isBeam, element) => root.elementClicked(isBeam, element)
    }

    ViewCamera {
        id: viewCamera

        contents: sceneContents
        width: root.width
        height: root.height
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
            lightDirection: viewCamera.lightDirection
            isBall: shapes.shape === ShapeGeometry.Ball
        }
    }

    View3D {
        anchors.fill: parent
        camera: camera
        environment: SceneEnvironment {
            backgroundMode: SceneEnvironment.Color
            clearColor: sceneContents.background
            antialiasingMode: root.antialiased ? SceneEnvironment.MSAA : SceneEnvironment.NoAA
            antialiasingQuality: SceneEnvironment.Medium
            tonemapMode: SceneEnvironment.TonemapModeNone
        }

        PerspectiveCamera {
            id: camera

            position: viewCamera.position
            rotation: viewCamera.rotation
            fieldOfView: viewCamera.fieldOfView
            clipNear: viewCamera.clipNear
            clipFar: viewCamera.clipFar
        }
        Shapes {
            id: balls

            shape: ShapeGeometry.Ball
            instancing: sceneContents.balls
        }
        Shapes {
            id: tubes

            shape: ShapeGeometry.Tube
            instancing: sceneContents.tubes
        }
        Shapes {
            id: cones

            shape: ShapeGeometry.Cone
            instancing: sceneContents.cones
        }
        Shapes {
            shape: ShapeGeometry.Ball
            instancing: sceneContents.markedBalls
        }
        Shapes {
            shape: ShapeGeometry.Tube
            instancing: sceneContents.markedTubes
        }
        Shapes {
            shape: ShapeGeometry.Ball
            instancing: sceneContents.highlightedBall
        }
        Shapes {
            shape: ShapeGeometry.Tube
            instancing: sceneContents.highlightedTube
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
        enabled: (root.options & 2) !== 0
        selecting: root.projectViewModel.appMode !== AppMode.normal
        onHoverEnded: sceneContents.clearHighlight()
    }

    AxisTriad {
        anchors {
            left: parent.left
            bottom: parent.bottom
            margins: 8
        }
        width: 90
        height: 90
        camera: viewCamera
    }

    StrainLegend {
        anchors {
            right: parent.right
            top: parent.top
            margins: 12
        }
        legend: root.isStrainVisualizationActive ? sceneContents.strainLegend : ({ shown: false })
        results: root.projectViewModel.resultsOutdated ? StrainLegend.Outdated
            : root.projectViewModel.hasResults ? StrainLegend.Current : StrainLegend.OfFile
    }

    Rectangle {
        objectName: "outdatedResults"
        anchors {
            horizontalCenter: parent.horizontalCenter
            top: parent.top
            topMargin: 12
        }
        visible: root.projectViewModel.resultsOutdated
        width: Math.min(outdated.implicitWidth + 24, parent.width - 24)
        height: outdated.height + 10
        radius: height / 2
        color: "#d9202328"

        Text {
            id: outdated

            anchors.centerIn: parent
            width: Math.min(implicitWidth, root.width - 48)
            elide: Text.ElideRight
            color: "#ffd28a"
            font.pixelSize: 12
            text: qsTr("Results are outdated: the structure was changed since they were calculated")
        }
    }

    RenderingStatistics {
        anchors {
            left: parent.left
            top: parent.top
            margins: 12
        }
        visible: (root.options & 1) !== 0
        shapes: sceneContents.balls.size + sceneContents.tubes.size + sceneContents.cones.size
        triangles: balls.triangles + tubes.triangles + cones.triangles
    }
}
