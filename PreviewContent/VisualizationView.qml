import QtQuick
import Gavrel.PreviewContent
import Gavrel.Viewport
import Gavrel.Views

/// The 3D area with the sheets that a click on a node or an element opens.
///
/// A click on a node asks for both sheets, since its last digit also selects an element. The node's sheet is then shown
/// first, and the element's after it is closed.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    property real displacementMagnification: 1
    property bool isStrainVisualizationActive: false

    property var selectedNode: null
    property var selectedElement: null
    property bool showingNodeDetailSheet: false
    property bool showingElementDetailSheet: false
    // The selections that opened the sheets.
    property var shownNode: null
    property var shownElement: null

    property alias options: sceneView.options
    property alias paused: sceneView.paused
    property alias showsNodeNumbers: sceneView.showsNodeNumbers
    property alias showsElementNumbers: sceneView.showsElementNumbers
    readonly property alias camera: sceneView.camera
    readonly property bool showingSheet: showingNodeDetailSheet || showingElementDetailSheet

    signal nodeClicked(var node)
    signal elementClicked(bool isBeam, var element)

    onSelectedNodeChanged: showingNodeDetailSheet = projectViewModel.appMode === AppMode.normal && selectedNode !== null
    onSelectedElementChanged: showingElementDetailSheet = selectedElement !== null
    // Later, when the click has set both selections.
    onShowingNodeDetailSheetChanged: Qt.callLater(present)
    onShowingElementDetailSheetChanged: Qt.callLater(present)

    // Compares values, since assigning the same value emits a change, too.
    function selectNode(node) {
        if (node !== selectedNode)
            selectedNode = node;
    }

    function selectElement(element) {
        if (element !== selectedElement)
            selectedElement = element;
    }

    function present() {
        if (showingNodeDetailSheet)
            shownNode = selectedNode;
        if (showingElementDetailSheet)
            shownElement = selectedElement;
        nodeSheet.presented = showingNodeDetailSheet;
        elementSheet.presented = showingElementDetailSheet && !showingNodeDetailSheet;
    }

    /// Looks at the whole structure from the side and from above, with the axis upright along which the loads act.
    function showWhole() {
        sceneView.contents.update();
        sceneView.camera.zUp = sceneView.contents.loadsActAlongZ();
        sceneView.camera.show(ViewCamera.Overview);
    }

    SceneKitView {
        id: sceneView

        anchors.fill: parent
        projectViewModel: root.projectViewModel
        displacementMagnification: root.displacementMagnification
        isStrainVisualizationActive: root.isStrainVisualizationActive
        onNodeSelected: node => root.selectNode(node)
        onElementSelected: element => root.selectElement(element)
        onNodeClicked: node => root.nodeClicked(node)
        onElementClicked: (isBeam, element) => root.elementClicked(isBeam, element)
    }

    Text {
        anchors.centerIn: parent
        visible: root.projectViewModel.numberOfNodes === 0
        horizontalAlignment: Text.AlignHCenter
        lineHeight: 1.4
        font.pixelSize: 15
        color: "#f4f4f4"
        text: qsTr("The structure is empty\nStart with Add Node, or open a project with Open...")
    }

    Sheet {
        id: nodeSheet

        onDismissed: root.showingNodeDetailSheet = false
        content: root.selectedNode !== null && root.projectViewModel.appMode === AppMode.normal ? nodeDetail : null
    }

    Sheet {
        id: elementSheet

        onDismissed: root.showingElementDetailSheet = false
        content: root.selectedElement !== null ? elementDetail : null
    }

    Component {
        id: nodeDetail

        NodeDetailView {
            nodeID: root.shownNode
            projectViewModel: root.projectViewModel
            selectedNodeForSheet: root.selectedNode
            onSelectedNodeForSheetChanged: root.selectNode(selectedNodeForSheet)
        }
    }

    Component {
        id: elementDetail

        TrussDetailView {
            elementID: root.shownElement
            projectViewModel: root.projectViewModel
            selectedElementForSheet: root.selectedElement
            onSelectedElementForSheetChanged: root.selectElement(selectedElementForSheet)
        }
    }
}
