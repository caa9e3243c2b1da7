#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest/quicktest.h>

#include "Setup.h"

Q_IMPORT_QML_PLUGIN(Gavrel_PreviewContentPlugin)
Q_IMPORT_QML_PLUGIN(Gavrel_ViewportPlugin)
Q_IMPORT_QML_PLUGIN(Gavrel_ViewsPlugin)
Q_IMPORT_QML_PLUGIN(Gavrel_WorkbenchPlugin)

using namespace gavrel;

QUICK_TEST_MAIN_WITH_SETUP(qml_tests, Setup)
