import QtQuick
import QtQuick.Controls
import QtTest
import Gavrel.PreviewContent

/// The menus, opened and pressed by their actions.
TestCase {
    id: test

    name: "MainMenu"
    when: windowShown
    width: 1000
    height: 700
    visible: true

    ProjectViewModel {
        id: model
    }

    ContentView {
        id: content

        anchors.fill: parent
        projectViewModel: model
    }

    MainMenu {
        id: menus

        content: content
    }

    SignalSpy {
        id: updates

        target: menus
        signalName: "checkForUpdates"
    }

    function action(menu, text) {
        for (let i = 0; i < menus.menuAt(menu).count; ++i) {
            const item = menus.menuAt(menu).actionAt(i);
            if (item && item.text.replace("&", "") === text)
                return item;
        }
        fail("no " + text);
    }

    function texts(menu) {
        const all = [];
        for (let i = 0; i < menus.menuAt(menu).count; ++i) {
            const item = menus.menuAt(menu).actionAt(i);
            all.push(item ? item.text.replace("&", "") : "-");
        }
        return all;
    }

    function test_items() {
        compare(texts(0), ["About Gavrel", "Check for Updates...", "-", "Quit"]);
        compare(texts(1), ["New", "Open…", "-", "Restore Previous Structure", "-", "Save", "Save As…", "-", "Import…", "-"]);
        compare(texts(2), ["Fit to Structure", "-", "Front", "Top", "Right", "Isometric", "-", "z Axis Upright", "-",
                           "Show Strain", "Node Numbers", "Element Numbers", "Rendering Statistics"]);
        compare(texts(3), ["Calculate", "Check Before Calculating", "Convergence…", "-", "Findings", "Node Table", "Element Table"]);
        compare(action(0, "Check for Updates...").shortcut, "Ctrl+U");
        action(0, "Check for Updates...").trigger();
        compare(updates.count, 1);
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

    function test_newAsksBeforeItEmptiesTheStructure() {
        model.newProject();
        model.addNode(1, 2, 3, false);
        model.appMode = AppMode.addingBeam;
        action(1, "New").trigger();
        compare(model.numberOfNodes, 1);
        keyClick(Qt.Key_Escape);
        tryCompare(content, "waitingAction", null);
        compare(model.numberOfNodes, 1);
        verify(model.hasUnsavedChanges);

        action(1, "New").trigger();
        content.goOn();
        compare(model.numberOfNodes, 0);
        compare(model.appMode, AppMode.normal);
        verify(!model.hasUnsavedChanges);
        model.addNode(1, 2, 3, false);
        model.discardChanges();
        action(1, "New").trigger();
        compare(model.numberOfNodes, 0);
    }

    function test_aFailedOpenCanBeTakenBack() {
        model.newProject();
        verify(!action(1, "Restore Previous Structure").enabled);
        model.addNode(1, 2, 3, false);
        standardOutput.start();
        model.loadProject("file:///does/not/exist.json");
        standardOutput.stop();
        compare(model.numberOfNodes, 0);
        action(1, "Restore Previous Structure").trigger();
        compare(model.numberOfNodes, 1);
        verify(!action(1, "Restore Previous Structure").enabled);
    }
}
