import QtQuick
import QtQuick.Controls
import QtTest
import Gavrel.PreviewContent
import Gavrel.Workbench
import "../Qml"

/// The menus, opened and pressed by their actions.
ProjectCase {
    name: "MainMenu"
    width: 1000
    height: 700

    model: ProjectViewModel {}
    content: surface

    Workbench {
        id: surface

        anchors.fill: parent
        projectViewModel: model
        actions: Actions {
            content: surface
            updateManager: updates.manager
        }
    }

    MainMenu {
        id: menus

        actions: surface.actions
    }

    SignalSpy { id: checks; target: content.actions; signalName: "updateCheckRequested" }

    function action(menu, text) {
        const index = texts(menu).indexOf(text);
        verify(index >= 0, text);
        return menus.menuAt(menu).actionAt(index);
    }

    function texts(menu) {
        const actions = Array.from({ length: menus.menuAt(menu).count }, (_, i) => menus.menuAt(menu).actionAt(i));
        return actions.map(item => item ? item.text.replace("&", "") : "-");
    }

    function test_items() {
        compare(texts(0), ["About Gavrel", "Check for Updates...", "Check for Updates at Start", "-", "Quit"]);
        compare(texts(1), ["New", "Open…", "-", "Restore Previous Structure", "-", "Save", "Save As…", "-", "Import…", "-"]);
        compare(texts(2), ["Fit to Structure", "-", "Front", "Top", "Right", "Isometric", "-", "Parallel Projection", "z Axis Upright", "-",
                           "Show Strain", "Node Numbers", "Element Numbers", "Rendering Statistics"]);
        compare(texts(3), ["Add Node…", "Select for Truss", "Select for Beam", "Add Truss…", "Add Beam…", "-", "Calculate", "Check Before Calculating", "Convergence…", "-", "Findings", "Node Table", "Element Table"]);
        compare(action(0, "Check for Updates...").shortcut, "Ctrl+U");
        action(0, "Check for Updates...").trigger();
        compare(checks.count, 1);
    }

    function test_checksAtStartAreSwitchedOff() {
        for (const wanted of [false, true]) {
            action(0, "Check for Updates at Start").trigger();
            compare(updates.manager.checksAtStart, wanted);
        }
    }

    function test_viewSwitches() {
        action(2, "Show Strain").trigger();
        verify(model.isStrainVisualizationActive);
        model.isStrainVisualizationActive = false;
        verify(!action(2, "Show Strain").checked, "follows the command row");
        for (const [text, property] of [["Node Numbers", "showsNodeNumbers"], ["Element Numbers", "showsElementNumbers"]]) {
            action(2, text).trigger();
            verify(content.visualization[property], text);
            action(2, text).trigger();
            verify(!content.visualization[property], text);
        }
        action(2, "Rendering Statistics").trigger();
        compare(content.visualization.options, 3);
        action(2, "Rendering Statistics").trigger();
        compare(content.visualization.options, 2);
        action(2, "z Axis Upright").trigger();
        verify(content.visualization.camera.zUp);
        content.visualization.camera.zUp = false;
        verify(!action(2, "z Axis Upright").checked);
    }

    function test_structureCommands() {
        verify(action(3, "Check Before Calculating").checked);
        action(3, "Check Before Calculating").trigger();
        verify(!content.calculation.checks);
        action(3, "Check Before Calculating").trigger();
        verify(content.calculation.checks);
        for (const [text, tab] of [["Findings", 0], ["Node Table", 1], ["Element Table", 2]]) {
            content.dock.open = false;
            action(3, text).trigger();
            verify(content.dock.open);
            compare(content.dock.currentTab, tab);
        }
    }

    function test_whatLiesBehindASheetRests_data() {
        return [
            { tag: "node form", open: () => content.actions.addNode.trigger() },
            { tag: "truss form", open: () => content.showingTrussConfigSheet = true },
            { tag: "beam form", open: () => content.showingBeamConfigSheet = true },
            { tag: "convergence", open: () => content.showingConvergence = true },
            { tag: "import", open: () => content.files.drop([Qt.resolvedUrl("nodes.csv")]) },
            { tag: "unsaved changes", open: () => action(1, "New").trigger() },
            { tag: "node", open: () => content.visualization.selectedNode = 0 },
            { tag: "element", open: () => content.visualization.selectedElement = 0 },
        ];
    }

    function test_whatLiesBehindASheetRests(data) {
        model.newProject();
        addNodes(2, true);
        model.appMode = data.tag === "node" ? AppMode.normal : AppMode.addingTruss;
        model.selectedNodesForTruss = [0, 1];
        const enabled = () => [0, 1, 2, 3].reduce((all, menu) => all.concat(
            texts(menu).filter(text => text !== "-" && action(menu, text).enabled)), []);
        const before = enabled();
        verify(before.length > 20);
        data.open();
        tryVerify(() => content.blocked);
        compare(enabled(), ["Quit"]);
        verify(!menus.enabled);
        keyClick("N", Qt.ControlModifier);
        keyClick("S", Qt.ControlModifier);
        compare(model.numberOfNodes, 2);
        wait(0);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !content.blocked);
        content.visualization.selectedNode = content.visualization.selectedElement = null;
        model.appMode = data.tag === "node" ? AppMode.normal : AppMode.addingTruss;
        model.selectedNodesForTruss = [0, 1];
        compare(enabled(), before);
        model.discardChanges();
    }

    function test_whatAFailedOpenHasReplacedCanBeRestored() {
        model.newProject();
        verify(!action(1, "Restore Previous Structure").enabled);
        model.addNode(1, 2, 3, false);
        printed(() => model.loadProject("file:///does/not/exist.json"));
        keyClick(Qt.Key_Escape);
        action(1, "Restore Previous Structure").trigger();
        compare(model.numberOfNodes, 1);
        verify(!action(1, "Restore Previous Structure").enabled);
        model.discardChanges();
    }
}
