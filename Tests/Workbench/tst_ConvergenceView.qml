import QtQuick
import QtTest
import Gavrel.Workbench

Item {
    width: 700
    height: 400

    ConvergenceView {
        id: view

        anchors.fill: parent
        outcome: ""
        residuals: []
        tolerance: 1e-5
    }

    TestCase {
        name: "ConvergenceView"
        when: windowShown

        function test_plotHoldsAllThatHasALogarithm_data() {
            return [
                { tag: "none", residuals: [], least: -5, greatest: -5 },
                { tag: "converged", residuals: [1, 0.02, 3e-9], least: -9, greatest: 0 },
                { tag: "diverging", residuals: [1, 50, 4e7], least: -5, greatest: 8 },
                { tag: "exact", residuals: [1, 0], least: -5, greatest: 0 },
                { tag: "not finite", residuals: [1, NaN, Infinity, -1], least: -5, greatest: 0 }
            ];
        }

        function test_plotHoldsAllThatHasALogarithm(data) {
            view.residuals = data.residuals;
            compare(view.decades.least, data.least);
            compare(view.decades.greatest, data.greatest);
            for (const residual of data.residuals.filter(view.drawable))
                verify(view.place(residual) >= 0 && view.place(residual) <= 1, residual);
            waitForRendering(view, 200);
            compare(findChild(view, "numbers").count, data.residuals.length);
        }

        function test_placesAreLogarithmic() {
            view.residuals = [1, 0.01, 1e-8];
            compare(view.place(1), 0);
            fuzzyCompare(view.place(0.01), 0.25, 1e-12);
            fuzzyCompare(view.place(1e-8), 1, 1e-12);
        }
    }
}
