import QtQuick
import Gavrel.PreviewContent
import "../Qml"

FormCase {
    name: "DetailSheets"

    Component { id: nodeSheet; NodeDetailView { selectedNodeForSheet: nodeID } }
    Component { id: trussSheet; TrussDetailView { selectedElementForSheet: elementID } }

    function init() {
        makeModel();
        standardOutput.start();
        model.addNode(1.005, 0, -2, false);
        model.addNode(0, 0, 1, true);
        model.addNode(0, 0, 2, true);
        standardOutput.stop();
    }

    function compareNode(loads, restraints) {
        open(nodeSheet, { nodeID: 0 });
        compare(["loadX", "loadY", "loadZ"].map(name => findChild(form, name).text), loads);
        compare(["restX", "restY", "restZ"].map(name => findChild(form, name).checked), restraints);
    }

    function test_nodeRoundTrip() {
        compareNode(["0.0", "0.0", "0.0"], [false, false, false]);
        compare([form.width, form.height], [300, 200]);
        compare(texts(form), ["ID: 0", "X: 1.00", "Y: 0.00", "Z: -2.00", "u: 0.000", "v: 0.000", "w: 0.000", "Load:",
                              "0.0", "0.0", "0.0", "Restrain X", "Restrain Y", "Restrain Z", "Cancel", "Apply"]);
        type("-2.5", "1e3", "0.00001");
        compare(printedBy("confirm"), []);
        compare(happened, [null, "dismiss"]);

        compareNode(["-2.5", "1000.0", "1e-05"], [false, false, false]);
        type("0", "0", "0");
        click("restX");
        click("restZ");
        compare(printedBy("confirm"), []);
        compareNode(["0.0", "0.0", "0.0"], [true, false, true]);
    }

    function test_nodeStaysOpenWithoutNumbers_data() {
        return [{ tag: "1,000" }, { tag: " 1" }, { tag: "" }];
    }

    function test_nodeStaysOpenWithoutNumbers(data) {
        open(nodeSheet, { nodeID: 0 });
        type("5", data.tag);
        click("restX");
        compare(printedBy("confirm"), ["Invalid load input"]);
        compare(happened, []);
        verify(findChild(form, "loadY").invalid && findChild(form, "loadY").activeFocus);
        compare(printedBy("cancel"), []);
        compare(happened, [null, "dismiss"]);
        compareNode(["0.0", "0.0", "0.0"], [false, false, false]);
    }

    function test_trussIsSwitchedWhereItStands() {
        open(trussSheet, { elementID: 1 });
        compare([form.width, form.height], [300, 200]);
        compare(texts(form), ["ID: 1", "Area: 25.00", "isNonLinear: true", "Cancel", "Apply Linear",
                              "Apply Nonlinear"]);
        for (const [button, isNonLinear] of [["applyLinear", false], ["cancel", false], ["applyNonlinear", true]]) {
            open(trussSheet, { elementID: 1 });
            compare(printedBy(button), []);
            compare(happened, [null, "dismiss"]);
            compare(model.trussContents(1).isNonLinear, isNonLinear, button);
            verify(model.trussContents(0).isNonLinear);
        }
    }

    function test_trussNotFoundKeepsTheSelection() {
        open(trussSheet, { elementID: 2 });
        compare(texts(form), ["ID: 2", "Truss element not found.", "Cancel"]);
        compare(printedBy("cancel"), []);
        compare(happened, ["dismiss"]);
    }
}
