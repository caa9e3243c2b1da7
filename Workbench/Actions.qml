import QtQuick
import QtQuick.Controls
import Gavrel.PreviewContent
import Gavrel.Viewport
import Gavrel.Views
import Gavrel.Workbench

/// All actions of the window. Menus and buttons show these and define none of their own.
QtObject {
    id: root

    required property Item content
    property UpdateManager updateManager: null
    readonly property ProjectViewModel model: content.projectViewModel
    readonly property FileFlow files: content.files
    readonly property Calculation calculation: content.calculation
    readonly property VisualizationView view: content.visualization
    readonly property bool enoughNodes: model.selectedNodesForTruss.length >= 2

    signal aboutRequested()
    signal updateCheckRequested()
    signal helpRequested()

    function toggleMode(target) {
        model.appMode = model.appMode === AppMode.normal ? target : AppMode.normal;
        model.selectedNodesForTruss = [];
    }

    component Command: Action {
        /// The text on a button.
        property string label: text.replace("&", "")
        /// Whether the action is enabled while no sheet or panel is open.
        property bool available: true

        enabled: available && !root.content.blocked
    }

    // Gavrel

    readonly property Command about: Command {
        text: qsTr("&About Gavrel")
        onTriggered: root.aboutRequested()
    }
    readonly property Command checkForUpdates: Command {
        text: qsTr("Check for &Updates...")
        shortcut: "Ctrl+U"
        onTriggered: root.updateCheckRequested()
    }
    readonly property Command checkAtStart: Command {
        text: qsTr("Check for Updates at &Start")
        available: root.updateManager !== null
        checkable: true
        checked: root.updateManager !== null && root.updateManager.checksAtStart
        onToggled: root.updateManager.checksAtStart = checked
    }
    readonly property Command quit: Command {
        text: qsTr("&Quit")
        shortcut: StandardKey.Quit
        enabled: true  // while a sheet is open, too: it asks about unsaved changes
        onTriggered: Qt.quit()
    }

    // File

    readonly property Command newProject: Command {
        text: qsTr("&New")
        shortcut: StandardKey.New
        onTriggered: root.files.newProject()
    }
    readonly property Command open: Command {
        text: qsTr("&Open…")
        label: qsTr("Open...")
        shortcut: StandardKey.Open
        onTriggered: root.files.showOpenPanel()
    }
    readonly property Command restorePrevious: Command {
        text: qsTr("&Restore Previous Structure")
        available: root.model.hasPrevious
        onTriggered: root.files.restorePrevious()
    }
    readonly property Command save: Command {
        text: qsTr("&Save")
        shortcut: StandardKey.Save
        onTriggered: root.files.save()
    }
    readonly property Command saveAs: Command {
        text: qsTr("Save &As…")
        label: qsTr("Save As...")
        shortcut: "Ctrl+Shift+S"
        onTriggered: root.files.showSavePanel()
    }
    readonly property Command importFiles: Command {
        text: qsTr("&Import…")
        shortcut: "Ctrl+I"
        onTriggered: root.files.showImportPanel()
    }
    readonly property Command exportNodes: Command {
        text: qsTr("&Node Table (CSV)…")
        onTriggered: root.files.exportNodes()
    }
    readonly property Command exportElements: Command {
        text: qsTr("&Element Table (CSV)…")
        onTriggered: root.files.exportElements()
    }
    readonly property Command exportVtu: Command {
        text: qsTr("&ParaView Grid (VTU)…")
        onTriggered: root.files.exportVtu()
    }
    readonly property Command exportPicture: Command {
        text: qsTr("P&icture (PNG)…")
        onTriggered: root.files.exportPicture()
    }

    // View

    readonly property Command fit: Command {
        text: qsTr("&Fit to Structure")
        shortcut: "Ctrl+0"
        onTriggered: root.view.camera.fit()
    }
    readonly property Command front: Command {
        text: qsTr("Fr&ont")
        shortcut: "Ctrl+1"
        onTriggered: root.view.camera.show(ViewCamera.Front)
    }
    readonly property Command top: Command {
        text: qsTr("&Top")
        shortcut: "Ctrl+2"
        onTriggered: root.view.camera.show(ViewCamera.Top)
    }
    readonly property Command right: Command {
        text: qsTr("&Right")
        shortcut: "Ctrl+3"
        onTriggered: root.view.camera.show(ViewCamera.Right)
    }
    readonly property Command isometric: Command {
        text: qsTr("&Isometric")
        shortcut: "Ctrl+4"
        onTriggered: root.view.camera.show(ViewCamera.Isometric)
    }
    readonly property Command parallelProjection: Command {
        text: qsTr("&Parallel Projection")
        shortcut: "P"
        checkable: true
        checked: root.view.camera.parallel
        onTriggered: root.view.camera.parallel = checked
    }
    readonly property Command zUpright: Command {
        text: qsTr("&z Axis Upright")
        checkable: true
        checked: root.view.camera.zUp
        onTriggered: root.view.camera.zUp = checked
    }
    readonly property Command showStrain: Command {
        text: qsTr("&Show Strain")
        checkable: true
        checked: root.model.isStrainVisualizationActive
        onTriggered: root.model.isStrainVisualizationActive = !root.model.isStrainVisualizationActive
    }
    readonly property Command showNodeNumbers: Command {
        text: qsTr("&Node Numbers")
        checkable: true
        checked: root.view.showsNodeNumbers
        onToggled: root.view.showsNodeNumbers = checked
    }
    readonly property Command showElementNumbers: Command {
        text: qsTr("&Element Numbers")
        checkable: true
        checked: root.view.showsElementNumbers
        onToggled: root.view.showsElementNumbers = checked
    }
    readonly property Command showStatistics: Command {
        text: qsTr("Rendering S&tatistics")
        checkable: true
        onToggled: root.view.options = checked ? 3 : 2
    }

    // Structure

    readonly property Command addNode: Command {
        text: qsTr("Add N&ode…")
        label: qsTr("Add Node")
        shortcut: "Ctrl+Shift+N"
        onTriggered: {
            root.model.appMode = AppMode.normal;
            root.content.showingAddNodeSheet = true;
        }
    }
    readonly property Command selectForTruss: Command {
        text: root.model.appMode === AppMode.addingTruss ? qsTr("Done &Selecting") : qsTr("&Select for Truss")
        available: root.model.appMode !== AppMode.addingBeam
        onTriggered: root.toggleMode(AppMode.addingTruss)
    }
    readonly property Command selectForBeam: Command {
        text: root.model.appMode === AppMode.addingBeam ? qsTr("Done Se&lecting") : qsTr("Se&lect for Beam")
        available: root.model.appMode !== AppMode.addingTruss
        onTriggered: root.toggleMode(AppMode.addingBeam)
    }
    readonly property Command addTruss: Command {
        text: qsTr("Add &Truss…")
        label: qsTr("Add Truss")
        available: root.enoughNodes && root.model.appMode === AppMode.addingTruss
        onTriggered: root.content.showingTrussConfigSheet = true
    }
    readonly property Command addBeam: Command {
        text: qsTr("Add B&eam…")
        label: qsTr("Add Beam")
        available: root.enoughNodes && root.model.appMode === AppMode.addingBeam
        onTriggered: root.content.showingBeamConfigSheet = true
    }
    readonly property Command calculate: Command {
        text: qsTr("&Calculate")
        shortcut: "Ctrl+R"
        onTriggered: root.calculation.run()
    }
    readonly property Command checkBeforeCalculating: Command {
        text: qsTr("Check &Before Calculating")
        checkable: true
        checked: root.calculation.checks
        onToggled: root.calculation.checks = checked
    }
    readonly property Command showConvergence: Command {
        text: qsTr("&Convergence…")
        available: root.calculation.residuals.length > 0
        onTriggered: root.content.showingConvergence = true
    }
    readonly property Command showFindings: Command {
        text: qsTr("&Findings")
        onTriggered: root.content.dock.show(0)
    }
    readonly property Command showNodeTable: Command {
        text: qsTr("&Node Table")
        shortcut: "Ctrl+T"
        onTriggered: root.content.dock.show(1)
    }
    readonly property Command showElementTable: Command {
        text: qsTr("&Element Table")
        shortcut: "Ctrl+Shift+T"
        onTriggered: root.content.dock.show(2)
    }

    // Help

    readonly property Command help: Command {
        text: qsTr("&Mouse and Keys")
        onTriggered: root.helpRequested()
    }
}
