import QtQuick
import Gavrel.Views
import Gavrel.Workbench

/// The sheets and the file panel in which the flow of files asks its user, reports and lets files be chosen.
Item {
    id: root

    required property FileFlow flow

    Sheet {
        presented: root.flow.prompt.question !== ""
        onDismissed: root.flow.answer(FileFlow.Reject)

        QuestionView {
            question: root.flow.prompt.question
            explanation: root.flow.prompt.text
            destructiveText: root.flow.prompt.destructiveText
            rejectText: root.flow.prompt.rejectText
            defaultText: root.flow.prompt.defaultText
            onDestructiveChosen: root.flow.answer(FileFlow.Destructive)
            onDefaultChosen: root.flow.answer(FileFlow.Default)
        }
    }

    Sheet {
        presented: root.flow.prompt.question === "" && root.flow.prompt.text !== ""
        onDismissed: root.flow.answer(FileFlow.Reject)

        NoticeView {
            text: root.flow.prompt.text
            closeText: root.flow.prompt.rejectText
            action: root.flow.prompt.defaultText
            onActed: root.flow.answer(FileFlow.Default)
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
