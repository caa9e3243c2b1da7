import QtQuick
import QtQuick.Controls
import Gavrel.PreviewContent
import Gavrel.Views

/// The menu bar of the main window. While a sheet or panel is open, nothing but Quit, which asks, can be chosen.
MenuBar {
    id: root

    required property ContentView content
    property RecentFiles recentFiles: null
    property UpdateManager updateManager: null
    readonly property VisualizationView visualization: content.visualization

    enabled: !content.blocked

    component Command: Action {
        enabled: !root.content.blocked
    }

    signal checkForUpdates()
    signal aboutRequested()
    signal helpRequested()

    CommandMenu {
        title: qsTr("&Gavrel")

        Command {
            text: qsTr("&About Gavrel")
            onTriggered: root.aboutRequested()
        }
        Command {
            text: qsTr("Check for &Updates...")
            shortcut: "Ctrl+U"
            onTriggered: root.checkForUpdates()
        }
        Command {
            text: qsTr("Check for Updates at &Start")
            enabled: !root.content.blocked && root.updateManager !== null
            checkable: true
            checked: root.updateManager !== null && root.updateManager.checksAtStart
            onToggled: root.updateManager.checksAtStart = checked
        }
        MenuSeparator {}
        Action {
            text: qsTr("&Quit")
            shortcut: StandardKey.Quit
            onTriggered: Qt.quit()
        }
    }

    CommandMenu {
        title: qsTr("&File")

        Command {
            text: qsTr("&New")
            shortcut: StandardKey.New
            onTriggered: root.content.files.newProject()
        }
        Command {
            text: qsTr("&Open…")
            shortcut: StandardKey.Open
            onTriggered: root.content.files.showOpenPanel()
        }
        CommandMenu {
            id: recent

            title: qsTr("Open Re&cent")
            enabled: root.recentFiles !== null && root.recentFiles.paths.length > 0
            width: 360

            Instantiator {
                model: root.recentFiles ? root.recentFiles.paths : []
                onObjectAdded: (index, object) => recent.insertItem(index, object)
                onObjectRemoved: (index, object) => recent.removeItem(object)

                MenuItem {
                    required property string modelData

                    // An ampersand would mark a key.
                    text: modelData.substring(modelData.lastIndexOf("/") + 1).replace(/&/g, "&&")
                    ToolTip.text: modelData
                    ToolTip.visible: hovered
                    ToolTip.delay: 600
                    // Later: opening makes the list anew, and the menu must have closed before.
                    onTriggered: Qt.callLater(root.content.files.open, root.recentFiles.url(modelData))
                }
            }

            MenuSeparator {}
            Command {
                text: qsTr("C&lear This List")
                onTriggered: root.recentFiles.clear()
            }
        }
        Command {
            text: qsTr("&Restore Previous Structure")
            enabled: !root.content.blocked && root.content.projectViewModel.hasPrevious
            onTriggered: root.content.files.restorePrevious()
        }
        MenuSeparator {}
        Command {
            text: qsTr("&Save")
            shortcut: StandardKey.Save
            onTriggered: root.content.files.save()
        }
        Command {
            text: qsTr("Save &As…")
            shortcut: "Ctrl+Shift+S"
            onTriggered: root.content.files.showSavePanel()
        }
        MenuSeparator {}
        Command {
            text: qsTr("&Import…")
            shortcut: "Ctrl+I"
            onTriggered: root.content.files.showImportPanel()
        }
        CommandMenu {
            title: qsTr("&Export")

            Command {
                text: qsTr("&Node Table (CSV)…")
                onTriggered: root.content.files.exportNodes()
            }
            Command {
                text: qsTr("&Element Table (CSV)…")
                onTriggered: root.content.files.exportElements()
            }
            Command {
                text: qsTr("&ParaView Grid (VTU)…")
                onTriggered: root.content.files.exportVtu()
            }
            Command {
                text: qsTr("P&icture (PNG)…")
                onTriggered: root.content.files.exportPicture()
            }
        }
    }

    CommandMenu {
        title: qsTr("&View")

        Command {
            text: qsTr("&Fit to Structure")
            shortcut: "Ctrl+0"
            onTriggered: root.visualization.camera.fit()
        }
        MenuSeparator {}
        Command {
            text: qsTr("Fr&ont")
            shortcut: "Ctrl+1"
            onTriggered: root.visualization.camera.show(ViewCamera.Front)
        }
        Command {
            text: qsTr("&Top")
            shortcut: "Ctrl+2"
            onTriggered: root.visualization.camera.show(ViewCamera.Top)
        }
        Command {
            text: qsTr("&Right")
            shortcut: "Ctrl+3"
            onTriggered: root.visualization.camera.show(ViewCamera.Right)
        }
        Command {
            text: qsTr("&Isometric")
            shortcut: "Ctrl+4"
            onTriggered: root.visualization.camera.show(ViewCamera.Isometric)
        }
        MenuSeparator {}
        Command {
            text: qsTr("&z Axis Upright")
            checkable: true
            checked: root.visualization.camera.zUp
            onTriggered: root.visualization.camera.zUp = checked
        }
        MenuSeparator {}
        Command {
            text: qsTr("&Show Strain")
            checkable: true
            checked: root.content.projectViewModel.isStrainVisualizationActive
            onTriggered: root.content.toggleStrain()
        }
        Command {
            text: qsTr("&Node Numbers")
            checkable: true
            checked: root.visualization.showsNodeNumbers
            onToggled: root.visualization.showsNodeNumbers = checked
        }
        Command {
            text: qsTr("&Element Numbers")
            checkable: true
            checked: root.visualization.showsElementNumbers
            onToggled: root.visualization.showsElementNumbers = checked
        }
        Command {
            text: qsTr("Rendering S&tatistics")
            checkable: true
            onToggled: root.visualization.options = checked ? 3 : 2
        }
    }

    CommandMenu {
        id: structure

        readonly property ProjectViewModel model: root.content.projectViewModel
        readonly property bool enoughNodes: model.selectedNodesForTruss.length >= 2

        title: qsTr("&Structure")

        Command {
            text: qsTr("Add N&ode…")
            shortcut: "Ctrl+Shift+N"
            onTriggered: root.content.addNode()
        }
        Command {
            text: structure.model.appMode === AppMode.addingTruss ? qsTr("Done &Selecting") : qsTr("&Select for Truss")
            enabled: !root.content.blocked && structure.model.appMode !== AppMode.addingBeam
            onTriggered: root.content.toggleMode(AppMode.addingTruss)
        }
        Command {
            text: structure.model.appMode === AppMode.addingBeam ? qsTr("Done Se&lecting") : qsTr("Se&lect for Beam")
            enabled: !root.content.blocked && structure.model.appMode !== AppMode.addingTruss
            onTriggered: root.content.toggleMode(AppMode.addingBeam)
        }
        Command {
            text: qsTr("Add &Truss…")
            enabled: !root.content.blocked && structure.enoughNodes && structure.model.appMode === AppMode.addingTruss
            onTriggered: root.content.showingTrussConfigSheet = true
        }
        Command {
            text: qsTr("Add B&eam…")
            enabled: !root.content.blocked && structure.enoughNodes && structure.model.appMode === AppMode.addingBeam
            onTriggered: root.content.showingBeamConfigSheet = true
        }
        MenuSeparator {}
        Command {
            text: qsTr("&Calculate")
            shortcut: "Ctrl+R"
            onTriggered: root.content.calculation.run()
        }
        Command {
            text: qsTr("Check &Before Calculating")
            checkable: true
            checked: root.content.calculation.checks
            onToggled: root.content.calculation.checks = checked
        }
        Command {
            text: qsTr("&Convergence…")
            enabled: !root.content.blocked && root.content.calculation.residuals.length > 0
            onTriggered: root.content.showingConvergence = true
        }
        MenuSeparator {}
        Command {
            text: qsTr("&Findings")
            onTriggered: root.content.dock.show(0)
        }
        Command {
            text: qsTr("&Node Table")
            shortcut: "Ctrl+T"
            onTriggered: root.content.dock.show(1)
        }
        Command {
            text: qsTr("&Element Table")
            shortcut: "Ctrl+Shift+T"
            onTriggered: root.content.dock.show(2)
        }
    }

    CommandMenu {
        title: qsTr("&Help")

        Command {
            text: qsTr("&Mouse and Keys")
            onTriggered: root.helpRequested()
        }
    }
}
