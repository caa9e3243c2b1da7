import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views

/// A question with its explanation and three answers: a destructive one, one that does nothing and the default one, which
/// Return gives. An answer to reject without a text has no button.
Item {
    id: root

    required property string question
    required property string explanation
    required property string destructiveText
    required property string rejectText
    required property string defaultText

    signal dismiss()
    signal destructiveChosen()
    signal defaultChosen()

    implicitWidth: 420
    implicitHeight: stack.implicitHeight + 32

    onDestructiveChosen: console.debug(log, root.destructiveText, "in answer to", root.question)

    function confirm() {
        defaultChosen();
    }

    // QT_LOGGING_RULES=gavrel.questions.debug=true logs each destructive answer to standard error.
    LoggingCategory {
        id: log

        name: "gavrel.questions"
        defaultLogLevel: LoggingCategory.Info
    }

    ColumnLayout {
        id: stack

        anchors {
            fill: parent
            margins: 16
        }
        spacing: 12

        Label {
            objectName: "question"
            Layout.fillWidth: true
            text: root.question
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            font.bold: true
            font.pixelSize: 16
        }
        Label {
            objectName: "explanation"
            Layout.fillWidth: true
            Layout.fillHeight: true
            text: root.explanation
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
        }
        RowLayout {
            Layout.topMargin: 8
            spacing: 8

            Button {
                objectName: "destructive"
                horizontalPadding: 12
                text: root.destructiveText
                onClicked: root.destructiveChosen()
            }
            Item {
                Layout.fillWidth: true
            }
            Button {
                objectName: "reject"
                horizontalPadding: 12
                visible: root.rejectText !== ""
                text: root.rejectText
                onClicked: root.dismiss()
            }
            ProminentButton {
                objectName: "default"
                horizontalPadding: 12
                text: root.defaultText
                onClicked: root.defaultChosen()
            }
        }
    }
}
