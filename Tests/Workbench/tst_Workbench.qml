import QtQuick
import Gavrel.PreviewContent
import "../Qml"

/// The working surface and the panels around it, with real clicks. The camera starts so that the point (0, 5, 0) is in the middle.
ProjectCase {
    id: test

    property VisualizationView view

    name: "Workbench"
    width: 1200
    height: 700

    function init() {
        makeContent();
        view = content.visualization;
    }

    function button(name) {
        return findChild(content, name);
    }

    function clickMiddle() {
        mouseClick(view, view.width / 2, view.height / 2);
    }

    function test_tenButtonsInOrder() {
        compare(Array.from(button("addNode").parent.children, item => item.text),
                ["Add Node", "Select for Truss", "Select for Beam", "Add Truss", "Add Beam", "Calculate", "Show Strain",
                 "Save", "Save As...", "Open..."]);
    }

    function test_enabling_data() {
        const normal = AppMode.normal, truss = AppMode.addingTruss, beam = AppMode.addingBeam;
        return [
            { tag: "normal", mode: normal, nodes: [0, 1], enabled: [true, true, false, false] },
            { tag: "truss, one node", mode: truss, nodes: [0], enabled: [true, false, false, false] },
            { tag: "truss, two", mode: truss, nodes: [0, 1], enabled: [true, false, true, false] },
            { tag: "truss, three", mode: truss, nodes: [0, 1, 2], enabled: [true, false, true, false] },
            { tag: "beam, one node", mode: beam, nodes: [2], enabled: [false, true, false, false] },
            { tag: "beam, two", mode: beam, nodes: [2, 0], enabled: [false, true, false, true] },
        ];
    }

    function test_enabling(data) {
        model.appMode = data.mode;
        model.selectedNodesForTruss = data.nodes;
        const names = ["selectForTruss", "selectForBeam", "addTruss", "addBeam"];
        compare(names.map(name => button(name).enabled), data.enabled);
        compare(button("selectForTruss").text, data.mode === AppMode.addingTruss ? "Done Selecting" : "Select for Truss");
        compare(button("selectForBeam").text, data.mode === AppMode.addingBeam ? "Done Selecting" : "Select for Beam");
        for (const name of ["addNode", "calculate", "showStrain", "save", "saveAs", "open"])
            verify(button(name).enabled, name);
    }

    function test_modesAndTheirMessages() {
        model.selectedNodesForTruss = [3];
        compare(printed(() => mouseClick(button("selectForTruss"))), ["No nodes selected for truss."]);
        compare(model.appMode, AppMode.addingTruss);
        compare(printed(() => {
            model.selectedNodesForTruss = [3];
            model.selectedNodesForTruss = [3, 5];
            model.selectedNodesForTruss = [3, 5];
            model.selectedNodesForTruss = [3, 5, 6];
        }), ["One node selected for truss: 3",
             "Two nodes selected for truss: 3, 5. 'Add Truss (Configure)' button is now enabled.",
             "More than two nodes selected for truss."]);
        compare(printed(() => mouseClick(button("selectForTruss"))), []);
        compare(model.appMode, AppMode.normal);
        compare(model.selectedNodesForTruss, []);
        mouseClick(button("selectForBeam"));
        compare(model.appMode, AppMode.addingBeam);
        compare(printed(() => model.selectedNodesForTruss = [1, 2]),
                ["Two nodes selected for beam: 1, 2. 'Add Beam (Configure)' button is now enabled."]);
        mouseClick(button("addNode"));
        compare(model.appMode, AppMode.normal);
        compare(model.selectedNodesForTruss, [1, 2]);
        verify(content.showingAddNodeSheet);
        keyClick(Qt.Key_Escape);
        verify(!content.showingAddNodeSheet);
    }

    function test_formsGetTheWholeSelection() {
        addNodes(4, false, 5);
        view.showWhole();
        for (const [mode, name, count] of [[AppMode.addingTruss, "addTruss", 2], [AppMode.addingBeam, "addBeam", 4]]) {
            model.appMode = mode;
            model.selectedNodesForTruss = [3, 0, 2];
            mouseClick(button(name));
            model.selectedNodesForTruss = [];  // the form keeps what it was opened with
            keyClick(Qt.Key_Return);
            compare(model.numberOfElements, count);
            verify(!content.showingTrussConfigSheet && !content.showingBeamConfigSheet);
            compare(model.selectedNodesForTruss, []);
        }
    }

    function test_magnification() {
        const slider = button("magnification");
        slider.forceActiveFocus();
        for (const [key, value] of [[Qt.Key_Right, 10], [Qt.Key_Left, 0]]) {
            for (let i = 0; i < 200; ++i)
                keyClick(key);
            compare(content.displacementMagnification, value);
            compare(button("magnificationText").text, value + ".0");
            compare(view.displacementMagnification, value);
        }
    }

    function test_clicksOpenSheetsOneAfterTheOther() {
        model.addNode(0, 5, 0, false);
        waitForRendering(view);
        clickMiddle();
        compare(view.selectedNode, 0);
        compare(view.selectedElement, 0);
        verify(view.showingNodeDetailSheet && view.showingElementDetailSheet);
        tryVerify(() => test.Window.activeFocusItem.objectName === "loadX");
        keyClick(Qt.Key_Escape);
        compare(view.selectedNode, null);
        verify(!view.showingNodeDetailSheet);
        tryVerify(() => test.Window.activeFocusItem.objectName === "cancel");
        keyClick(Qt.Key_Escape);
        verify(!view.showingElementDetailSheet);
        compare(view.selectedElement, 0, "left set where there was no truss");
        mouseClick(view, 5, 5);
        compare(view.selectedElement, null);
    }

    function test_selectionDecidesOnTheSheets() {
        for (const mode of [AppMode.addingTruss, AppMode.addingBeam]) {
            model.appMode = mode;
            view.selectedNode = 1;
            verify(!view.showingNodeDetailSheet);
            view.selectedElement = 1;
            verify(view.showingElementDetailSheet);
            view.selectedNode = view.selectedElement = null;
            verify(!view.showingElementDetailSheet);
        }
    }

    function test_aDragTurnsAndDoesNotPick() {
        model.addNode(0, 5, 0, false);
        waitForRendering(view);
        const before = String(view.camera.rotation);
        mouseDrag(view, view.width / 2, view.height / 2, 80, 20);
        verify(String(view.camera.rotation) !== before);
        compare(view.selectedNode, null);
        const turned = String(view.camera.rotation);
        model.addNode(1, 5, 0, true);
        waitForRendering(view);
        compare(String(view.camera.rotation), turned, "a rebuild leaves the view alone");
        clickMiddle();
        compare(view.selectedNode, 0, "what was dragged stayed in its place");
    }

    function test_filesAreDropped() {
        const example = Qt.resolvedUrl("../../Examples/single-bar.json");
        compare(printed(() => drops.drop(view, [example])), ["Project loaded successfully from single-bar.json"]);
        drops.drop(view, [Qt.resolvedUrl("nodes.csv"), Qt.resolvedUrl("members.csv")]);
        compare(content.files.filesToImport.length, 2);
        compare(printed(() => drops.drop(view, [example])), [], "a sheet is open");
    }
}
