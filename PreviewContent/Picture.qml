import QtQuick
import Gavrel.PreviewContent

/// The 3D area alone, for pictures of a project.
VisualizationView {
    width: 1600
    height: 1000

    function prepare() {
        showWhole();
    }
}
