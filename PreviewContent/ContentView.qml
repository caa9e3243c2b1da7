import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Gavrel.PreviewContent

/// The main window's working surface: magnification, the 3D area, and the command row.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    property bool showingAddNodeSheet: false
    property bool showingTrussConfigSheet: false
    property bool showingBeamConfigSheet: false
    property real displacementMagnification: 1.0
    property var waitingAction: null
    property bool showingConvergence: false
    property var filesToImport: []
    property string notice: ""

    readonly property alias calculation: solver
    readonly property alias visualization: view
    readonly property alias dock: dataDock
    readonly property bool compact: width < 1000

    function toggleMode(target) {
        projectViewModel.appMode = projectViewModel.appMode === AppMode.normal ? target : AppMode.normal;
        projectViewModel.selectedNodesForTruss = [];
    }

    function addNode() {
        projectViewModel.appMode = AppMode.normal;
        showingAddNodeSheet = true;
    }

    function toggleStrain() {
        projectViewModel.isStrainVisualizationActive = !projectViewModel.isStrainVisualizationActive;
    }

    function save() {
        if (projectViewModel.saveProject())
            goOn();
        else
            showSavePanel();
    }

    function showSavePanel() {
        savePanel.currentFolder = projectViewModel.currentFolder;
        savePanel.selectedFile = projectViewModel.currentFolder + "/"
            + encodeURIComponent(projectViewModel.projectName.replace(/\//g, "-") + ".json");
        savePanel.open();
    }

    /// Does this at once, or when the user has answered what is to become of unsaved changes. Not if the answer is to stay.
    function whenSaved(action) {
        if (projectViewModel.hasUnsavedChanges)
            waitingAction = action;
        else
            action();
    }

    function goOn() {
        const action = waitingAction;
        waitingAction = null;
        if (action)
            action();
    }

    function newProject() {
        whenSaved(() => projectViewModel.newProject());
    }

    function showOpenPanel() {
        whenSaved(() => openFrom(openPanel));
    }

    function open(url) {
        whenSaved(() => projectViewModel.loadProject(url));
    }

    function openFrom(panel) {
        panel.currentFolder = projectViewModel.currentFolder;
        panel.open();
    }

    function showImportPanel() {
        openFrom(importPanel);
    }

    /// Asks for a file and gives it to the function, whose answer, unless it is empty, is shown.
    function exportWith(write, name, suffix) {
        exportPanel.write = write;
        exportPanel.defaultSuffix = suffix;
        exportPanel.nameFilters = [suffix.toUpperCase() + " (*." + suffix + ")"];
        exportPanel.currentFolder = projectViewModel.currentFolder;
        exportPanel.selectedFile = projectViewModel.currentFolder + "/" + encodeURIComponent(name + "." + suffix);
        exportPanel.open();
    }

    function exportNodes() {
        exportWith(file => notice = exchange.exportNodes(file), "nodes", "csv");
    }

    function exportElements() {
        exportWith(file => notice = exchange.exportElements(file), "elements", "csv");
    }

    function exportVtu() {
        exportWith(file => notice = exchange.exportVtu(file), projectViewModel.projectName.replace(/\//g, "-"), "vtu");
    }

    function exportPicture() {
        exportWith(file => view.grabToImage(grabbed => notice = exchange.exportPicture(grabbed.image, file)),
            projectViewModel.projectName.replace(/\//g, "-"), "png");
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

    FileExchange {
        id: exchange

        projectViewModel: root.projectViewModel
    }

    DropArea {
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: drop => {
            const urls = drop.urls.map(url => url);  // the event's own list goes with it
            if (urls.every(url => /\.(csv|dxf)$/i.test(url)))
                root.filesToImport = urls;
            else if (urls.length === 1)
                root.open(urls[0]);
            else
                StandardOutput.print("Drop one project file at a time.");
        }
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
                SplitView.preferredHeight: 240
                SplitView.minimumHeight: 110
                projectViewModel: root.projectViewModel
                calculation: solver
            }
        }

        CommandRow {
            Layout.alignment: Qt.AlignHCenter
            commands: root
            compact: root.compact
        }
    }

    Sheet {
        presented: root.showingAddNodeSheet
        onDismissed: root.showingAddNodeSheet = false

        AddNodeView {
            projectViewModel: root.projectViewModel
        }
    }

    Sheet {
        presented: root.showingTrussConfigSheet
        onDismissed: root.showingTrussConfigSheet = false
        content: root.projectViewModel.selectedNodesForTruss.length >= 2 ? trussForm : null
    }

    Sheet {
        presented: root.showingBeamConfigSheet
        onDismissed: root.showingBeamConfigSheet = false
        content: root.projectViewModel.selectedNodesForTruss.length >= 2 ? beamForm : null
    }

    Sheet {
        presented: root.showingConvergence
        onDismissed: root.showingConvergence = false

        ConvergenceView {
            outcome: solver.outcome
            residuals: solver.residuals
            tolerance: solver.tolerance
        }
    }

    Sheet {
        presented: root.filesToImport.length > 0
        onDismissed: root.filesToImport = []

        ImportView {
            files: root.filesToImport
            onConfirmed: (area, youngModulus, isNonLinear) => {
                const wasEmpty = root.projectViewModel.numberOfNodes === 0;
                root.notice = exchange.importFiles(root.filesToImport, area, youngModulus, isNonLinear);
                if (wasEmpty)
                    view.showWhole();
                dismiss();
            }
        }
    }

    Sheet {
        presented: root.notice !== ""
        onDismissed: root.notice = ""

        NoticeView {
            text: root.notice
        }
    }

    Sheet {
        presented: root.waitingAction !== null && !savePanel.visible
        onDismissed: root.waitingAction = null

        QuestionView {
            question: qsTr("Save the changes to “%1”?").arg(root.projectViewModel.currentFileName || root.projectViewModel.projectName)
            explanation: qsTr("They are lost otherwise.")
            losing: qsTr("Discard")
            nothing: qsTr("Cancel")
            usual: qsTr("Save")
            onLost: root.goOn()
            onChosen: root.save()
        }
    }

    Component {
        id: trussForm

        AddTrussView {
            nodeIDs: root.projectViewModel.selectedNodesForTruss
            projectViewModel: root.projectViewModel
        }
    }

    Component {
        id: beamForm

        AddBeamView {
            nodeIDs: root.projectViewModel.selectedNodesForTruss
            projectViewModel: root.projectViewModel
        }
    }

    component JsonPanel: FileDialog {
        nameFilters: [qsTr("JSON files (*.json)")]
        defaultSuffix: "json"
    }

    JsonPanel {
        id: savePanel

        title: qsTr("Save Project")
        fileMode: FileDialog.SaveFile
        acceptLabel: qsTr("Save")
        onAccepted: {
            if (root.projectViewModel.saveProject(selectedFile))
                root.goOn();
            else
                root.waitingAction = null;
        }
        onRejected: root.waitingAction = null
    }

    JsonPanel {
        id: openPanel

        title: qsTr("Open Project")
        fileMode: FileDialog.OpenFile
        onAccepted: root.projectViewModel.loadProject(selectedFile)
    }

    FileDialog {
        id: importPanel

        title: qsTr("Import Tables and Drawings")
        fileMode: FileDialog.OpenFiles
        nameFilters: [qsTr("Tables and drawings (*.csv *.CSV *.txt *.dxf *.DXF)")]
        onAccepted: root.filesToImport = selectedFiles.map(file => file)
    }

    FileDialog {
        id: exportPanel

        property var write: null

        title: qsTr("Export")
        fileMode: FileDialog.SaveFile
        acceptLabel: qsTr("Export")
        onAccepted: write(selectedFile)
    }
}
