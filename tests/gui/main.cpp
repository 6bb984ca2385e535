#include <QFileInfo>

#include "toolkit/drawing.h"
#include "windowtest.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_RUNTIME_DIR", QFileInfo(argv[0]).absolutePath().toUtf8() + "/runtime"); // Qt makes it
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    setResources(programResources);
    initDrawing({192, 192, 192});
    const int status = RUN_ALL_TESTS();
    releaseDrawing();
    return status;
}
