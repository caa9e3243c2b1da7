import QtQuick
import QtQuick.Controls
import Gavrel.PreviewContent

/// A text that is to be a number. It is marked from a failed check() until it is edited.
TextField {
    id: root

    property bool invalid: false

    selectByMouse: true
    inputMethodHints: Qt.ImhFormattedNumbersOnly
    Accessible.name: placeholderText
    onTextEdited: invalid = false

    /// The number, or undefined if the text is none.
    function check() {
        const number = NumberFormat.parse(text);
        invalid = number === undefined;
        return number;
    }

    Rectangle {
        anchors.fill: parent
        visible: root.invalid
        radius: 2
        color: "#22e03030"
        border {
            width: 2
            color: "#e03030"
        }
    }
}
