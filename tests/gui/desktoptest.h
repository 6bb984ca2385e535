// A database with one problem of each kind and the main window on it, on show, with all questions answered.
#pragma once

#include <algorithm>

#include "databasetest.h"
#include "platform/window/msgbox.h"
#include "views/current.h"
#include "views/entriespane.h"
#include "views/entryframe.h"
#include "views/entrygridpane.h"
#include "views/mainframe.h"
#include "views/problempane.h"
#include "views/typespane.h"
#include "windowtest.h"

class DesktopTest : public DatabaseTest {
protected:
    void SetUp() override {
        put(0, "DBSF001", dataFile(0, "", {"Alpha", "alpha", "", "", "Beta"}));
        put(1, "GEL", dataFile(1, "Gels", {"Alpha", "Gamma", "Alpha", "Alpha", "Beta"}));
        put(2, "TRAITS", dataFile(2, "Traits", {"Beta"}));
        put(3, "EMPTY", counted(fileclasses[3].header));
        put(4, "BAD", "junk");
        put("fprint/BAD.CNF", "junk");
        std::filesystem::remove(root / "bundles");
        answers = {};
        answers.messageBox = [this](const char* text, const char*, std::uint32_t) {
            reports.push_back(text);
            return answer;
        };
        answers.beep = [this] { ++beeps; };
        currentDatabase = "Strains";
        placements = {};
        load();
        ::database = std::move(database);
        main = new TSXmainframe; // deletes itself
        main->createMainWindow();
        main->ShowWindow();
        settle();
    }
    void TearDown() override {
        if (main != nullptr)
            main->DestroyWindow();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        ::database.reset();
        answers = {};
    }

    static void settle() { QApplication::processEvents(); }
    // Real events at a place of the client area.
    static void click(const CWnd& window, int x, int y, Qt::KeyboardModifiers keys = {},
                      Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(clientWidget(window), button, keys, {x, y});
        settle();
    }
    static void doubleClick(const CWnd& window, int x, int y) {
        QTest::mouseClick(clientWidget(window), Qt::LeftButton, {}, {x, y});
        QTest::mouseDClick(clientWidget(window), Qt::LeftButton, {}, {x, y});
        settle();
    }
    void command(std::uint32_t id) {
        main->frameCommand(id);
        settle();
    }
    void select(int kind) {
        main->selectedProblem = 1;
        while (::database->getproblem(main->selectedProblem)->kind != kind)
            ++main->selectedProblem;
    }
    // Row of a key among the visible ones.
    static int rowOf(const char* key) {
        int row = 1;
        while (::database->getvisiblekey(row) != nullptr && ::database->getvisiblekey(row)->key != key)
            ++row;
        return row;
    }
    TSXentryframe& openEntry(const char* key) {
        doubleClick(*main->entriesPane, 10, 20 * rowOf(key) - 10);
        const TSXkeyentry& entry = *::database->getvisiblekey(rowOf(key));
        for (TSXentryframe* window : main->entryWindows)
            if (window != nullptr && window->showsKey(entry))
                return *window;
        throw std::runtime_error("no window");
    }
    int openWindows() const {
        return static_cast<int>(std::count_if(main->entryWindows.begin(), main->entryWindows.end(),
                                              [](const TSXentryframe* window) { return window != nullptr; }));
    }
    // Left edge of the buttons: where the first one's upper edge begins.
    int solveX() const {
        int x = 0;
        while (x < 750 && surfacePixel(*main->problemPane, x, 1) != white)
            ++x;
        return x;
    }

    // What is written on a window, a line for each text: its place, font, colour, and itself.
    std::string textsOn(CWnd& window) const {
        std::string texts;
        const auto before = std::exchange(answers.text, {});
        answers.text = [&](int x, int y, unsigned alignment, const char* text, const LOGFONT& font,
                           COLORREF colour) {
            Text<60> line;
            line.format("%d,%d,%u  %d/%d/%d/%d  %06x  ", x, y, alignment, font.height, font.weight,
                        font.escapement, font.italic, colour);
            const std::string_view shown = text, path = root.path();
            const std::size_t place =
                std::min(shown.find(path), shown.size()); // it has another name each time
            texts += std::string(line.view()) + std::string(shown.substr(0, place)) +
                     std::string(place < shown.size() ? shown.substr(place + path.size()) : "") + "\n";
        };
        window.InvalidateRect(true);
        window.UpdateWindow();
        answers.text = before;
        return texts;
    }

    TSXmainframe* main = nullptr;
    int beeps = 0;
};
