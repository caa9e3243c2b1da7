import QtQuick
import Gavrel.PreviewContent
import Gavrel.Workbench
import "../Qml"

/// Moving the camera by mouse, wheel and keys, and what is laid over the 3D area.
ProjectCase {
    id: test

    property SceneKitView view

    name: "SceneKitView"
    width: 900
    height: 600

    Component { id: views; SceneKitView { anchors.fill: parent } }
    Component { id: solvers; Calculation { projectViewModel: test.model } }

    function init() {
        makeModel();
        model.addNode(0, 5, 0, false);
        model.addNode(4, 5, 0, true);
        model.addNode(0, 9, 0, false);
        model.addTruss(2, 1, 25, 1e5);
        view = createTemporaryObject(views, test, { projectViewModel: model });
        view.contents.update();
        waitForRendering(view);
    }

    function test_wheelZoomsToThePointer() {
        mouseWheel(view, 450, 300, 0, 120);
        compare(view.camera.position.x, -2);
        fuzzyCompare(view.camera.position.z, 0.1 + 9.9 / 1.2, 0.05);
        mouseWheel(view, 450, 300, 0, -120);
        fuzzyCompare(view.camera.position.z, 10, 0.05);
    }

    function test_dragsPan_data() {
        return [{ tag: "right", button: Qt.RightButton, modifiers: Qt.NoModifier },
                { tag: "shift", button: Qt.LeftButton, modifiers: Qt.ShiftModifier }];
    }

    function test_dragsPan(data) {
        const before = String(view.camera.rotation);
        mousePress(view, 450, 300, data.button, data.modifiers);
        for (let x = 460; x <= 550; x += 10)
            mouseMove(view, x, 300, 0, data.button);
        mouseRelease(view, 550, 300, data.button, data.modifiers);
        if (data.modifiers === Qt.NoModifier) {
            compare(String(view.camera.rotation), before);
            verify(view.camera.position.x < -3, "the structure follows the pointer to the right");
        }
        fuzzyCompare(view.camera.position.y, -2, 1e-3);
    }

    function test_keys() {
        mouseClick(view, 5, 5);
        const before = String(view.camera.rotation);
        keyClick(Qt.Key_Left);
        verify(String(view.camera.rotation) !== before);
        keyClick(Qt.Key_Right);
        keyClick(Qt.Key_Up, Qt.ShiftModifier);
        verify(view.camera.position.y < -2.5);
        const z = view.camera.position.z;
        keyClick(Qt.Key_Plus);
        verify(view.camera.position.z < z);
        keyClick(Qt.Key_F);
        fuzzyCompare(view.camera.position.x, 0, 1e-3);
        fuzzyCompare(view.camera.position.y, 0, 1e-3);
    }

    function test_legendTellsTheExtremes() {
        verify(!findChild(view, "legendMax").parent.parent.parent.visible);
        model.setLoadAndRestraint(0, 0, 0, 0, true, true, true);
        model.setLoadAndRestraint(2, 0, 0, 0, true, true, true);
        model.setLoadAndRestraint(1, 5e4, 0, 0, false, false, true);
        view.isStrainVisualizationActive = true;
        view.contents.update();
        compare(findChild(view, "legendMax").text, "0");
        makeLinear(0, 1);
        createTemporaryObject(solvers, test).run();
        view.contents.update();
        // The force of bar 0 is the load's, so that it is stretched by F / EA = 0.02; the other one only turns.
        compare(findChild(view, "legendMin").text, "-0.02");
    }

    function test_hoverHighlightsWhatAClickWouldPick() {
        mouseMove(view, 450, 300);
        compare(view.contents.highlightedBall.size, 1);
        mouseMove(view, 450, 500);
        compare(view.contents.highlightedBall.size, 0);
    }

    function test_statisticsTellTheTimeOfAFrame() {
        const text = findChild(view, "renderingStatistics");
        verify(!text.visible);
        view.options = 3;
        tryVerify(() => /^[1-9][0-9.]* ms a frame|^0\.[1-9] ms a frame/.test(text.text));
        verify(text.text.endsWith("5 shapes, " + (3 * 360 + 2 * 40) + " triangles"), text.text);
    }
}
