import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views
import Gavrel.Workbench

/// The working surface with the dock, the row of commands, the flow of files, the calculation and their sheets.
ContentView {
    id: root

    required property Actions actions
    property bool showingConvergence: false
    /// Set by the window while one of its own sheets is open.
    property bool covered: false

    readonly property alias calculation: solver
    readonly property alias dock: dataDock
    readonly property alias files: flow
    readonly property bool compact: width < 1000
    readonly property bool narrow: width < 790
    /// Whether a sheet or panel is open, so that the commands behind it are disabled.
    readonly property bool blocked: covered || showingSheet || flow.busy
        || [convergence, endQuestion].some(sheet => sheet.presented)

    paused: solver.running
    onNodeClicked: node => dataDock.showNode(node)
    onElementClicked: (isBeam, element) => dataDock.showElement(isBeam, element)

    panels: DataDock {
        id: dataDock

        objectName: "dock"
        SplitView.preferredHeight: Math.min(240, 0.4 * root.height)
        SplitView.minimumHeight: 110
        SplitView.maximumHeight: root.heightOfPanels - 110  // the 3D area keeps at least 110 pixels
        projectViewModel: root.projectViewModel
        calculation: solver
    }

    rows: CommandRow {
        Layout.alignment: Qt.AlignHCenter
        actions: root.actions
        compact: root.compact
        narrow: root.narrow
    }

    FileFlow {
        id: flow

        projectViewModel: root.projectViewModel
        onPictureWanted: file => root.visualization.grabToImage(grabbed => writePicture(grabbed.image, file))
        onImportedIntoEmpty: root.visualization.showWhole()
    }

    DropArea {
        anchors.fill: parent
        enabled: !root.blocked
        keys: ["text/uri-list"]
        onDropped: drop => flow.drop(drop.urls)
    }

    Calculation {
        id: solver

        projectViewModel: root.projectViewModel
        onStoppedByFindings: dataDock.show(0)
    }

    Sheet {
        id: convergence

        presented: root.showingConvergence
        onDismissed: root.showingConvergence = false

        ConvergenceView {
            outcome: solver.outcome
            residuals: solver.residuals
            tolerance: solver.tolerance
        }
    }

    Sheet {
        id: endQuestion

        presented: solver.reasonToEnd !== ""
        onDismissed: solver.answer(false)

        QuestionView {
            question: qsTr("Calculate, and end Gavrel?")
            explanation: qsTr("%1\n\nGavrel will end. What is not saved is offered at the next start.").arg(solver.reasonToEnd)
            destructiveText: qsTr("Calculate Anyway")
            rejectText: ""
            defaultText: qsTr("Cancel")
            onDestructiveChosen: solver.answer(true)
            onDefaultChosen: solver.answer(false)
        }
    }

    FileSheets {
        flow: flow
    }
}
