import QtQuick
import QtQuick.Controls
import QtTest
import Gavrel.Views

Item {
    ApplicationWindow {
        width: 600
        height: 400
        visible: true

        TestCase {
            id: test

            property var happened: []
            property bool shown: false
            property Component chosen: form

            name: "Sheet"
            when: windowShown
            visible: true

            Button {
                id: below

                text: "below"
                onClicked: test.happened.push("below")
            }

            Sheet {
                id: sheet

                presented: test.shown
                content: test.chosen
                onDismissed: {
                    test.happened.push("dismissed");
                    test.shown = false;
                }
            }

            Component {
                id: form

                Column {
                    readonly property Item firstField: first

                    signal dismiss()

                    function cancel() {
                        test.happened.push("cancel");
                        test.chosen = null;  // the sheet must not use what closing has destroyed
                        dismiss();
                    }
                    function confirm() {
                        test.happened.push("confirm");
                    }

                    NumberField {
                        id: first

                        text: "1.5"
                        onAccepted: test.happened.push("accepted")
                    }
                    SmallSwitch {
                        text: "switch"
                    }
                    Button {
                        text: "last"
                        onClicked: test.happened.push("last")
                    }
                    Component.onDestruction: test.happened.push("destroyed")
                }
            }

            function item() {
                return sheet.contentItem.Window.activeFocusItem;
            }

            function initTestCase() {
                Window.window.requestActivate();
                below.forceActiveFocus();
                tryVerify(() => below.activeFocus);
            }

            function init() {
                chosen = form;
                below.forceActiveFocus();
                shown = true;
                tryVerify(() => sheet.opened);
                happened = [];
            }

            function cleanup() {
                shown = false;
                tryVerify(() => !sheet.visible);
            }

            function test_tabStaysInside() {
                const texts = [];
                for (const modifier of [Qt.NoModifier, Qt.NoModifier, Qt.NoModifier, Qt.ShiftModifier]) {
                    compare(item().selectedText, item().text === "1.5" ? "1.5" : undefined);
                    keyClick(Qt.Key_Tab, modifier);
                    texts.push(item().text);
                }
                compare(texts, ["switch", "last", "1.5", "last"]);
            }

            function test_returnConfirmsOnce_data() {
                return [{ key: Qt.Key_Return }, { key: Qt.Key_Enter }];
            }

            function test_returnConfirmsOnce(data) {
                for (const answer of [["accepted", "confirm"], ["confirm"], ["last"]]) {
                    happened = [];
                    keyClick(data.key);
                    compare(happened, answer);
                    keyClick(Qt.Key_Tab);
                }
                verify(shown);
            }

            function test_escapeCancels() {
                keyClick(Qt.Key_Escape);
                tryCompare(test, "happened", ["cancel", "dismissed", "destroyed"]);
                verify(below.activeFocus);
            }

            function test_isModalAndCentred() {
                mouseClick(below);
                compare(happened, []);
                verify(sheet.opened);
                const window = test.Window.window;
                fuzzyCompare(sheet.x, (window.width - sheet.width) / 2, 1);
                fuzzyCompare(sheet.y, (window.height - sheet.height) / 2, 1);
            }

            function test_contentIsMadeAnew() {
                keyClick(Qt.Key_7);
                compare(item().text, "7");
                shown = false;
                shown = true;
                tryCompare(test, "happened", ["destroyed"]);
                verify(sheet.opened);
                compare(item().selectedText, "1.5");
            }

            function test_emptySheetCanBeLeft() {
                shown = false;
                chosen = null;
                shown = true;
                happened = [];
                verify(sheet.width >= 100 && sheet.height >= 100);
                keyClick(Qt.Key_Return);
                verify(shown);
                keyClick(Qt.Key_Escape);
                verify(happened.includes("dismissed"));
                verify(!sheet.visible);
            }
        }
    }
}
