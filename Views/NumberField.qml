import QtQuick
import QtQuick.Controls
import Gavrel.Views

/// A field for a number. A failed check() marks it as wrong until it is edited.
TextField {
    id: root

    property bool invalid: false

    leftPadding: 6
    rightPadding: 6
    selectByMouse: true
    inputMethodHints: Qt.ImhPreferNumbers | Qt.ImhNoPredictiveText
    Accessible.name: placeholderText
    Accessible.description: invalid ? qsTr("Not a number") : ""
    onTextChanged: invalid = false
    onActiveFocusChanged: {
        if (activeFocus && (focusReason === Qt.TabFocusReason || focusReason === Qt.BacktabFocusReason))
            selectAll();
    }

    /// The number, or undefined if the text is not a number.
    function check() {
        const number = NumberFormat.parse(text);
        invalid = number === undefined;
        return number;
    }

    background: Rectangle {
        implicitWidth: 120
        implicitHeight: 26
        radius: 4
        color: root.palette.base
        border {
            width: root.invalid || root.activeFocus ? 2 : 1
            // A red that is visible on light and dark backgrounds.
            color: root.invalid ? "#e5484d" : root.activeFocus ? root.palette.highlight
                 : Qt.alpha(root.palette.text, 0.3)
        }
    }
}
