import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.PreviewContent
import Gavrel.Views

/// The ten commands below the 3D area: one row or, where that is too wide, two.
GridLayout {
    id: root

    required property Item commands
    property bool compact: false
    property bool narrow: false
    readonly property ProjectViewModel model: commands.projectViewModel
    readonly property bool enoughNodes: model.selectedNodesForTruss.length >= 2

    readonly property int buttonPadding: compact ? 5 : 12
    readonly property int buttonFont: compact ? 12 : 13

    columns: narrow ? 5 : 10
    columnSpacing: compact ? 3 : 8
    rowSpacing: columnSpacing

    component Command: Button {
        Layout.fillWidth: root.narrow
        implicitWidth: implicitContentWidth + leftPadding + rightPadding
        horizontalPadding: root.buttonPadding
        verticalPadding: 6
        font.pixelSize: root.buttonFont
        focusPolicy: Qt.TabFocus
    }

    Command {
        objectName: "addNode"
        text: qsTr("Add Node")
        onClicked: root.commands.addNode()
    }
    Command {
        objectName: "selectForTruss"
        text: root.model.appMode === AppMode.addingTruss ? qsTr("Done Selecting") : qsTr("Select for Truss")
        enabled: root.model.appMode !== AppMode.addingBeam
        onClicked: root.commands.toggleMode(AppMode.addingTruss)
    }
    Command {
        objectName: "selectForBeam"
        text: root.model.appMode === AppMode.addingBeam ? qsTr("Done Selecting") : qsTr("Select for Beam")
        enabled: root.model.appMode !== AppMode.addingTruss
        onClicked: root.commands.toggleMode(AppMode.addingBeam)
    }
    Command {
        objectName: "addTruss"
        text: qsTr("Add Truss")
        enabled: root.enoughNodes && root.model.appMode === AppMode.addingTruss
        onClicked: root.commands.showingTrussConfigSheet = true
    }
    Command {
        objectName: "addBeam"
        text: qsTr("Add Beam")
        enabled: root.enoughNodes && root.model.appMode === AppMode.addingBeam
        onClicked: root.commands.showingBeamConfigSheet = true
    }
    Command {
        objectName: "calculate"
        text: qsTr("Calculate")
        onClicked: root.commands.calculation.run()
    }
    ProminentButton {
        objectName: "showStrain"
        Layout.fillWidth: root.narrow
        text: qsTr("Show Strain")
        implicitWidth: implicitContentWidth + leftPadding + rightPadding
        horizontalPadding: root.buttonPadding
        verticalPadding: 6
        font.pixelSize: root.buttonFont
        focusPolicy: Qt.TabFocus
        onClicked: root.commands.toggleStrain()
    }
    Command {
        objectName: "save"
        text: qsTr("Save")
        onClicked: root.commands.files.save()
    }
    Command {
        objectName: "saveAs"
        text: qsTr("Save As...")
        onClicked: root.commands.files.showSavePanel()
    }
    Command {
        objectName: "open"
        text: qsTr("Open...")
        onClicked: root.commands.files.showOpenPanel()
    }
}
