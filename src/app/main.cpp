// txinspect: the desktop tool.
#include "app/application.h"
#include "platform/system/standardstreams.h"

int main(int argc, char** argv) {
    openStandardStreams();
    return AfxWinMain(argc, argv, []() -> CWinApp& {
        static TSXapp application;
        return application;
    });
}
