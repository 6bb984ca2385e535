// Times one repaint of each pane of the main window over a database with all its keys on show: whole, and the
// strip that a scroll by one step brings into view. Each figure is the median of many repaints, in
// milliseconds.
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "model/database.h"
#include "model/problem.h"
#include "platform/window/wnd.h"
#include "resources/resources.h"
#include "toolkit/drawing.h"
#include "views/current.h"
#include "views/entriespane.h"
#include "views/mainframe.h"
#include "views/problempane.h"
#include "views/typespane.h"

namespace {

using Clock = std::chrono::steady_clock;

template <class Action> double medianMilliseconds(Action action) {
    constexpr int runs = 51;
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const auto start = Clock::now();
        action(i);
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[runs / 2];
}

void measure(const char* name, TSXscrollpane& pane) {
    const double whole = medianMilliseconds([&](int) {
        pane.InvalidateRect(true);
        pane.UpdateWindow();
    });
    const double step =
        medianMilliseconds([&](int i) { pane.verticalScroll(i % 2 == 0 ? SB_LINEDOWN : SB_LINEUP, 0); });
    std::printf("%s %.3f %.3f\n", name, whole, step);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_repaint DATABASE PROBLEMS\n");
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    setResources(programResources);
    initDrawing({192, 192, 192});
    database = std::make_unique<TSXdatabase>("");
    database->load(argv[1]);
    database->showallkeys();
    while (database->problemcount < std::atoi(argv[2]))
        database->addproblem(std::make_unique<TSXproblem>(*database, corruptdatafile, 1,
                                                          std::to_string(database->problemcount).c_str()));
    mainFrame = new TSXmainframe; // deletes itself
    mainFrame->createMainWindow();
    mainFrame->ShowWindow();
    QApplication::processEvents();
    std::printf("keys %d\n", database->keytotal);
    measure("problems", *mainFrame->problemPane);
    measure("types", *mainFrame->typesPane);
    measure("entries", *mainFrame->entriesPane);
    mainFrame->DestroyWindow();
    database.reset();
    releaseDrawing();
    return 0;
}
