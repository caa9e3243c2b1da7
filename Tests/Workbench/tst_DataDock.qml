import QtQml.Models
import QtQuick
import "../Qml"

/// Findings and tables below the 3D area, and files from other programs.
ProjectCase {
    id: test

    name: "DataDock"
    width: 1200
    height: 900

    function init() {
        makeContent();
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

    Instantiator {
        id: findings

        model: test.content ? test.content.calculation.findings : null

        delegate: QtObject {
            required property string consequence
            required property bool isSerious
            required property bool endsProgram
            required property string title
        }
    }

    /// What `show` makes of each finding.
    function shownFindings(show) {
        return Array.from({ length: findings.count }, (_, row) => show(findings.objectAt(row)));
    }

    function titles() {
        return shownFindings(finding => finding.title);
    }

    function consequences() {
        return shownFindings(finding => [finding.consequence, finding.isSerious, finding.endsProgram].join());
    }

    function test_findingsInsteadOfAnEnd() {
        buildGable();
        model.addNode(9, 9, 9, false);
        const lines = printed(() => mouseClick(findChild(content, "calculate")));
        compare(lines, [], "nothing was solved");
        verify(content.dock.open);
        compare(content.dock.currentTab, 0);
        compare(titles(), ["Nodes without elements"]);
        compare(content.calculation.outcome, "");

        // Bars under compression that lose their stiffness across: mended by a click, then solved.
        model.addTruss(3, 2, 25, 1e5);
        model.setLoadAndRestraint(3, 0, 0, 0, true, true, true);
        mouseClick(findChild(content, "checkAgain"));
        compare(titles(), ["Compressed non-linear bars"]);
        tryVerify(() => findChild(content, "makeLinear") !== null);
        mouseClick(findChild(content, "makeLinear"));
        tryVerify(() => content.calculation.converged);
        verify(!model.trussContents(0).isNonLinear && !model.trussContents(1).isNonLinear);
        compare(content.calculation.findings.count, 0);
    }

    function test_whatIsMerelyDoubtfulIsSolvedAndNoted() {
        buildGable();
        model.addTruss(0, 2, 25, 1e5);
        makeLinear(0, 1, 2);
        const taken = printed(() => mouseClick(findChild(content, "calculate")));
        compare(consequences(), ["Doubtful,false,false"]);
        verify(!content.dock.open, "does not get in the way");
        compare(taken.length, 3);
        compare(content.calculation.residuals.length, 2);
        verify(content.calculation.converged);
        content.dock.show(0);
        verify(!findChild(content, "calculateAnyway").visible);
        content.calculation.checks = false;
        compare(printed(() => content.calculation.run()), taken);
    }

    function test_calculateAnywayTakesTheTrialUnlessTheStructureChanged() {
        buildGable();
        makeLinear(0, 1);
        model.setLoadAndRestraint(2, 1, 0, 5, false, false, false);  // which nothing resists
        compare(printed(() => mouseClick(findChild(content, "calculate"))), []);
        compare(consequences(), ["Never converges,true,false"]);
        verify(!model.hasResults);
        compare(printed(() => mouseClick(findChild(content, "calculateAnyway"))).length, 51);
        compare(content.calculation.reasonToEnd, "", "nothing to ask");
        verify(model.hasResults && !content.calculation.converged);
        model.setLoadAndRestraint(2, 0, 0, 0, false, false, false);
        verify(content.calculation.checkOutdated);
        compare(printed(() => content.calculation.runAnyway())[1], "nan");
        compare(titles(), ["No loads"]);
        model.newProject();
        compare(content.calculation.findings.count, 0);
    }

    function test_nothingEndsTheProgramWithoutAQuestion_data() {
        return [{ tag: "checked", checks: true }, { tag: "unchecked", checks: false }];
    }

    function test_nothingEndsTheProgramWithoutAQuestion(data) {
        buildGable();
        model.addNode(9, 9, 9, false);
        content.calculation.checks = data.checks;
        mouseClick(findChild(content, "calculate"));
        if (data.checks) {
            compare(consequences(), ["Ends the program,true,true"]);
            mouseClick(findChild(content, "calculateAnyway"));
        }
        verify(content.calculation.reasonToEnd.includes("Nothing joins node 3"));
        verify(content.blocked);
        keyClick(Qt.Key_Return);  // Cancel
        compare(content.calculation.reasonToEnd, "");
        verify(!content.blocked);
        content.calculation.runAnyway();
        keyClick(Qt.Key_Escape);
        compare(content.calculation.reasonToEnd, "");

        // Findings from before an edit have no effect.
        model.addTruss(3, 2, 25, 1e5);
        model.setLoadAndRestraint(3, 0, 0, 0, true, true, true);
        makeLinear(0, 1, 2);
        printed(() => content.calculation.runAnyway());
        verify(content.calculation.converged);
        model.addNode(8, 8, 8, false);
        content.calculation.runAnyway();
        verify(content.calculation.reasonToEnd.includes("Nothing joins node 4"));
        content.calculation.answer(false);
    }

    function test_marksGoAway() {
        buildGable();
        model.addNode(9, 9, 9, false);
        const view = content.visualization;
        mouseClick(findChild(content, "calculate"));
        const list = findChild(content, "findings");
        const ways = [
            () => mouseClick(view, 5, view.height - 120),  // beside all shapes
            () => keyClick(Qt.Key_Escape),
            () => mouseClick(findChild(content, "closeDock")),
            () => content.calculation.run(),
        ];
        for (const goAway of ways) {
            content.dock.show(0);
            waitForRendering(content);
            mouseClick(list, 300, 10);
            verify(model.hasMarks);
            goAway();
            verify(!model.hasMarks, goAway);
        }
        content.dock.show(1);
        const nodes = findChild(content, "nodeTable");
        nodes.select(1);
        compare(nodes.selectedRow, 1);
        keyClick(Qt.Key_Escape);
        model.clearMarks();
        compare(nodes.selectedRow, -1);
    }

    function test_tellsWhetherTheCheckIsOfTheStructureAsItIs() {
        const text = findChild(content, "nothingFound");
        content.dock.show(0);
        verify(text.text.startsWith("Not checked yet"));
        buildGable();
        makeLinear(0, 1);
        printed(() => content.calculation.run());
        verify(text.text.includes("found nothing: the structure can be solved"));
        model.addNode(1, 2, 3, true);
        verify(text.text.includes("was changed since"));
        printed(() => content.calculation.run());
        verify(findChild(content, "findingsState").text.startsWith("Nothing was solved."));
        model.addNode(1, 2, 4, true);
        verify(findChild(content, "findingsState").text.startsWith("The structure was changed since this check."));
        model.newProject();
        verify(text.text.startsWith("Not checked yet"));
    }

    function test_resultsAreOfTheStructureAsItIsOrMarked() {
        const banner = findChild(content, "outdatedResults");
        const legend = findChild(content, "legendTitle");
        const force = () => cell(findChild(content, "elementTable").table, 0, 6);
        const displacement = () => cell(findChild(content, "nodeTable").table, 2, 12);
        const shown = () => {
            content.dock.show(2);
            const first = force();
            content.dock.show(1);
            return [first, displacement()].map(text => text !== "");
        };
        model.isStrainVisualizationActive = true;
        buildGable();
        makeLinear(0, 1);
        compare(shown(), [false, false]);
        compare(findChild(content, "resultsState").text, "Not solved: no results");
        compare(legend.text, "Strain (not solved)");
        printed(() => content.calculation.run());
        compare(shown(), [true, true]);
        compare([findChild(content, "resultsState").text, legend.text, banner.visible], ["", "Strain", false]);
        model.setLoadAndRestraint(2, 0, -50, 0, false, false, false);
        compare(shown(), [true, true]);
        compare([findChild(content, "resultsState").text, legend.text, banner.visible],
            ["Results are outdated", "Strain (outdated)", true]);
        printed(() => content.calculation.run());
        verify(!banner.visible);

        // A file keeps the strains of its bars, but no displacements.
        const file = drops.temporaryFile("solved.json");
        printed(() => model.saveProject(file));
        printed(() => model.loadProject(file));
        tryCompare(legend, "text", "Strain (kept in the file)");
        compare(shown(), [false, false]);
        verify(!banner.visible);
    }

    function test_tables() {
        buildGable();
        makeLinear(0, 1);
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
        content.files.drop([Qt.resolvedUrl("members.csv"), Qt.resolvedUrl("nodes.csv")]);
        keyClick(Qt.Key_Return);
        compare(content.files.filesToImport, []);
        compare([model.numberOfNodes, model.numberOfElements], [2, 1]);
        verify(model.hasUnsavedChanges);
        verify(content.files.prompt.text.includes("The column \"colour\" is not read."), content.files.prompt.text);
    }
}
