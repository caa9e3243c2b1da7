import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views
import Gavrel.Workbench

/// The ten commands below the 3D area: one row or, where that is too wide, two.
GridLayout {
    id: root

    required property Actions actions
    property bool compact: false
    property bool narrow: false

    readonly property int buttonPadding: compact ? 5 : 12
    readonly property int buttonFont: compact ? 12 : 13

    columns: narrow ? 5 : 10
    columnSpacing: compact ? 3 : 8
    rowSpacing: columnSpacing

    component Command: Button {
        required property Actions.Command command

        Layout.fillWidth: root.narrow
        implicitWidth: implicitContentWidth + leftPadding + rightPadding
        horizontalPadding: root.buttonPadding
        verticalPadding: 6
        font.pixelSize: root.buttonFont
        focusPolicy: Qt.TabFocus
        text: command.label
        enabled: command.available
        onClicked: command.trigger()
    }

    Command {
        objectName: "addNode"
        command: root.actions.addNode
    }
    Command {
        objectName: "selectForTruss"
        command: root.actions.selectForTruss
    }
    Command {
        objectName: "selectForBeam"
        command: root.actions.selectForBeam
    }
    Command {
        objectName: "addTruss"
        command: root.actions.addTruss
    }
    Command {
        objectName: "addBeam"
        command: root.actions.addBeam
    }
    Command {
        objectName: "calculate"
        command: root.actions.calculate
    }
    ProminentButton {
        objectName: "showStrain"
        Layout.fillWidth: root.narrow
        implicitWidth: implicitContentWidth + leftPadding + rightPadding
        horizontalPadding: root.buttonPadding
        verticalPadding: 6
        font.pixelSize: root.buttonFont
        focusPolicy: Qt.TabFocus
        text: root.actions.showStrain.label
        onClicked: root.actions.showStrain.trigger()
    }
    Command {
        objectName: "save"
        command: root.actions.save
    }
    Command {
        objectName: "saveAs"
        command: root.actions.saveAs
    }
    Command {
        objectName: "open"
        command: root.actions.open
    }
}
