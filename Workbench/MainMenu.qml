import QtQuick
import QtQuick.Controls
import Gavrel.Workbench

/// The menu bar of the main window. While a sheet or panel is open, only Quit is enabled, since it asks first.
MenuBar {
    id: root

    required property Actions actions
    property RecentFiles recentFiles: null

    enabled: !actions.content.blocked

    CommandMenu {
        title: qsTr("&Gavrel")
        entries: [root.actions.about, root.actions.checkForUpdates, root.actions.checkAtStart, null, root.actions.quit]
    }

    CommandMenu {
        title: qsTr("&File")
        entries: [root.actions.newProject, root.actions.open, recent, root.actions.restorePrevious, null, root.actions.save,
            root.actions.saveAs, null, root.actions.importFiles, exports]

        readonly property CommandMenu recent: CommandMenu {
            id: recent

            title: qsTr("Open Re&cent")
            enabled: root.recentFiles !== null && root.recentFiles.paths.length > 0
            width: 360
            entries: [null, clear]

            Instantiator {
                model: root.recentFiles ? root.recentFiles.paths : []
                onObjectAdded: (index, object) => recent.insertItem(index, object)
                onObjectRemoved: (index, object) => recent.removeItem(object)

                MenuItem {
                    required property string modelData

                    // A single ampersand would mark a mnemonic key.
                    text: modelData.substring(modelData.lastIndexOf("/") + 1).replace(/&/g, "&&")
                    ToolTip.text: modelData
                    ToolTip.visible: hovered
                    ToolTip.delay: 600
                    // Later: opening rebuilds the list, and the menu must have closed first.
                    onTriggered: Qt.callLater(root.actions.files.open, root.recentFiles.url(modelData))
                }
            }

            readonly property Action clear: Action {
                text: qsTr("C&lear This List")
                enabled: !root.actions.content.blocked
                onTriggered: root.recentFiles.clear()
            }
        }
        readonly property CommandMenu exports: CommandMenu {
            title: qsTr("&Export")
            entries: [root.actions.exportNodes, root.actions.exportElements, root.actions.exportVtu, root.actions.exportPicture]
        }
    }

    CommandMenu {
        title: qsTr("&View")
        entries: [root.actions.fit, null, root.actions.front, root.actions.top, root.actions.right, root.actions.isometric, null,
            root.actions.parallelProjection, root.actions.zUpright, null, root.actions.showStrain, root.actions.showNodeNumbers, root.actions.showElementNumbers,
            root.actions.showStatistics]
    }

    CommandMenu {
        title: qsTr("&Structure")
        entries: [root.actions.addNode, root.actions.selectForTruss, root.actions.selectForBeam, root.actions.addTruss,
            root.actions.addBeam, null, root.actions.calculate, root.actions.checkBeforeCalculating,
            root.actions.showConvergence, null, root.actions.showFindings, root.actions.showNodeTable,
            root.actions.showElementTable]
    }

    CommandMenu {
        title: qsTr("&Help")
        entries: [root.actions.help]
    }
}
