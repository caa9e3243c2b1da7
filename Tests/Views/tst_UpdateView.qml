import QtQuick
import QtQuick.Controls
import QtTest
import Gavrel.Views

Item {
    width: 600
    height: 500

    UpdateView {
        id: view

        updateManager: updates.manager
        onDismiss: test.dismissals++
    }

    TestCase {
        id: test

        property int dismissals: 0

        name: "UpdateView"
        when: windowShown

        /// All items inside that are seen and have a text, from top to bottom and left to right.
        function withText(item) {
            let found = [];
            if (!item.visible)
                return found;
            if (item.text !== undefined && item.text !== "")
                return [item];
            for (let i = 0; i < item.children.length; ++i)
                found = found.concat(withText(item.children[i]));
            return found;
        }

        function texts() {
            return withText(view).map(item => item.text);
        }

        function press(text) {
            const button = withText(view).find(item => item.text === text);
            verify(button);
            mouseClick(button);
        }

        function init() {
            view.updateManager = updates.manager;
            dismissals = 0;
        }

        function test_panels_data() {
            return [
                { tag: "idle", texts: [] },
                { tag: "checking", texts: ["Checking for updates...", "Current version: 1.2", "Cancel"] },
                { tag: "updateAvailable", texts: ["Update Available", "Version 2.0.1", "Current: 1.2", "<b>what</b>", "Later",
                    "Download & Install"] },
                { tag: "downloading", texts: ["Downloading update...", "99%", "Cancel"] },
                { tag: "downloaded", texts: ["Download Complete", "Gavrel is ready to install", "Cancel", "Install & Restart"] },
                { tag: "installing", texts: ["Installing update...", "Gavrel will restart automatically"] },
                { tag: "completed", texts: ["Update complete!", "Gavrel has been updated successfully."] },
                { tag: "error", texts: ["Update Error", "Network error: <b>what</b>", "OK"] }
            ];
        }

        function test_panels(data) {
            updates.show(data.tag, 0.999, "<b>what</b>");
            compare(texts(), data.texts);
            verify(view.implicitWidth >= 400 && view.implicitHeight >= 250);
            view.updateManager = updates.unnamed;
            compare(texts(), data.texts.map(text => text.replace("Gavrel", "the app").replace("1.2", "")));
        }

        function test_progress() {
            updates.show("downloading", 0);
            compare(texts()[1], "0%");
            updates.show("downloading", 1);
            compare(texts()[1], "100%");
        }

        function test_longTextsStayInside() {
            const changes = "word ".repeat(500);
            updates.show("updateAvailable", 0, changes);
            verify(view.implicitHeight < 450);
            updates.show("error", 0, "https://host/" + "a".repeat(300));
            for (const item of withText(view))
                verify(item.width <= 340);
        }

        function test_buttonsThatAbandon() {
            for (const [text, state] of [["Later", "updateAvailable"], ["Cancel", "downloaded"], ["Cancel", "checking"], ["Cancel", "downloading"], ["OK", "error"]]) {
                dismissals = 0;
                updates.show(state);
                press(text);
                compare(dismissals, 1, text);
                tryCompare(updates.manager.state, "name", "idle");
            }
        }

        function test_buttonsThatGoOn() {
            updates.show("updateAvailable");
            press("Download & Install");
            tryVerify(() => updates.manager.state.errorDescription === "Invalid update URL");
            updates.show("downloaded");
            press("Install & Restart");
            tryVerify(() => updates.manager.state.errorDescription.startsWith("Installation failed: This copy was not"));
            compare(dismissals, 0);
        }
    }
}
