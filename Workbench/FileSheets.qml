import QtQuick
import Gavrel.Views
import Gavrel.Workbench

/// What the flow of files asks, tells and has chosen.
Item {
    id: root

    required property FileFlow flow

    Sheet {
        presented: root.flow.prompt.question !== ""
        onDismissed: root.flow.answer(FileFlow.Dismiss)

        QuestionView {
            question: root.flow.prompt.question
            explanation: root.flow.prompt.text
            losing: root.flow.prompt.losing
            nothing: root.flow.prompt.dismissing
            usual: root.flow.prompt.usual
            onLost: root.flow.answer(FileFlow.Lose)
            onChosen: root.flow.answer(FileFlow.Choose)
        }
    }

    Sheet {
        presented: root.flow.prompt.question === "" && root.flow.prompt.text !== ""
        onDismissed: root.flow.answer(FileFlow.Dismiss)

        NoticeView {
            text: root.flow.prompt.text
            closing: root.flow.prompt.dismissing
            action: root.flow.prompt.usual
            onActed: root.flow.answer(FileFlow.Choose)
        }
    }

    Sheet {
        presented: root.flow.filesToImport.length > 0
        onDismissed: root.flow.filesToImport = []

        ImportView {
            files: root.flow.filesToImport
            onConfirmed: (area, youngModulus, isNonLinear) => root.flow.importFiles(area, youngModulus, isNonLinear)
        }
    }

    FilePanel {
        id: panel

        palette: root.palette
        onAccepted: files => root.flow.takeFiles(files)
        onRejected: root.flow.takeFiles([])
    }

    Connections {
        target: root.flow

        function onFilesWanted(request) {
            panel.open(request);
        }
    }
}
