#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

#include "resources/resources.h"
#include "toolkit/drawing.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir runtime; // Qt would make one that stays
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    setResources(programResources);
    initDrawing({192, 192, 192});
    const int status = RUN_ALL_TESTS();
    releaseDrawing();
    return status;
}
