#include <gtest/gtest.h>

#include <QApplication>
#include <QFileInfo>

#include "resources/resources.h"
#include "toolkit/drawing.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
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
