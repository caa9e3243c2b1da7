import QtQuick
import Gavrel.Viewport

/// Mouse, trackpad and keys over the 3D area. A click picks; a left drag or the arrow keys turn; a right, middle or
/// Shift drag, two fingers, or Shift with arrow keys pan; the wheel, a pinch, + and - zoom; F fits.
FocusScope {
    id: root

    required property ViewCamera camera
    property bool selecting: false

    signal hoverEnded()

    readonly property real keyStep: 30 // pixels
    readonly property real zoomStep: 1.2

    focus: true
    activeFocusOnTab: true
    Accessible.role: Accessible.Canvas
    Accessible.name: qsTr("3D view")
    Accessible.focusable: true

    function turnOrPan(modifiers, dx, dy) {
        camera.grab(width / 2, height / 2);
        if (modifiers & Qt.ShiftModifier)
            camera.pan(dx, dy);
        else
            camera.orbit(dx, dy);
    }

    Keys.onLeftPressed: event => turnOrPan(event.modifiers, -keyStep, 0)
    Keys.onRightPressed: event => turnOrPan(event.modifiers, keyStep, 0)
    Keys.onUpPressed: event => turnOrPan(event.modifiers, 0, -keyStep)
    Keys.onDownPressed: event => turnOrPan(event.modifiers, 0, keyStep)
    Keys.onPressed: event => {
        event.accepted = true;
        if (event.key === Qt.Key_Plus || event.key === Qt.Key_Equal)
            camera.zoom(zoomStep, width / 2, height / 2);
        else if (event.key === Qt.Key_Minus)
            camera.zoom(1 / zoomStep, width / 2, height / 2);
        else if (event.key === Qt.Key_F)
            camera.fit();
        else
            event.accepted = false;
    }

    MouseArea {
        property point pressedAt
        property point last
        property bool dragging: false
        property bool overShape: false

        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.RightButton | Qt.MiddleButton
        hoverEnabled: true
        cursorShape: dragging ? Qt.ClosedHandCursor : overShape ? Qt.PointingHandCursor
                   : root.selecting ? Qt.CrossCursor : Qt.ArrowCursor

        onPressed: event => {
            root.forceActiveFocus(Qt.MouseFocusReason);
            pressedAt = last = Qt.point(event.x, event.y);
            dragging = false;
            root.camera.grab(event.x, event.y);
        }
        onPositionChanged: event => {
            if (!pressed) {
                overShape = root.camera.hover(event.x, event.y);
                return;
            }
            const way = Math.max(Math.abs(event.x - pressedAt.x), Math.abs(event.y - pressedAt.y));
            if (!dragging && way < Application.styleHints.startDragDistance)
                return;
            dragging = true;
            const dx = event.x - last.x, dy = event.y - last.y;
            last = Qt.point(event.x, event.y);
            if (event.buttons === Qt.LeftButton && !(event.modifiers & Qt.ShiftModifier))
                root.camera.orbit(dx, dy);
            else
                root.camera.pan(dx, dy);
        }
        onReleased: event => {
            if (!dragging && event.button === Qt.LeftButton)
                root.camera.click(event.x, event.y);
            dragging = false;
        }
        onExited: {
            overShape = false;
            root.hoverEnded();
        }
    }

    WheelHandler {
        acceptedDevices: PointerDevice.Mouse
        onWheel: event => root.camera.zoom(Math.pow(root.zoomStep, event.angleDelta.y / 120), event.x, event.y)
    }

    WheelHandler {
        acceptedDevices: PointerDevice.TouchPad
        onWheel: event => {
            const moved = event.pixelDelta.x !== 0 || event.pixelDelta.y !== 0 ? event.pixelDelta
                : Qt.point(event.angleDelta.x / 4, event.angleDelta.y / 4);
            if (event.modifiers & Qt.ControlModifier) {
                root.camera.zoom(Math.pow(root.zoomStep, moved.y / 30), event.x, event.y);
            } else {
                root.camera.grab(event.x, event.y);
                root.camera.pan(moved.x, moved.y);
            }
        }
    }

    PinchHandler {
        property real last: 1

        target: null
        onActiveChanged: last = 1
        onActiveScaleChanged: {
            root.camera.zoom(activeScale / last, centroid.position.x, centroid.position.y);
            last = activeScale;
        }
    }
}
