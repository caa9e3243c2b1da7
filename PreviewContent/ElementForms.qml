import QtQuick
import Gavrel.PreviewContent
import Gavrel.Views

/// The forms for a new node, truss and beam.
Item {
    id: root

    required property Item content
    readonly property ProjectViewModel projectViewModel: content.projectViewModel
    readonly property bool presented: nodeForm.presented || trussForm.presented || beamForm.presented
    readonly property bool enoughNodes: projectViewModel.selectedNodesForTruss.length >= 2

    Sheet {
        id: nodeForm

        presented: root.content.showingAddNodeSheet
        onDismissed: root.content.showingAddNodeSheet = false

        AddNodeView {
            projectViewModel: root.projectViewModel
        }
    }

    Sheet {
        id: trussForm

        presented: root.content.showingTrussConfigSheet
        onDismissed: root.content.showingTrussConfigSheet = false
        content: root.enoughNodes ? addTruss : null
    }

    Sheet {
        id: beamForm

        presented: root.content.showingBeamConfigSheet
        onDismissed: root.content.showingBeamConfigSheet = false
        content: root.enoughNodes ? addBeam : null
    }

    Component {
        id: addTruss

        AddTrussView {
            nodeIDs: root.projectViewModel.selectedNodesForTruss
            projectViewModel: root.projectViewModel
        }
    }

    Component {
        id: addBeam

        AddBeamView {
            nodeIDs: root.projectViewModel.selectedNodesForTruss
            projectViewModel: root.projectViewModel
        }
    }
}
