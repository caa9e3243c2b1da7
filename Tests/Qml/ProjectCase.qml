import QtQuick
import QtTest
import Gavrel.PreviewContent
import Gavrel.Workbench

/// A test with a window and a model of its own, and what the program prints.
TestCase {
    id: test

    property ProjectViewModel model
    property Component models: Component { ProjectViewModel {} }
    property Component contents: Component {
        Workbench {
            id: made

            anchors.fill: parent
            actions: Actions { content: made }
        }
    }
    property Workbench content

    when: windowShown
    visible: true

    function makeModel() {
        model = models.createObject(test);
    }

    /// The main window's working surface, for a new model.
    function makeContent() {
        makeModel();
        content = createTemporaryObject(contents, test, { projectViewModel: model });
        waitForRendering(content);
    }

    function printed(action) {
        standardOutput.start();
        action();
        return standardOutput.stop();
    }

    /// Nodes along x, each with a bar to the one before if `tied`.
    function addNodes(count, tied, y = 0) {
        for (let i = 0; i < count; ++i)
            model.addNode(i, y, 0, tied);
    }

    function makeLinear(...bars) {
        for (const bar of bars)
            model.setNonLinear(bar, false);
    }
}
