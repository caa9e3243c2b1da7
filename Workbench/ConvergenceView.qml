import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Gavrel.Views

/// The convergence of a solve: a plot and a list of the residual of each step, relative to the load.
Item {
    id: root

    required property string outcome
    required property var residuals
    required property real tolerance

    /// The exponents of the powers of ten between which all residuals and the tolerance lie; values without a
    /// logarithm are left out.
    readonly property var decades: {
        const exponents = residuals.concat(tolerance).filter(drawable).map(Math.log10);
        return { least: Math.floor(Math.min(...exponents)), greatest: Math.ceil(Math.max(...exponents)) };
    }

    signal dismiss()

    implicitWidth: 700
    implicitHeight: 400

    function drawable(residual) {
        return residual > 0 && isFinite(residual);
    }

    /// Where a residual stands between the top (0) and the bottom (1) of the plot.
    function place(residual) {
        const span = Math.max(1, decades.greatest - decades.least);
        return (decades.greatest - Math.log10(residual)) / span;
    }

    function confirm() {
        dismiss();
    }

    ColumnLayout {
        anchors {
            fill: parent
            margins: 16
        }
        spacing: 10

        Label {
            text: root.outcome
            font.bold: true
            font.pixelSize: 16
        }
        RowLayout {
            spacing: 16

            Canvas {
                id: plot

                readonly property int labelWidth: 44
                readonly property int labelHeight: 22

                Layout.fillWidth: true
                Layout.fillHeight: true
                onPaint: {
                    const context = getContext("2d");
                    context.reset();
                    const width = plot.width - labelWidth - 8;
                    const height = plot.height - labelHeight - 8;
                    const steps = root.residuals.length;
                    const x = step => labelWidth + (steps > 1 ? (step - 1) / (steps - 1) : 0.5) * width;
                    const y = residual => 8 + root.place(residual) * height;
                    const ink = root.palette.windowText;

                    context.font = "11px sans-serif";
                    context.fillStyle = ink;
                    context.strokeStyle = Qt.alpha(ink, 0.15);
                    const every = Math.ceil((root.decades.greatest - root.decades.least) / 8) || 1;
                    context.textAlign = "right";
                    context.textBaseline = "middle";
                    for (let exponent = root.decades.greatest; exponent >= root.decades.least; exponent -= every) {
                        const at = Math.round(y(Math.pow(10, exponent))) + 0.5;
                        context.fillText("1e" + exponent, labelWidth - 6, at);
                        context.beginPath();
                        context.moveTo(labelWidth, at);
                        context.lineTo(labelWidth + width, at);
                        context.stroke();
                    }
                    context.textAlign = "center";
                    context.textBaseline = "top";
                    for (let step = 1; step <= steps; step += Math.ceil(steps / 12))
                        context.fillText(step, x(step), 8 + height + 6);

                    context.setLineDash([5, 4]);
                    context.strokeStyle = "#2a9d4a";
                    context.lineWidth = 1.5;
                    context.beginPath();
                    context.moveTo(labelWidth, y(root.tolerance));
                    context.lineTo(labelWidth + width, y(root.tolerance));
                    context.stroke();
                    context.setLineDash([]);

                    context.strokeStyle = context.fillStyle = root.palette.highlight;
                    context.lineWidth = 2;
                    context.beginPath();
                    root.residuals.forEach((residual, i) => {
                        if (root.drawable(residual))
                            context.lineTo(x(i + 1), y(residual));
                    });
                    context.stroke();
                    root.residuals.forEach((residual, i) => {
                        if (!root.drawable(residual))
                            return;
                        context.beginPath();
                        context.arc(x(i + 1), y(residual), 3.5, 0, 2 * Math.PI);
                        context.fill();
                    });
                }
            }
            ListView {
                id: numbers

                objectName: "numbers"
                Layout.preferredWidth: 215
                Layout.fillHeight: true
                clip: true
                model: root.residuals
                boundsBehavior: Flickable.StopAtBounds
                ScrollBar.vertical: ScrollBar {}
                header: Label {
                    bottomPadding: 4
                    text: qsTr("Step   Residual / load")
                    font.pixelSize: 12
                    opacity: 0.7
                }
                delegate: Label {
                    required property int index
                    required property real modelData

                    text: String(index + 1).padStart(4) + "   " + NumberFormat.text(modelData)
                    font.family: "monospace"
                    font.pixelSize: 12
                }
            }
        }
        RowLayout {
            spacing: 8

            Rectangle {
                implicitWidth: 18
                implicitHeight: 2
                color: "#2a9d4a"
            }
            Label {
                Layout.fillWidth: true
                font.pixelSize: 12
                opacity: 0.8
                text: qsTr("in equilibrium below %1").arg(NumberFormat.text(root.tolerance))
            }
            ProminentButton {
                horizontalPadding: 12
                text: qsTr("Close")
                onClicked: root.dismiss()
            }
        }
    }
}
