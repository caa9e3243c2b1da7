import QtQuick
import Gavrel.PreviewContent
import "../Qml"

FormCase {
    name: "AddNodeView"

    Component { id: addNode; AddNodeView {} }

    function init() {
        makeModel();
        open(addNode);
    }

    function shown() {
        return ["x", "y", "z"].map(name => findChild(form, name).text).concat(findChild(form, "connectToLast").checked);
    }

    function test_remembersWhatWasConfirmed() {
        compare(texts(form), ["Coordinates:", "0.0", "0.0", "0.0", "Connect to Last", "Cancel", "Add Node"]);
        compare(shown()[3], true);
        type("1", "2", "3");
        compare(printedBy("confirm"), ["Added Node: id 0 at (1.0, 2.0, 3.0)"]);
        compare(happened, ["dismiss"]);

        open(addNode);
        compare(shown(), ["1", "2", "3", true]);
        type("-1", "1e1", "0x10");
        compare(printedBy("confirm").slice(-1), ["Added Node: id 1 at (-1.0, 10.0, 16.0)"]);
        compare(model.numberOfElements, 1);

        open(addNode);
        compare(shown(), ["-1", "1e1", "0x10", true]);
        click("connectToLast");
        compare(printedBy("confirm").length, 1);
        compare(model.numberOfElements, 1);
        open(addNode);
        compare(shown()[3], false);
    }

    function test_staysOpenWithoutNumbers_data() {
        return [{ texts: ["1", "2", "abc"], invalid: ["z"] }, { texts: ["", "2,5", "3"], invalid: ["x", "y"] }];
    }

    function test_staysOpenWithoutNumbers(data) {
        type(...data.texts);
        compare(printedBy("confirm"), ["Invalid input coordinates"]);
        compare(happened, []);
        compare(model.numberOfNodes, 0);
        compare(model.lastUsedStartX, "0.0");
        compare(shown().slice(0, 3), data.texts);
        const invalid = () => ["x", "y", "z"].filter(name => findChild(form, name).invalid);
        compare(invalid(), data.invalid);
        verify(findChild(form, data.invalid[0]).activeFocus);
        keyClick(Qt.Key_5);
        compare(invalid(), data.invalid.slice(1));
    }

    function test_cancelChangesNothing() {
        type("1", "2", "3");
        compare(printedBy("cancel"), []);
        compare(happened, ["dismiss"]);
        compare(model.numberOfNodes, 0);
        compare(model.lastUsedStartX, "0.0");
    }
}
