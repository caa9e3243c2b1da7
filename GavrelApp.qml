import QtQuick
import QtQuick.Controls
import Gavrel.PreviewContent
import Gavrel.Views
import Gavrel.Workbench

/// The main window: menus, the working surface and the status line, and the update sheet over them.
ApplicationWindow {
    id: window

    required property ProjectViewModel projectViewModel
    required property UpdateManager updateManager
    required property Recovery recovery
    required property RecentFiles recentFiles
    property bool asksBeforeClosing: true
    /// Why an update that was to be installed before this start was not.
    property string updateFailure
    /// Why the program has not ended for an update that is installed.
    property string staysBecause

    // Children of the window, not of an item in it, so that the shortcuts of enabled actions work below a sheet, too.
    readonly property Actions actions: Actions {
        content: content
        updateManager: window.updateManager
        onAboutRequested: about.open()
        onHelpRequested: controls.open()
        onUpdateCheckRequested: window.updateManager.checkForUpdates(true)
    }

    readonly property bool shouldShowUpdateSheet: ["checking", "updateAvailable", "downloading", "downloaded", "installing",
        "error"].includes(updateManager.state.name)

    width: Math.min(1200, Screen.desktopAvailableWidth)
    height: Math.min(800, Screen.desktopAvailableHeight)
    minimumWidth: 640
    minimumHeight: 420
    visible: true
    title: (projectViewModel.hasUnsavedChanges ? "*" : "") + (projectViewModel.currentFileName || projectViewModel.projectName)
        + (projectViewModel.currentFileHoldsIt ? "" : qsTr(" (not saved)"))
    palette: appearance.dark ? darkPalette : lightPalette

    Component.onCompleted: {
        if (updateFailure !== "")
            updateManager.installationFailed(updateFailure);
        else if (updateManager.checksAtStart)
            updateManager.checkForUpdates(false);
        recovery.lookForOffer();
    }

    onClosing: close => close.accepted = !asksBeforeClosing || content.files.mayQuit()

    DesktopAppearance {
        id: appearance
    }

    LightPalette {
        id: lightPalette
    }

    DarkPalette {
        id: darkPalette
    }

    menuBar: MainMenu {
        actions: window.actions
        recentFiles: window.recentFiles
    }

    Workbench {
        id: content

        anchors.fill: parent
        projectViewModel: window.projectViewModel
        actions: window.actions
        covered: offer.presented || stayNotice.presented || updateSheet.presented || about.visible || controls.visible
    }

    Connections {
        target: content.files

        function onQuitConfirmed() {
            Qt.quit();
        }
    }

    AboutDialog {
        id: about
    }

    ControlsDialog {
        id: controls
    }

    Sheet {
        id: stayNotice

        presented: window.staysBecause !== ""
        onDismissed: window.staysBecause = ""

        NoticeView {
            text: qsTr("The new version is installed and starts by itself. This window stays open, because its changes cannot be kept without being saved.\n\n%1").arg(window.staysBecause)
            action: qsTr("Save")
            onActed: {
                dismiss();
                content.files.save();
            }
        }
    }

    Sheet {
        id: offer

        presented: window.recovery.hasOffer && !content.files.interrupted
        onDismissed: window.recovery.postponeOffer()

        QuestionView {
            question: qsTr("Restore “%1”?").arg(window.recovery.offeredName)
            explanation: qsTr("Gavrel ended before this structure was saved.\n%1\n\n").arg(window.recovery.offeredReason
                    || qsTr("The reason is not known: it was ended from outside, or it crashed."))
                + qsTr("%1 nodes, %2 elements, last changed %3")
                .arg(window.recovery.offeredNodes).arg(window.recovery.offeredElements).arg(window.recovery.offeredTime)
                + (window.recovery.offeredFile !== "" ? qsTr("\nOpened from %1").arg(window.recovery.offeredFile) : "")
            destructiveText: qsTr("Discard")
            rejectText: qsTr("Later")
            defaultText: qsTr("Restore")
            onDestructiveChosen: window.recovery.discardOffer()
            onDefaultChosen: content.files.restore(window.recovery)
        }
    }

    // Closing the sheet does not change the update; the sheet opens again with the next panel.
    Sheet {
        id: updateSheet

        property bool putAway: false
        readonly property string panel: window.updateManager.state.name

        onPanelChanged: putAway = false
        onDismissed: putAway = true
        presented: window.shouldShowUpdateSheet && !putAway

        UpdateView {
            updateManager: window.updateManager
        }
    }

    footer: StatusLine {
        projectViewModel: window.projectViewModel
        calculation: content.calculation
        onConvergenceRequested: content.showingConvergence = true
        onFindingsRequested: content.dock.show(0)
        warning: window.recovery.failure !== "" ? qsTr("Changes cannot be kept for recovery: %1").arg(window.recovery.failure) : ""
    }
}
