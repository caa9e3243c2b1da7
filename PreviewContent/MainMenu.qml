import QtQuick
import QtQuick.Controls
import Gavrel.PreviewContent

/// The menu bar of the main window.
MenuBar {
    id: root

    required property ContentView content
    property RecentFiles recentFiles: null
    readonly property VisualizationView visualization: content.visualization

    signal checkForUpdates()
    signal aboutRequested()
    signal helpRequested()

    CommandMenu {
        title: qsTr("&Gavrel")

        Action {
            text: qsTr("&About Gavrel")
            onTriggered: root.aboutRequested()
        }
        Action {
            text: qsTr("Check for &Updates...")
            shortcut: "Ctrl+U"
            onTriggered: root.checkForUpdates()
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

        Action {
            text: qsTr("&New")
            shortcut: StandardKey.New
            onTriggered: root.content.newProject()
        }
        Action {
            text: qsTr("&Open…")
            shortcut: StandardKey.Open
            onTriggered: root.content.showOpenPanel()
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
                    onTriggered: Qt.callLater(root.content.open, root.recentFiles.url(modelData))
                }
            }

            MenuSeparator {}
            Action {
                text: qsTr("C&lear This List")
                onTriggered: root.recentFiles.clear()
            }
        }
        Action {
            text: qsTr("&Restore Previous Structure")
            enabled: root.content.projectViewModel.hasPrevious
            onTriggered: root.content.whenSaved(() => root.content.projectViewModel.restorePrevious())
        }
        MenuSeparator {}
        Action {
            text: qsTr("&Save")
            shortcut: StandardKey.Save
            onTriggered: root.content.save()
        }
        Action {
            text: qsTr("Save &As…")
            shortcut: "Ctrl+Shift+S"
            onTriggered: root.content.showSavePanel()
        }
        MenuSeparator {}
        Action {
            text: qsTr("&Import…")
            shortcut: "Ctrl+I"
            onTriggered: root.content.showImportPanel()
        }
        CommandMenu {
            title: qsTr("&Export")

            Action {
                text: qsTr("&Node Table (CSV)…")
                onTriggered: root.content.exportNodes()
            }
            Action {
                text: qsTr("&Element Table (CSV)…")
                onTriggered: root.content.exportElements()
            }
            Action {
                text: qsTr("&ParaView Grid (VTU)…")
                onTriggered: root.content.exportVtu()
            }
            Action {
                text: qsTr("P&icture (PNG)…")
                onTriggered: root.content.exportPicture()
            }
        }
    }

    CommandMenu {
        title: qsTr("&View")

        Action {
            text: qsTr("&Fit to Structure")
            shortcut: "Ctrl+0"
            onTriggered: root.visualization.camera.fit()
        }
        MenuSeparator {}
        Action {
            text: qsTr("Fr&ont")
            shortcut: "Ctrl+1"
            onTriggered: root.visualization.camera.show(ViewCamera.Front)
        }
        Action {
            text: qsTr("&Top")
            shortcut: "Ctrl+2"
            onTriggered: root.visualization.camera.show(ViewCamera.Top)
        }
        Action {
            text: qsTr("&Right")
            shortcut: "Ctrl+3"
            onTriggered: root.visualization.camera.show(ViewCamera.Right)
        }
        Action {
            text: qsTr("&Isometric")
            shortcut: "Ctrl+4"
            onTriggered: root.visualization.camera.show(ViewCamera.Isometric)
        }
        MenuSeparator {}
        Action {
            text: qsTr("&z Axis Upright")
            checkable: true
            checked: root.visualization.camera.zUp
            onTriggered: root.visualization.camera.zUp = checked
        }
        MenuSeparator {}
        Action {
            text: qsTr("&Show Strain")
            checkable: true
            checked: root.content.projectViewModel.isStrainVisualizationActive
            onTriggered: root.content.toggleStrain()
        }
        Action {
            text: qsTr("&Node Numbers")
            checkable: true
            checked: root.visualization.showsNodeNumbers
            onToggled: root.visualization.showsNodeNumbers = checked
        }
        Action {
            text: qsTr("&Element Numbers")
            checkable: true
            checked: root.visualization.showsElementNumbers
            onToggled: root.visualization.showsElementNumbers = checked
        }
        Action {
            text: qsTr("Rendering S&tatistics")
            checkable: true
            onToggled: root.visualization.options = checked ? 3 : 2
        }
    }

    CommandMenu {
        title: qsTr("&Structure")

        Action {
            text: qsTr("&Calculate")
            shortcut: "Ctrl+R"
            onTriggered: root.content.calculation.run()
        }
        Action {
            text: qsTr("Check &Before Calculating")
            checkable: true
            checked: root.content.calculation.checks
            onToggled: root.content.calculation.checks = checked
        }
        Action {
            text: qsTr("&Convergence…")
            enabled: root.content.calculation.residuals.length > 0
            onTriggered: root.content.showingConvergence = true
        }
        MenuSeparator {}
        Action {
            text: qsTr("&Findings")
            onTriggered: root.content.dock.show(0)
        }
        Action {
            text: qsTr("&Node Table")
            shortcut: "Ctrl+T"
            onTriggered: root.content.dock.show(1)
        }
        Action {
            text: qsTr("&Element Table")
            shortcut: "Ctrl+Shift+T"
            onTriggered: root.content.dock.show(2)
        }
    }

    CommandMenu {
        title: qsTr("&Help")

        Action {
            text: qsTr("&Mouse and Keys")
            onTriggered: root.helpRequested()
        }
    }
}
