import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views
import Gavrel.Workbench

/// The findings of the check. A click on one highlights its nodes and elements in the 3D area.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    required property Calculation calculation
    property int selected: -1
    readonly property string summary: {
        if (calculation.checkOutdated)
            return qsTr("The structure was changed since this check.");
        if (calculation.outcome === "")
            return qsTr("Nothing was solved.");
        return calculation.hasSeriousFindings ? qsTr("Solved in spite of these findings.") : qsTr("Solved. Doubtful findings do not prevent a result.");
    }

    function select(index) {
        calculation.markFinding(index);
        selected = index;
        list.forceActiveFocus();
    }

    function makeLinear(index) {
        calculation.makeLinear(index);
        calculation.run();
    }

    Connections {
        target: root.calculation

        function onFindingsChanged() {
            root.selected = -1;
        }
    }

    Connections {
        target: root.projectViewModel

        function onMarksChanged() {
            root.selected = -1;  // something else, or nothing, is highlighted now
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ListView {
            id: list

            objectName: "findings"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: root.calculation.findings
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}

            delegate: Rectangle {
                id: finding

                required property int index
                required property string consequence
                required property bool endsProgram
                required property bool isSerious
                required property string title
                required property string text
                required property bool canMakeLinear

                width: list.width
                height: row.implicitHeight + 16
                color: index === root.selected ? Qt.alpha(root.palette.highlight, 0.18) : pointer.hovered ? root.palette.midlight : "transparent"

                RowLayout {
                    id: row

                    anchors {
                        left: parent.left
                        right: parent.right
                        verticalCenter: parent.verticalCenter
                        leftMargin: 12
                        rightMargin: 16
                    }
                    spacing: 12

                    Rectangle {
                        Layout.preferredWidth: 140
                        implicitHeight: 22
                        radius: 11
                        color: finding.endsProgram ? "#c62f2f" : finding.isSerious ? "#b45f06" : "#6b7280"

                        Label {
                            anchors.centerIn: parent
                            text: finding.consequence
                            font.pixelSize: 12
                            font.bold: true
                            color: "#ffffff"
                        }
                    }
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 1

                        Label {
                            text: finding.title
                            font.bold: true
                        }
                        Label {
                            Layout.fillWidth: true
                            text: finding.text
                            wrapMode: Text.Wrap
                            font.pixelSize: 13
                        }
                    }
                    Button {
                        objectName: "makeLinear"
                        visible: finding.canMakeLinear
                        text: qsTr("Make Linear")
                        horizontalPadding: 10
                        // Later, since checking again rebuilds the list with this button.
                        onClicked: Qt.callLater(root.makeLinear, finding.index)
                    }
                }
                HoverHandler {
                    id: pointer
                }
                TapHandler {
                    onTapped: root.select(finding.index)
                }
            }
        }

        Label {
            objectName: "nothingFound"
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: list.count === 0
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            opacity: 0.7
            text: !root.calculation.checked ? qsTr("Not checked yet. Calculate checks the structure.")
                : root.calculation.checkOutdated ? qsTr("The last check found nothing, but the structure was changed since. Calculate checks it again.")
                : qsTr("The last check found nothing: the structure can be solved.")
        }

        RowLayout {
            Layout.margins: 8
            visible: list.count > 0
            spacing: 8

            Label {
                Layout.fillWidth: true
                Layout.leftMargin: 4
                elide: Text.ElideRight
                opacity: 0.8
                font.pixelSize: 12
                objectName: "findingsState"
                text: root.summary + " " + qsTr("Click a finding to see where it is.")
            }
            Button {
                objectName: "calculateAnyway"
                visible: root.calculation.hasSeriousFindings
                text: qsTr("Calculate Anyway")
                horizontalPadding: 12
                onClicked: root.calculation.runAnyway()
            }
            ProminentButton {
                objectName: "checkAgain"
                text: qsTr("Check Again")
                horizontalPadding: 12
                onClicked: root.calculation.run()
            }
        }
    }
}
