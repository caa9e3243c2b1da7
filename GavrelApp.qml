import QtQuick
import QtQuick.Controls
import Gavrel.PreviewContent

/// The main window: menus, the working surface and the status line.
ApplicationWindow {
    id: window

    required property ProjectViewModel projectViewModel

    width: Math.min(1200, Screen.desktopAvailableWidth)
    height: Math.min(800, Screen.desktopAvailableHeight)
    minimumWidth: 800
    minimumHeight: 500
    visible: true
    title: projectViewModel.currentFileName !== "" ? projectViewModel.currentFileName : projectViewModel.projectName
    palette: appearance.dark ? darkPalette : lightPalette

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
        content: content
        onAboutRequested: about.open()
        onHelpRequested: controls.open()
    }

    ContentView {
        id: content

        anchors.fill: parent
        projectViewModel: window.projectViewModel
    }

    AboutDialog {
        id: about
    }

    ControlsDialog {
        id: controls
    }

    footer: StatusLine {
        projectViewModel: window.projectViewModel
        calculation: content.calculation
    }
}
