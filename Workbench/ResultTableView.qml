import QtQuick
import QtQuick.Controls
import Gavrel.Workbench

/// A table of nodes or elements. A click on a heading sorts, a click on a row highlights it in the 3D area; the arrow
/// keys go from row to row, the page keys further, Home and End to the first and the last.
Item {
    id: root

    required property ResultTable table
    property int selectedPosition: -1
    // Depends on `rows`, which is announced whenever the rows change.
    readonly property int selectedRow: table.rows > 0 && selectedPosition >= 0 ? table.findRow(selectedPosition) : -1

    readonly property int rowHeight: 22

    function select(row) {
        if (row < 0 || row >= table.rows)
            return;
        selectedPosition = table.positionAt(row);
        table.mark(row);
        show(row);
    }

    function show(row) {
        const top = row * rowHeight;
        if (top < view.contentY)
            view.contentY = top;
        else if (top + rowHeight > view.contentY + view.height)
            view.contentY = top + rowHeight - view.height;
    }

    function showNode(node) {
        select(table.findRow(node));
    }

    function showElement(isBeam, element) {
        select(table.findElementRow(isBeam, element));
    }

    Connections {
        target: root.table.projectViewModel

        function onMarksChanged() {
            if (!root.table.projectViewModel.hasMarks)
                root.selectedPosition = -1;
        }

        function onProjectLoaded() {
            root.selectedPosition = -1;
        }
    }

    Item {
        id: headings

        width: parent.width
        height: 26
        clip: true

        Row {
            x: -view.contentX

            Repeater {
                model: root.table.columnCount()

                Rectangle {
                    id: heading

                    required property int index
                    readonly property bool sorted: root.table.sortColumn === index

                    objectName: "heading" + index
                    width: root.table.columnWidth(index)
                    height: headings.height
                    color: pointer.hovered ? root.palette.midlight : root.palette.button

                    Label {
                        anchors {
                            fill: parent
                            leftMargin: 6
                            rightMargin: 6
                        }
                        text: root.table.headerData(heading.index, Qt.Horizontal)
                            + (heading.sorted ? (root.table.descending ? " ▼" : " ▲") : "")
                        horizontalAlignment: root.table.holdsNumbers(heading.index) ? Text.AlignRight : Text.AlignLeft
                        verticalAlignment: Text.AlignVCenter
                        elide: Text.ElideRight
                        font.pixelSize: 12
                        font.bold: heading.sorted
                    }
                    Rectangle {
                        anchors.right: parent.right
                        width: 1
                        height: parent.height
                        color: root.palette.mid
                        opacity: 0.5
                    }
                    HoverHandler {
                        id: pointer
                    }
                    TapHandler {
                        onTapped: root.table.sortBy(heading.index)
                    }
                }
            }
        }
    }

    TableView {
        id: view

        objectName: "table"
        anchors {
            top: headings.bottom
            left: parent.left
            right: parent.right
            bottom: parent.bottom
        }
        clip: true
        focus: true
        model: root.table
        boundsBehavior: Flickable.StopAtBounds
        rowHeightProvider: () => root.rowHeight
        columnWidthProvider: column => root.table.columnWidth(column)
        ScrollBar.vertical: ScrollBar {}
        ScrollBar.horizontal: ScrollBar {}
        Keys.onPressed: event => {
            const page = Math.max(1, Math.floor(height / root.rowHeight) - 1);
            const step = new Map([[Qt.Key_Up, -1], [Qt.Key_Down, 1], [Qt.Key_PageUp, -page], [Qt.Key_PageDown, page],
                [Qt.Key_Home, -root.table.rows], [Qt.Key_End, root.table.rows]]).get(event.key);
            event.accepted = step !== undefined;
            if (event.accepted)
                root.select(Math.max(0, Math.min(root.table.rows - 1, root.selectedRow + step)));
        }

        delegate: Rectangle {
            id: cell

            required property int row
            required property int column
            required property string display
            readonly property bool selected: row === root.selectedRow

            implicitWidth: 60
            implicitHeight: root.rowHeight
            color: selected ? root.palette.highlight : row % 2 === 1 ? root.palette.alternateBase : root.palette.base

            Label {
                anchors {
                    fill: parent
                    leftMargin: 6
                    rightMargin: 6
                }
                text: cell.display
                textFormat: Text.PlainText
                horizontalAlignment: root.table.holdsNumbers(cell.column) ? Text.AlignRight : Text.AlignLeft
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
                font.pixelSize: 12
                color: cell.selected ? root.palette.highlightedText : root.palette.text
            }
            TapHandler {
                onTapped: {
                    view.forceActiveFocus();
                    root.select(cell.row);
                }
            }
        }
    }

    Label {
        anchors.centerIn: view
        visible: root.table.rows === 0
        opacity: 0.7
        text: root.table.size > 0 ? qsTr("Nothing matches the search") : root.table.showsElements ? qsTr("No elements yet") : qsTr("No nodes yet")
    }
}
