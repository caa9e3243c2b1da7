import QtQuick
import Gavrel.PreviewContent

/// The panels in which files are chosen, and the question before one is replaced.
Item {
    id: root

    required property ProjectViewModel projectViewModel
    /// A file that was chosen for writing and is there already: the file, what writes it, and the panel it was chosen in.
    property var replacing: null
    readonly property bool savingFile: savePanel.visible || replacing !== null
    readonly property bool presented: savingFile || openPanel.visible || importPanel.visible || exportPanel.visible

    signal saveChosen(url file)
    signal openChosen(url file)
    signal importChosen(var files)
    signal cancelled()  ///< no file to write was chosen

    function chooseForSaving(name) {
        savePanel.open(projectViewModel.currentFolder, name);
    }

    function chooseForOpening() {
        openPanel.open(projectViewModel.currentFolder);
    }

    function chooseForImport() {
        importPanel.open(projectViewModel.currentFolder);
    }

    /// Asks for a file and gives it to the function.
    function exportWith(write, name, suffix) {
        exportPanel.write = write;
        exportPanel.defaultSuffix = suffix;
        exportPanel.nameFilters = [suffix.toUpperCase() + " (*." + suffix + ")"];
        exportPanel.open(projectViewModel.currentFolder, name + "." + suffix);
    }

    /// Gives the file that was chosen in the panel to the function, after a question if there is one of its name.
    function writeTo(file, write, panel) {
        if (savePanel.exists(file))
            replacing = { file: file, write: write, panel: panel };
        else
            write(file);
    }

    Sheet {
        presented: root.replacing !== null
        onDismissed: {
            root.replacing = null;
            root.cancelled();
        }

        QuestionView {
            question: qsTr("Replace “%1”?").arg(savePanel.nameOf(root.replacing.file))
            explanation: qsTr("There is a file of this name already. What it holds is lost if it is replaced.")
            losing: qsTr("Replace")
            nothing: qsTr("Cancel")
            usual: qsTr("Choose Another Name")
            // The answer first, since the question whether to save comes back when nothing is to be replaced any more.
            onLost: {
                root.replacing.write(root.replacing.file);
                root.replacing = null;
            }
            onChosen: {
                root.replacing.panel.open(root.projectViewModel.currentFolder, savePanel.nameOf(root.replacing.file));
                root.replacing = null;
            }
        }
    }

    FilePanel {
        id: savePanel

        purpose: FilePanel.Save
        title: qsTr("Save Project")
        acceptLabel: qsTr("Save")
        nameFilters: [qsTr("JSON files (*.json)")]
        defaultSuffix: "json"
        palette: root.palette
        onAccepted: files => root.writeTo(files[0], file => root.saveChosen(file), savePanel)
        onRejected: root.cancelled()
    }

    FilePanel {
        id: openPanel

        title: qsTr("Open Project")
        nameFilters: [qsTr("JSON files (*.json)")]
        palette: root.palette
        onAccepted: files => root.openChosen(files[0])
    }

    FilePanel {
        id: importPanel

        purpose: FilePanel.OpenMany
        title: qsTr("Import Tables and Drawings")
        acceptLabel: qsTr("Import")
        nameFilters: [qsTr("Tables and drawings (*.csv *.CSV *.txt *.dxf *.DXF)")]
        palette: root.palette
        onAccepted: files => root.importChosen(files)
    }

    FilePanel {
        id: exportPanel

        property var write: null

        purpose: FilePanel.Save
        title: qsTr("Export")
        acceptLabel: qsTr("Export")
        palette: root.palette
        onAccepted: files => root.writeTo(files[0], write, exportPanel)
    }
}
