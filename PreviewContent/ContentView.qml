import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views

/// The main window's working surface: magnification, the 3D area, and the forms for new elements. The workbench adds the
/// rest.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    property bool showingAddNodeSheet: false
    property bool showingTrussConfigSheet: false
    property bool showingBeamConfigSheet: false
    property real displacementMagnification: 1.0
    /// Whether the 3D area does not draw changes for now.
    property alias paused: view.paused
    /// The panels below the 3D area, separated from it by a handle.
    property alias panels: split.contentData
    /// The rows below the panels.
    property alias rows: column.data

    readonly property alias visualization: view
    readonly property alias heightOfPanels: split.height
    readonly property bool showingSheet: view.showingSheet || forms.presented

    signal nodeClicked(var node)
    signal elementClicked(bool isBeam, var element)

    Keys.onEscapePressed: event => {
        event.accepted = projectViewModel.hasMarks;
        projectViewModel.clearMarks();
    }

    function selectionMessage(nodes, mode) {
        const word = mode === AppMode.addingTruss ? "truss" : "beam";
        const command = mode === AppMode.addingTruss ? "Truss" : "Beam";
        if (nodes.length === 0)
            return "No nodes selected for " + word + ".";
        if (nodes.length === 1)
            return "One node selected for " + word + ": " + nodes[0];
        if (nodes.length === 2)
            return "Two nodes selected for " + word + ": " + nodes[0] + ", " + nodes[1] + ". 'Add " + command
                + " (Configure)' button is now enabled.";
        return "More than two nodes selected for " + word + ".";
    }

    Connections {
        target: root.projectViewModel

        function onSelectedNodesForTrussChanged() {
            const model = root.projectViewModel;
            if (model.appMode !== AppMode.normal)
                StandardOutput.print(root.selectionMessage(model.selectedNodesForTruss, model.appMode));
        }

        function onProjectLoaded() {
            view.showWhole();
        }
    }

    ColumnLayout {
        id: column

        anchors {
            fill: parent
            margins: 8
        }
        spacing: 8

        RowLayout {
            Layout.leftMargin: 8
            Layout.rightMargin: 8
            spacing: 8

            Label {
                text: qsTr("Magnification:")
            }
            Slider {
                id: magnification

                objectName: "magnification"
                Layout.fillWidth: true
                from: 0.0
                to: 10.0
                value: root.displacementMagnification
                onMoved: root.displacementMagnification = value
                Accessible.name: qsTr("Magnification")
            }
            Label {
                objectName: "magnificationText"
                Layout.minimumWidth: widest.width
                horizontalAlignment: Text.AlignRight
                text: NumberFormat.fixed(root.displacementMagnification, 1)

                TextMetrics {
                    id: widest

                    text: "10.0"
                }
            }
        }

        SplitView {
            id: split

            Layout.fillWidth: true
            Layout.fillHeight: true
            orientation: Qt.Vertical

            VisualizationView {
                id: view

                SplitView.fillHeight: true
                SplitView.minimumHeight: 100
                projectViewModel: root.projectViewModel
                displacementMagnification: root.displacementMagnification
                isStrainVisualizationActive: root.projectViewModel.isStrainVisualizationActive
                onNodeClicked: node => root.nodeClicked(node)
                onElementClicked: (isBeam, element) => root.elementClicked(isBeam, element)
            }
        }
    }

    ElementForms {
        id: forms

        content: root
    }
}
