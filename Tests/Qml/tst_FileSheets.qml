import QtQuick
import QtQuick.Controls
import QtTest
import Gavrel.PreviewContent

/// What is told and asked about files that cannot be saved, opened or shown.
ProjectCase {
    id: test

    property FileSheets sheets

    name: "FileSheets"
    width: 900
    height: 600

    Component { id: fileSheets; FileSheets { anchors.fill: parent } }

    SignalSpy { id: places; target: test.sheets; signalName: "placeRequested" }
    SignalSpy { id: overwritten; target: test.sheets; signalName: "overwriteChosen" }
    SignalSpy { id: cancelled; target: test.sheets; signalName: "cancelled" }

    function init() {
        makeModel();
        sheets = createTemporaryObject(fileSheets, test, { projectViewModel: model });
        for (const spy of [places, overwritten, cancelled])
            spy.clear();
    }

    function inSheet(name) {
        return findChild(test.Overlay.overlay, name);
    }

    function test_aFailedSaveIsToldWithItsReason() {
        model.addNode(0, 0, 0, false);
        verify(!model.saveProject(Qt.resolvedUrl("none/bridge.json")));
        verify(inSheet("notice").text.startsWith("“bridge.json” was not saved."));
        verify(inSheet("notice").text.includes("none/bridge.json\": No such file or directory"));
        verify(!inSheet("action").visible);
        keyClick(Qt.Key_Return);
        verify(!sheets.presented);
        compare(places.count, 0);

        verify(!model.saveProject());
        sheets.asksForPlace = true;
        keyClick(Qt.Key_Return);
        compare(places.count, 1);
        verify(!sheets.presented && !sheets.asksForPlace);
    }

    function test_aFailedOpenIsToldAndCanBeTakenBack() {
        model.loadProject(Qt.resolvedUrl("none.json"));
        verify(inSheet("notice").text.startsWith("“none.json” was not opened."));
        verify(inSheet("notice").text.includes("none.json\": No such file or directory"));
        verify(!inSheet("action").visible, "there was nothing before");
        keyClick(Qt.Key_Escape);
        model.addNode(0, 0, 0, false);
        model.addNode(1, 0, 0, false);
        model.loadProject(Qt.resolvedUrl("none.json"));
        compare(model.numberOfNodes, 0);
        mouseClick(inSheet("action"));
        compare(model.numberOfNodes, 2);
        verify(model.hasUnsavedChanges && !sheets.presented);
    }

    function test_aFileThatOthersChangedIsAskedFor_data() {
        return [{ tag: "changed", question: "Overwrite “" }, { tag: "removed", question: "Write “" }];
    }

    function test_aFileThatOthersChangedIsAskedFor(data) {
        const counts = () => [overwritten.count, places.count, cancelled.count];
        sheets.changeOnDisk = data.tag;
        verify(inSheet("question").text.startsWith(data.question));
        keyClick(Qt.Key_Escape);
        compare(counts(), [0, 0, 1]);
        sheets.changeOnDisk = data.tag;
        mouseClick(inSheet("losing"));
        compare(counts(), [1, 0, 1]);
        sheets.changeOnDisk = data.tag;
        keyClick(Qt.Key_Return);
        compare(counts(), [1, 1, 1]);
        verify(!sheets.presented);
    }

    function test_whatEndsTheProgramIsShownOnlyIfItIsMeant() {
        let shown = 0;
        for (const key of [Qt.Key_Return, Qt.Key_Escape]) {
            sheets.askToShow("odd.json", "trussElements[0] names node -1", () => ++shown);
            verify(inSheet("explanation").text.includes("trussElements[0] names node -1"));
            verify(!inSheet("nothing").visible);
            keyClick(key);
            compare(shown, 0);
            verify(!sheets.presented);
        }
        sheets.askToShow("odd.json", "trussElements[0] names node -1", () => ++shown);
        mouseClick(inSheet("losing"));
        compare(shown, 1);
        verify(!sheets.presented);
    }
}
