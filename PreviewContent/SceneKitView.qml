import QtQuick
import Gavrel.PreviewContent
import Gavrel.Viewport

/// The 3D area: draws the project's scene, and lets the user turn it and click on it.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    property int options: 2
    property real displacementMagnification: 1
    property bool isStrainVisualizationActive: false
    property bool paused: false
    property alias showsNodeNumbers: sceneView.showsNodeNumbers
    property alias showsElementNumbers: sceneView.showsElementNumbers
    readonly property alias camera: sceneView.camera
    readonly property alias contents: sceneContents

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

    SceneView {
        id: sceneView

        anchors.fill: parent
        contents: sceneContents
        navigable: (root.options & 2) !== 0
        selecting: root.projectViewModel.appMode !== AppMode.normal
        showsStatistics: (root.options & 1) !== 0
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
}
