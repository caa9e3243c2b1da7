import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views

/// A question with its explanation, and three answers: one that loses something, one that does nothing, and the usual one.
/// Without a text for it, there is no button for the second.
Item {
    id: root

    required property string question
    required property string explanation
    required property string losing
    required property string nothing
    required property string usual

    signal dismiss()
    signal lost()
    signal chosen()

    implicitWidth: 420
    implicitHeight: stack.implicitHeight + 32

    onLost: console.debug(log, root.losing, "in answer to", root.question)

    function confirm() {
        chosen();
    }

    // QT_LOGGING_RULES=gavrel.questions.debug=true tells on standard error of each answer that loses something.
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
                objectName: "losing"
                horizontalPadding: 12
                text: root.losing
                onClicked: root.lost()
            }
            Item {
                Layout.fillWidth: true
            }
            Button {
                objectName: "nothing"
                horizontalPadding: 12
                visible: root.nothing !== ""
                text: root.nothing
                onClicked: root.dismiss()
            }
            ProminentButton {
                objectName: "usual"
                horizontalPadding: 12
                text: root.usual
                onClicked: root.chosen()
            }
        }
    }
}
