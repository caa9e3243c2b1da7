import QtQuick
import QtQuick.Controls
import QtTest
import Gavrel.Workbench
import "../Qml"

/// The sheets in which the flow of files asks and reports.
ProjectCase {
    id: test

    property FileFlow flow

    name: "FileSheets"
    width: 900
    height: 600

    Component { id: fileSheets; FileSheets { flow: FileFlow { projectViewModel: test.model } } }

    SignalSpy { id: confirmed; target: test.flow; signalName: "quitConfirmed" }

    function init() {
        makeModel();
        flow = createTemporaryObject(fileSheets, test).flow;
        confirmed.clear();
    }

    function inSheet(name) {
        return findChild(test.Overlay.overlay, name);
    }

    function test_questionsAreAnsweredByKeysAndMouse_data() {
        return [
            { tag: "Escape", answer: () => keyClick(Qt.Key_Escape), asked: false, done: false },
            { tag: "reject", answer: () => mouseClick(inSheet("reject")), asked: false, done: false },
            { tag: "destructive", answer: () => mouseClick(inSheet("destructive")), asked: false, done: true },
            { tag: "Return", answer: () => keyClick(Qt.Key_Return), asked: true, done: false },
        ];
    }

    function test_questionsAreAnsweredByKeysAndMouse(data) {
        model.saveProject(drops.temporaryFile("model.json"));
        model.addNode(0, 0, 0, false);
        verify(!flow.mayQuit());
        compare(inSheet("question").text, "Save the changes to “model.json”?");
        compare(inSheet("explanation").text, "They are lost otherwise.");
        drops.remove("model.json");
        data.answer();
        compare(confirmed.count, data.done ? 1 : 0);
        compare(flow.busy, data.asked);
        if (!data.asked)
            return;
        compare(inSheet("question").text, "Write “model.json” anew?");
        keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Space);
        compare(confirmed.count, 1, "a new sheet begins with its first answer");
        verify(!flow.busy);
    }

    function test_noticesAreReadOrActedUpon() {
        model.addNode(0, 0, 0, false);
        for (const [answer, nodes] of [[() => mouseClick(inSheet("action")), 1], [() => keyClick(Qt.Key_Return), 0],
                                       [() => keyClick(Qt.Key_Escape), 0]]) {
            model.openProject(Qt.resolvedUrl("none.json"));
            verify(inSheet("notice").text.startsWith("“none.json” was not opened."));
            verify(inSheet("action").visible);
            answer();
            compare(model.numberOfNodes, nodes);
            verify(!flow.busy);
        }
    }
}
