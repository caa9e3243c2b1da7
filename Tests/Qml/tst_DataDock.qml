import QtQuick
import QtTest
import Gavrel.PreviewContent

/// Findings and tables below the 3D area, and files from other programs.
TestCase {
    id: test

    property ProjectViewModel model
    property ContentView content

    name: "DataDock"
    when: windowShown
    width: 1200
    height: 900
    visible: true

    Component {
        id: models

        ProjectViewModel {}
    }

    Component {
        id: contents

        ContentView {
            anchors.fill: parent
        }
    }

    function init() {
        model = models.createObject(test);
        content = createTemporaryObject(contents, test, { projectViewModel: model });
        waitForRendering(content);
    }

    function printed(action) {
        standardOutput.start();
        action();
        return standardOutput.stop();
    }

    /// Two bars of 5 and 4 on two held nodes, loaded at their top, which is node 2.
    function buildGable() {
        model.addNode(0, 0, 0, false);
        model.addNode(7, 0, 0, false);
        model.addNode(3, 4, 0, false);
        model.addTruss(0, 2, 25, 1e5);
        model.addTruss(1, 2, 25, 1e5);
        for (const node of [0, 1])
            model.setLoadAndRestraint(node, 0, 0, 0, true, true, true);
        model.setLoadAndRestraint(2, 0, -100, 0, false, false, false);
    }

    function cell(table, row, column) {
        return table.data(table.index(row, column));
    }

    function test_findingsInsteadOfAnEnd() {
        buildGable();
        model.addNode(9, 9, 9, false);
        const lines = printed(() => mouseClick(findChild(content, "calculate")));
        compare(lines, [], "nothing was solved");
        verify(content.dock.open);
        compare(content.dock.currentTab, 0);
        compare(content.calculation.findings.map(finding => finding.title), ["Nodes without elements"]);
        compare(content.calculation.outcome, "");

        // Bars under compression that lose their stiffness across: mended by a click, then solved.
        model.addTruss(3, 2, 25, 1e5);
        model.setLoadAndRestraint(3, 0, 0, 0, true, true, true);
        mouseClick(findChild(content, "checkAgain"));
        compare(content.calculation.findings.map(finding => finding.title), ["Compressed non-linear bars"]);
        tryVerify(() => findChild(content, "makeLinear") !== null);
        mouseClick(findChild(content, "makeLinear"));
        tryVerify(() => content.calculation.converged);
        verify(!model.trussContents(0).isNonLinear && !model.trussContents(1).isNonLinear);
        compare(content.calculation.findings, []);
    }

    function test_calculateAnywayTakesTheTrialUnlessTheStructureChanged() {
        buildGable();
        model.addTruss(0, 2, 25, 1e5);
        for (const position of [0, 1, 2])
            model.setNonLinear(position, false);
        mouseClick(findChild(content, "calculate"));
        compare(content.calculation.findings.map(finding => finding.consequence), ["Doubtful"]);
        const taken = printed(() => mouseClick(findChild(content, "calculateAnyway")));
        compare(taken.length, 3);
        compare(content.calculation.residuals.length, 2);
        verify(content.calculation.converged);
        content.calculation.checks = false;
        compare(printed(() => content.calculation.run()), taken);

        content.calculation.checks = true;
        printed(() => content.calculation.run());
        model.setLoadAndRestraint(2, 0, 0, 0, false, false, false);
        compare(printed(() => content.calculation.runAnyway())[1], "nan");
        model.newProject();
        compare(content.calculation.findings, []);
    }

    function test_tables() {
        buildGable();
        for (const position of [0, 1])
            model.setNonLinear(position, false);
        printed(() => content.calculation.run());
        content.dock.show(2);
        const view = findChild(content, "elementTable");
        const table = view.table;
        compare([cell(table, 0, 0), cell(table, 1, 4)], ["bar", "5.65685"]);
        mouseClick(findChild(view, "heading4"));
        mouseClick(findChild(view, "heading4"));
        compare([table.descending, cell(table, 0, 4)], [true, "5.65685"]);
        view.select(0);
        compare(view.selectedPosition, 1);
        table.sortBy(4);
        compare(view.selectedRow, 1, "the selection follows the order");
        findChild(view, "table").forceActiveFocus();
        for (const [key, row] of [[Qt.Key_Up, 0], [Qt.Key_Up, 0], [Qt.Key_End, 1], [Qt.Key_Home, 0], [Qt.Key_PageDown, 1]]) {
            keyClick(key);
            compare(view.selectedRow, row);
        }

        table.search = "5.65";
        compare([table.rows, view.selectedRow], [1, 0]);
        table.search = "nowhere";
        compare([table.rows, view.selectedRow], [0, -1]);
    }

    function test_aClickInTheViewSelectsTheRow() {
        model.addNode(-2, 5, 0, false);
        model.addNode(2, 5, 0, true);
        content.dock.show(2);
        waitForRendering(content);
        const view = content.visualization;
        view.nodeClicked(1);
        compare(content.dock.currentTab, 1);
        compare(findChild(content, "nodeTable").selectedRow, 1);
        // The bar's middle is that of the picture at first.
        mouseClick(view, view.width / 2, view.height / 2);
        compare(content.dock.currentTab, 2);
        compare(findChild(content, "elementTable").selectedRow, 0);
    }

    function test_importTellsWhatItPassedOver() {
        content.filesToImport = [Qt.resolvedUrl("members.csv"), Qt.resolvedUrl("nodes.csv")];
        keyClick(Qt.Key_Return);
        compare(content.filesToImport, []);
        compare([model.numberOfNodes, model.numberOfElements], [2, 1]);
        verify(model.hasUnsavedChanges);
        verify(content.notice.includes("The column \"colour\" is passed over."), content.notice);
        keyClick(Qt.Key_Escape);
        compare(content.notice, "");
        content.filesToImport = [Qt.resolvedUrl("members.csv")];
        keyClick(Qt.Key_Return);
        verify(content.notice.includes("members.csv, line 2, column end: there is no node 2"), content.notice);
        compare(model.numberOfElements, 1);
    }
}
