import QtQuick
import Gavrel.PreviewContent

/// What there is to tell and to ask about project files: a save or an open that has failed, a file that others have
/// changed, a structure that cannot be shown.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    readonly property bool presented: failedSave !== "" || failedOpen !== "" || changeOnDisk !== "" || danger !== ""

    property string failedSave: ""
    /// Whether a failed save goes on with the question for another place.
    property bool asksForPlace: false
    property string failedOpen: ""
    property string changeOnDisk: ""
    property string dangerousName: ""
    property string danger: ""
    property var showAnyway: null

    signal overwriteChosen()
    signal placeRequested()
    signal cancelled()

    /// Shows a structure by this action, which would end the program for this reason, only if its user wants it.
    function askToShow(name, reason, action) {
        dangerousName = name;
        danger = reason;
        showAnyway = action;
    }

    Connections {
        target: root.projectViewModel

        function onSaveFailed(reason) {
            root.failedSave = reason;
        }

        function onOpenFailed(file, reason) {
            root.failedOpen = qsTr("“%1” was not opened. The structure is empty now.").arg(file) + "\n\n" + reason;
        }

        function onOpenHeldBack(file, reason) {
            root.askToShow(file, reason, () => root.projectViewModel.openAnyway());
        }
    }

    Sheet {
        presented: root.failedSave !== ""
        onDismissed: {
            if (root.asksForPlace)
                root.placeRequested();
            root.asksForPlace = false;
            root.failedSave = "";
        }

        NoticeView {
            text: qsTr("“%1” was not saved.").arg(root.projectViewModel.currentFileName || root.projectViewModel.projectName)
                + "\n\n" + root.failedSave
            closing: root.asksForPlace ? qsTr("Save As…") : qsTr("Close")
        }
    }

    Sheet {
        presented: root.failedOpen !== ""
        onDismissed: root.failedOpen = ""

        NoticeView {
            text: root.failedOpen
            action: root.projectViewModel.hasPrevious ? qsTr("Restore Previous Structure") : ""
            onActed: {
                root.projectViewModel.restorePrevious();
                dismiss();
            }
        }
    }

    Sheet {
        presented: root.changeOnDisk !== ""
        onDismissed: {
            root.changeOnDisk = "";
            root.cancelled();
        }

        QuestionView {
            readonly property bool removed: root.changeOnDisk === "removed"

            question: (removed ? qsTr("Write “%1” anew?") : qsTr("Overwrite “%1”?")).arg(root.projectViewModel.currentFileName)
            explanation: removed ? qsTr("Since it was opened or saved here, the file was removed or renamed.")
                : qsTr("Since it was opened or saved here, the file was changed by another program or window. What was changed there is lost if you overwrite it.")
            losing: removed ? qsTr("Write Anew") : qsTr("Overwrite")
            nothing: qsTr("Cancel")
            usual: qsTr("Save As…")
            onLost: {
                root.changeOnDisk = "";
                root.overwriteChosen();
            }
            onChosen: {
                root.placeRequested();
                root.changeOnDisk = "";
            }
        }
    }

    Sheet {
        presented: root.danger !== ""
        onDismissed: root.danger = ""

        QuestionView {
            question: qsTr("Open “%1” although that ends Gavrel?").arg(root.dangerousName)
            explanation: qsTr("It has an element whose node does not exist: %1. Showing it ends the program.\n\nIf you cancel, the file and the structure that is open stay as they are.").arg(root.danger)
            losing: qsTr("Open Anyway")
            nothing: ""
            usual: qsTr("Cancel")
            onLost: {
                root.danger = "";
                root.showAnyway();
            }
            onChosen: dismiss()
        }
    }
}
