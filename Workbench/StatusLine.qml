import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Workbench

/// The line at the bottom of the window: what clicks do now, the size of the structure, the outcome of the last solve.
Pane {
    id: root

    required property ProjectViewModel projectViewModel
    required property Calculation calculation
    /// A warning shown in place of the hint.
    property string warning
    readonly property string alert: warning !== "" ? warning : projectViewModel.remark

    signal convergenceRequested()
    signal findingsRequested()

    readonly property string hint: {
        const model = projectViewModel;
        if (model.appMode === AppMode.normal) {
            if (model.numberOfNodes === 0)
                return qsTr("Add nodes to begin, or open a project");
            return qsTr("Click a node to load or restrain it, or a bar to see its data");
        }
        const command = model.appMode === AppMode.addingTruss ? qsTr("Add Truss") : qsTr("Add Beam");
        const nodes = model.selectedNodesForTruss;
        if (nodes.length === 0)
            return qsTr("Click nodes to join, then %1").arg(command);
        if (nodes.length === 1)
            return qsTr("Node %1 collected: click the next one").arg(nodes[0]);
        return qsTr("%1 nodes collected: click the next one, or %2").arg(nodes.length).arg(command);
    }
    readonly property string mode: projectViewModel.appMode === AppMode.normal ? qsTr("Inspect")
        : projectViewModel.appMode === AppMode.addingTruss ? qsTr("New truss") : qsTr("New beam")

    function counted(number, one, many) {
        return number === 1 ? one : many.arg(Number(number).toLocaleString(Qt.locale(), "f", 0));
    }

    horizontalPadding: 16
    verticalPadding: 5

    contentItem: RowLayout {
        spacing: 12

        Label {
            text: root.mode
            font.bold: true
        }
        Label {
            objectName: "hint"
            Layout.fillWidth: true
            elide: root.alert !== "" ? Text.ElideMiddle : Text.ElideRight  // keeps the reason at the end of a warning
            text: root.alert !== "" ? root.alert : root.hint
            color: root.alert !== "" ? "#d0342c" : palette.windowText

            ToolTip.visible: truncated && hover.hovered
            ToolTip.text: text

            HoverHandler {
                id: hover
            }
        }
        Label {
            objectName: "counts"
            text: root.counted(root.projectViewModel.numberOfNodes, qsTr("1 node"), qsTr("%1 nodes")) + ", "
                + root.counted(root.projectViewModel.numberOfElements, qsTr("1 element"), qsTr("%1 elements"))
        }
        Rectangle {
            implicitWidth: 1
            Layout.fillHeight: true
            color: root.palette.mid
            visible: outcome.visible || outdated.visible
        }
        Label {
            id: outdated

            objectName: "outdated"
            visible: root.projectViewModel.resultsOutdated && !root.calculation.running
            text: qsTr("Results are outdated")
            font.bold: true
            color: "#b45f06"

            ToolTip.visible: outdatedHover.hovered
            ToolTip.text: qsTr("The structure was changed since they were calculated.")

            HoverHandler {
                id: outdatedHover
            }
        }
        Label {
            id: outcome

            objectName: "outcome"
            visible: text !== ""
            text: root.calculation.outcome
            font.bold: !root.calculation.running && !root.calculation.converged

            TapHandler {
                onTapped: root.convergenceRequested()
            }
            HoverHandler {
                cursorShape: Qt.PointingHandCursor
            }
        }
        Label {
            readonly property int notes: root.calculation.findings.count

            objectName: "notes"
            visible: outcome.visible && !root.calculation.running && notes > 0
            text: notes === 1 ? qsTr("1 finding") : qsTr("%1 findings").arg(notes)
            font.underline: true

            TapHandler {
                onTapped: root.findingsRequested()
            }
            HoverHandler {
                cursorShape: Qt.PointingHandCursor
            }
        }
    }
}
