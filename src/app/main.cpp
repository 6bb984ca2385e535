// txinspect: the desktop tool.
#include "app/application.h"

int main(int argc, char** argv) {
    return AfxWinMain(argc, argv, []() -> CWinApp& {
        static TSXapp application;
        return application;
    });
}
