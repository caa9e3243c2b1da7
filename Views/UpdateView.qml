import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views

/// Shows the progress of an update, one panel for each state, with buttons to continue or cancel.
Item {
    id: root

    required property UpdateManager updateManager

    readonly property string appName: updateManager.bundleName !== "" ? updateManager.bundleName : "the app"
    readonly property int padding: 30

    signal dismiss()

    implicitWidth: Math.max(400, panel.implicitWidth + 2 * padding)
    implicitHeight: Math.max(250, panel.implicitHeight + 2 * padding)

    function skip() {
        updateManager.skipUpdate();
        dismiss();
    }

    function cancel() {
        updateManager.cancel();
        dismiss();
    }

    function percentage(progress) {
        return Math.trunc(progress * 100) + "%";
    }

    component Line: Label {
        Layout.alignment: Qt.AlignHCenter
        Layout.maximumWidth: 340
        horizontalAlignment: Text.AlignHCenter
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
    }

    component Title: Line {
        font.pixelSize: 20
        font.weight: Font.DemiBold
    }

    component Headline: Line {
        font.pixelSize: 15
        font.bold: true
    }

    component Caption: Line {
        font.pixelSize: 12
    }

    component SecondaryCaption: Caption {
        opacity: 0.7
    }

    component Busy: BusyIndicator {
        Layout.alignment: Qt.AlignHCenter
        implicitWidth: 48
        implicitHeight: 48
    }

    component Sign: Symbol {
        Layout.alignment: Qt.AlignHCenter
    }

    component Panel: ColumnLayout {
        spacing: 12
    }

    component Buttons: RowLayout {
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: 8
        spacing: 12
    }

    component PlainButton: Button {
        horizontalPadding: 14
    }

    component CancelButton: PlainButton {
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: 8
        text: "Cancel"
        onClicked: root.cancel()
    }

    component MainButton: ProminentButton {
        horizontalPadding: 14
    }

    ColumnLayout {
        anchors {
            fill: parent
            margins: root.padding
        }
        spacing: 20

        Loader {
            id: panel

            objectName: "panel"
            Layout.alignment: Qt.AlignCenter
            sourceComponent: ({
                    checking: checking,
                    updateAvailable: updateAvailable,
                    downloading: downloading,
                    downloaded: downloaded,
                    installing: installing,
                    completed: completed,
                    error: error
                })[root.updateManager.state.name] ?? null
        }
    }

    Component {
        id: checking

        Panel {
            Busy {}
            Headline {
                text: "Checking for updates..."
            }
            SecondaryCaption {
                text: "Current version: " + root.updateManager.currentVersion
            }
            CancelButton {}
        }
    }

    Component {
        id: updateAvailable

        Panel {
            id: available

            readonly property var info: root.updateManager.state.info

            Sign {
                sign: Symbol.ArrowDown
                color: "#1f7ae0"
            }
            Title {
                text: "Update Available"
            }
            Headline {
                text: "Version " + available.info.version
            }
            SecondaryCaption {
                text: "Current: " + root.updateManager.currentVersion
            }
            ScrollView {
                id: changes

                Layout.alignment: Qt.AlignHCenter
                Layout.preferredWidth: 340
                Layout.maximumHeight: 100
                padding: 6
                contentWidth: availableWidth
                visible: available.info.changelog !== ""
                ScrollBar.vertical.policy: contentHeight > availableHeight ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
                background: Rectangle {
                    color: changes.palette.base
                    border.color: changes.palette.mid
                    radius: 3
                }

                SecondaryCaption {
                    width: changes.availableWidth
                    rightPadding: 12
                    horizontalAlignment: Text.AlignLeft
                    text: available.info.changelog
                }
            }
            Buttons {
                PlainButton {
                    text: "Later"
                    onClicked: root.skip()
                }
                MainButton {
                    text: "Download & Install"
                    onClicked: root.updateManager.downloadUpdate(available.info)
                }
            }
        }
    }

    Component {
        id: downloading

        Panel {
            Headline {
                text: "Downloading update..."
            }
            ProgressBar {
                Layout.alignment: Qt.AlignHCenter
                Layout.preferredWidth: 280
                value: root.updateManager.state.progress
            }
            Caption {
                font.family: "monospace"
                text: root.percentage(root.updateManager.state.progress)
            }
            CancelButton {}
        }
    }

    Component {
        id: downloaded

        Panel {
            Sign {
                sign: Symbol.ArrowDown
                color: "#2a9d4a"
            }
            Title {
                text: "Download Complete"
            }
            Caption {
                text: root.appName + " is ready to install"
            }
            Buttons {
                PlainButton {
                    text: "Cancel"
                    onClicked: root.skip()
                }
                MainButton {
                    text: "Install & Restart"
                    onClicked: root.updateManager.installUpdate(root.updateManager.state.info, root.updateManager.state.archive)
                }
            }
        }
    }

    Component {
        id: installing

        Panel {
            Busy {}
            Headline {
                text: "Installing update..."
            }
            SecondaryCaption {
                text: root.appName + " will restart automatically"
            }
        }
    }

    Component {
        id: completed

        Panel {
            Sign {
                sign: Symbol.Checkmark
                color: "#2a9d4a"
            }
            Headline {
                text: "Update complete!"
            }
            Caption {
                text: root.appName + " has been updated successfully."
            }
        }
    }

    Component {
        id: error

        Panel {
            Sign {
                sign: Symbol.ExclamationMark
                color: "#e8821a"
            }
            Headline {
                text: "Update Error"
            }
            Line {
                text: root.updateManager.state.errorDescription
            }
            Buttons {
                MainButton {
                    text: "OK"
                    onClicked: root.skip()
                }
            }
        }
    }
}
