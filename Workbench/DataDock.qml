import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Workbench

/// The panel below the 3D area with the findings and the tables of nodes and elements.
Pane {
    id: root

    required property ProjectViewModel projectViewModel
    required property Calculation calculation
    property bool open: false
    readonly property alias currentTab: tabs.currentIndex
    readonly property ResultTableView shownTable: currentTab === 1 ? nodeTable : currentTab === 2 ? elementTable : null

    function show(tab) {
        open = true;
        tabs.currentIndex = tab;
    }

    function showNode(node) {
        if (open && currentTab > 0) {
            tabs.currentIndex = 1;
            nodeTable.showNode(node);
        }
    }

    function showElement(isBeam, element) {
        if (open && currentTab > 0) {
            tabs.currentIndex = 2;
            elementTable.showElement(isBeam, element);
        }
    }

    onOpenChanged: if (!open) projectViewModel.clearMarks()

    visible: open
    padding: 0

    contentItem: ColumnLayout {
        spacing: 0

        RowLayout {
            Layout.leftMargin: 4
            Layout.rightMargin: 4
            spacing: 8

            TabBar {
                id: tabs

                objectName: "tabs"
                Layout.preferredWidth: 330

                TabButton {
                    text: root.calculation.findings.count > 0 ? qsTr("Findings (%1)").arg(root.calculation.findings.count) : qsTr("Findings")
                }
                TabButton {
                    text: qsTr("Nodes")
                }
                TabButton {
                    text: qsTr("Elements")
                }
            }
            Label {
                objectName: "resultsState"
                Layout.fillWidth: true
                Layout.leftMargin: 8
                elide: Text.ElideRight
                font.pixelSize: 12
                opacity: 0.8
                text: root.shownTable === null ? "" : root.projectViewModel.resultsOutdated ? qsTr("Results are outdated")
                    : root.projectViewModel.hasResults ? "" : qsTr("Not solved: no results")
            }
            Label {
                visible: root.shownTable !== null && search.text !== ""
                opacity: 0.8
                font.pixelSize: 12
                text: root.shownTable ? qsTr("%1 of %2").arg(root.shownTable.table.rows).arg(root.shownTable.table.size) : ""
            }
            TextField {
                id: search

                objectName: "search"
                opacity: enabled ? 1 : 0
                enabled: root.shownTable !== null
                Layout.preferredWidth: 180
                placeholderText: qsTr("Search")
                selectByMouse: true
                onTextChanged: typing.restart()
                Keys.onEscapePressed: text = ""

                Timer {
                    id: typing

                    interval: 250
                    onTriggered: nodes.search = elements.search = search.text
                }
            }
            ToolButton {
                objectName: "closeDock"
                text: "✕"
                Accessible.name: qsTr("Close")
                onClicked: root.open = false
            }
        }
        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 1
            color: root.palette.mid
        }
        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: tabs.currentIndex

            FindingsView {
                projectViewModel: root.projectViewModel
                calculation: root.calculation
            }
            ResultTableView {
                id: nodeTable

                objectName: "nodeTable"
                table: ResultTable {
                    id: nodes

                    projectViewModel: root.projectViewModel
                    active: root.open && root.currentTab === 1
                }
            }
            ResultTableView {
                id: elementTable

                objectName: "elementTable"
                table: ResultTable {
                    id: elements

                    projectViewModel: root.projectViewModel
                    showsElements: true
                    active: root.open && root.currentTab === 2
                }
            }
        }
    }
}
