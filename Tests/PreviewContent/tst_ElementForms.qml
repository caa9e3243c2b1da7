import QtQuick
import Gavrel.PreviewContent
import "../Qml"

FormCase {
    id: test

    property var added: []

    name: "ElementForms"

    models: Component {
        ProjectViewModel {
            function addTruss(...what) { test.added.push(what); }
            function addBeam(...what) { test.added.push(what); }
        }
    }

    Component { id: truss; AddTrussView { nodeIDs: projectViewModel.selectedNodesForTruss } }
    Component { id: beam; AddBeamView { nodeIDs: projectViewModel.selectedNodesForTruss } }

    function openFor(nodes, component) {
        added = [];
        makeModel();
        model.appMode = component === truss ? AppMode.addingTruss : AppMode.addingBeam;
        model.selectedNodesForTruss = nodes;
        open(component);
    }

    function compareClosed(elements) {
        compare(added, elements);
        compare(model.appMode, AppMode.normal);
        compare(model.selectedNodesForTruss, []);
        compare(happened, ["dismiss"]);
    }

    function test_trussesFormAChain() {
        openFor([4, 7, 9], truss);
        compare(texts(form), ["Configure New Truss", "Between nodes: 4 and 7", "Properties:", "Area:", "25.0",
                              "Young's Modulus:", "100e3", "Cancel", "Add Truss"]);
        compare(printedBy("confirm"), []);
        compareClosed([[4, 7, 25, 100000], [7, 9, 25, 100000]]);
    }

    function test_beamsFormAChain() {
        openFor([1, 2, 3, 5, 8], beam);
        compare(texts(form), ["Configure New Beam", "Between nodes: 1, 2, 3, 5, 8", "Area:", "100.0", "Iy:", "1000.0",
                              "Iy:", "1000.0", "E:", "210000.0", "G:", "80000.0", "Cancel", "Add Beam"]);
        // From field to field, so that the two of the same name are told apart by their place.
        type(..."12345");
        compare(printedBy("confirm"), []);
        compareClosed([[1, 2], [2, 3], [3, 5], [5, 8]].map(nodes => nodes.concat(1, 2, 3, 4, 5)));
    }

    function test_oneNodeMakesNoBeam() {
        openFor([3], beam);
        compare(printedBy("confirm"), []);
        compareClosed([]);
    }

    function test_staysOpen_data() {
        const rows = (form, lines, ...fields) => fields.map(field => ({ form: form, lines: lines, field: field }));
        return rows(truss, ["Invalid input for Area or Young's Modulus"], "area", "youngModulus")
            .concat(rows(beam, [], "area", "iy", "iz", "youngModulus", "shearModulus"));
    }

    function test_staysOpen(data) {
        openFor([1, 2], data.form);
        form[data.field] = "";
        const field = findChild(form, data.field).field;
        compare(printedBy("confirm"), data.lines);
        compare(happened, []);
        verify(field.invalid && field.activeFocus);

        form[data.field] = "7";
        compare(printedBy("cancel"), []);
        compare(happened, ["dismiss"]);
        compare(added, []);
        compare(model.selectedNodesForTruss, [1, 2]);
        verify(model.appMode !== AppMode.normal);
    }
}
