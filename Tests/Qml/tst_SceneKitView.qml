import QtQuick
import QtTest
import Gavrel.PreviewContent

/// Moving the camera by mouse, wheel and keys, and what is laid over the 3D area.
TestCase {
    id: test

    property ProjectViewModel model
    property SceneKitView view

    name: "SceneKitView"
    when: windowShown
    width: 900
    height: 600
    visible: true

    Component {
        id: models

        ProjectViewModel {}
    }

    Component {
        id: views

        SceneKitView {
            anchors.fill: parent
        }
    }

    Component {
        id: solvers

        Calculation {
            projectViewModel: test.model
        }
    }

    function init() {
        model = models.createObject(test);
        model.addNode(0, 5, 0, false);
        model.addNode(4, 5, 0, true);
        model.addNode(0, 9, 0, false);
        model.addTruss(2, 1, 25, 1e5);
        view = createTemporaryObject(views, test, { projectViewModel: model });
        view.contents.update();
        waitForRendering(view);
    }

    /// The camera's place on the axes, in whole units of the scene from its middle.
    function place() {
        const p = view.camera.position;
        return [p.x, p.y, p.z].map(Math.round);
    }

    function test_startsInFrontOfTheOrigin() {
        // The scene's middle is (2, 7, 0), from where the renderer counts.
        compare(place(), [-2, -2, 10]);
        compare(String(view.camera.rotation), String(Qt.quaternion(1, 0, 0, 0)));
        verify(view.camera.clipNear > 0 && view.camera.clipNear < 10);
        verify(view.camera.clipFar > 10);
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

    function test_standardViews() {
        // The axis, with its sign, along which the camera stands farthest from the middle.
        const side = () => {
            const p = place(), sizes = p.map(Math.abs), axis = sizes.indexOf(Math.max(...sizes));
            return (p[axis] < 0 ? "-" : "+") + "xyz"[axis];
        };
        for (const [zUp, expected] of [[false, ["+z", "+y", "+x"]], [true, ["-y", "+z", "+x"]]]) {
            view.camera.zUp = zUp;
            compare([ViewCamera.Front, ViewCamera.Top, ViewCamera.Right].map(direction => {
                view.camera.show(direction);
                return side();
            }), expected);
        }
    }

    function test_theAxisOfTheLoadsIsUpright() {
        verify(!view.contents.loadsActAlongZ());
        model.setLoadAndRestraint(1, 0, 3, -4, false, false, false);
        verify(view.contents.loadsActAlongZ());
    }

    function test_legendTellsTheExtremes() {
        verify(!findChild(view, "legendMax").parent.parent.parent.visible);
        model.setLoadAndRestraint(0, 0, 0, 0, true, true, true);
        model.setLoadAndRestraint(2, 0, 0, 0, true, true, true);
        model.setLoadAndRestraint(1, 5e4, 0, 0, false, false, true);
        view.isStrainVisualizationActive = true;
        view.contents.update();
        compare(findChild(view, "legendMax").text, "0");
        model.setNonLinear(0, false);
        model.setNonLinear(1, false);
        createTemporaryObject(solvers, test).run();
        view.contents.update();
        // The force of bar 0 is the load's, so that it is stretched by F / EA = 0.02; the other one only turns.
        compare(findChild(view, "legendMin").text, "-0.02");
        const colors = view.contents.strainLegend.colors;
        compare(colors[colors.length - 1], Qt.rgba(0, 0.4, 1, 1));
    }

    function test_pausedKeepsThePicture() {
        compare(view.contents.balls.size, 3);
        view.paused = true;
        model.addNode(1, 1, 1, false);
        view.contents.update();
        compare(view.contents.balls.size, 3);
        view.paused = false;
        tryCompare(view.contents.balls, "size", 4);
    }

    function test_hoverHighlightsWhatAClickWouldPick() {
        mouseMove(view, 450, 300);
        compare(view.contents.highlightedBall.size, 1);
        mouseMove(view, 520, 300);
        compare(view.contents.highlightedBall.size, 0);
        compare(view.contents.highlightedTube.size, 1);
        mouseMove(view, 450, 500);
        compare(view.contents.highlightedTube.size, 0);
    }
}
