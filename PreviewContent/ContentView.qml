import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views

/// The main window's working surface: magnification, the 3D area, and the command row.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    required property Actions actions
    property bool showingAddNodeSheet: false
    property bool showingTrussConfigSheet: false
    property bool showingBeamConfigSheet: false
    property real displacementMagnification: 1.0
    property bool showingConvergence: false
    /// Set by the window while something of its own lies over this.
    property bool covered: false

    readonly property alias calculation: solver
    readonly property alias visualization: view
    readonly property alias dock: dataDock
    readonly property alias files: flow
    readonly property bool compact: width < 1000
    readonly property bool narrow: width < 790
    /// Whether a sheet or panel is open, so that what lies behind it has to wait.
    readonly property bool blocked: covered || view.showingSheet || flow.busy
        || [forms, convergence, endQuestion].some(sheet => sheet.presented)

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

    FileFlow {
        id: flow

        projectViewModel: root.projectViewModel
        onPictureWanted: file => view.grabToImage(grabbed => writePicture(grabbed.image, file))
        onImportedIntoEmpty: view.showWhole()
    }

    DropArea {
        anchors.fill: parent
        enabled: !root.blocked
        keys: ["text/uri-list"]
        onDropped: drop => flow.drop(drop.urls)
    }

    Calculation {
        id: solver

        projectViewModel: root.projectViewModel
        onFound: dataDock.show(0)
    }

    ColumnLayout {
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
                paused: solver.running
                onNodeClicked: node => dataDock.showNode(node)
                onElementClicked: (isBeam, element) => dataDock.showElement(isBeam, element)
            }
            DataDock {
                id: dataDock

                objectName: "dock"
                SplitView.preferredHeight: Math.min(240, 0.4 * root.height)
                SplitView.minimumHeight: 110
                SplitView.maximumHeight: split.height - 110  // what a dock that was drawn up leaves to the 3D area
                projectViewModel: root.projectViewModel
                calculation: solver
            }
        }

        CommandRow {
            Layout.alignment: Qt.AlignHCenter
            actions: root.actions
            compact: root.compact
            narrow: root.narrow
        }
    }

    ElementForms {
        id: forms

        content: root
    }

    Sheet {
        id: convergence

        presented: root.showingConvergence
        onDismissed: root.showingConvergence = false

        ConvergenceView {
            outcome: solver.outcome
            residuals: solver.residuals
            tolerance: solver.tolerance
        }
    }

    Sheet {
        id: endQuestion

        presented: solver.reasonToEnd !== ""
        onDismissed: solver.answer(false)

        QuestionView {
            question: qsTr("Calculate, and end Gavrel?")
            explanation: qsTr("%1\n\nGavrel will end. What is not saved is offered at the next start.").arg(solver.reasonToEnd)
            losing: qsTr("Calculate Anyway")
            nothing: ""
            usual: qsTr("Cancel")
            onLost: solver.answer(true)
            onChosen: solver.answer(false)
        }
    }

    FileSheets {
        flow: flow
    }
}
