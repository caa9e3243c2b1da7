import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views

/// A label and the number that it names.
RowLayout {
    id: root

    required property string label
    required property string placeholder
    required property string value
    readonly property alias field: input

    signal edited(string text)

    spacing: 8

    Label {
        Layout.preferredWidth: 10 * font.pixelSize
        text: root.label
    }
    NumberField {
        id: input

        Layout.fillWidth: true
        placeholderText: root.placeholder
        text: root.value
        onTextEdited: root.edited(text)
    }
}
