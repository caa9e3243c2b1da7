import QtQuick
import QtQuick.Controls

/// The frame of all forms and detail sheets: modal and centred over the window.
///
/// Its content is made anew each time `presented` turns true and destroyed when it turns false. It may have
/// - a signal dismiss(), upon which `dismissed` asks the owner to turn `presented` off;
/// - a function cancel(), called for Escape; without one Escape dismisses;
/// - a function confirm(), called for Return unless a button has the focus, which Return then presses;
/// - an item `firstField` that gets the focus, with its text selected.
Popup {
    id: root

    property bool presented: false
    default property Component content: null

    signal dismissed()

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: parent ? Math.min(implicitWidth, parent.width - 16) : implicitWidth
    height: parent ? Math.min(implicitHeight, parent.height - 16) : implicitHeight
    modal: true
    focus: true
    closePolicy: Popup.NoAutoClose
    padding: 8
    enter: null
    exit: null

    onPresentedChanged: {
        if (presented) {
            loader.sourceComponent = content;
            open();
            takeFocus();
        } else {
            close();
            loader.sourceComponent = undefined;
        }
    }

    function takeFocus() {
        const field = loader.item ? loader.item.firstField : null;
        if (!field) {
            frame.forceActiveFocus();
            return;
        }
        field.forceActiveFocus(Qt.TabFocusReason);
        if (field.selectAll)
            field.selectAll();
    }

    function cancel() {
        if (loader.item && loader.item.cancel)
            loader.item.cancel();
        else
            dismissed();
    }

    function confirm(event) {
        // A key that was already down when the sheet opened does not confirm.
        if (event.isAutoRepeat)
            return;
        const focused = frame.Window.activeFocusItem;
        if (focused instanceof Button)
            focused.clicked();
        else if (loader.item && loader.item.confirm)
            loader.item.confirm();
    }

    Overlay.modal: Rectangle {
        color: "#66000000"
    }

    background: Item {
        implicitWidth: 200
        implicitHeight: 100

        // The shadow: layers of growing width and falling opacity, a little lower than the sheet.
        Repeater {
            model: 8

            Rectangle {
                required property int index

                anchors {
                    fill: parent
                    margins: -index
                    topMargin: 3 - index
                    bottomMargin: -3 - index
                }
                radius: 8 + index
                color: "#0a000000"
            }
        }
        Rectangle {
            anchors.fill: parent
            radius: 8
            color: root.palette.window
            border.color: Qt.alpha(root.palette.windowText, 0.2)
        }
    }

    contentItem: FocusScope {
        id: frame

        implicitWidth: loader.implicitWidth
        implicitHeight: loader.implicitHeight

        Keys.onEscapePressed: root.cancel()
        Keys.onReturnPressed: event => root.confirm(event)
        Keys.onEnterPressed: event => root.confirm(event)

        Loader {
            id: loader

            anchors.fill: parent
            focus: true
        }

        Connections {
            target: loader.item
            ignoreUnknownSignals: true

            function onDismiss() {
                root.dismissed();
            }
        }
    }
}
