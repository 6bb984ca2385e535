// All that the windows paint, compared with what stands in golden/: texts with their places, fonts and
// colours, and without them the shapes as pictures. With TX_WRITE_GOLDEN set they are made anew, to be looked
// at before they are kept.
#include "desktoptest.h"
#include "model/problem.h"
#include "platform/window/menu.h"
#include "platform/window/statusbarctrl.h"
#include "toolkit/mosaic.h"

namespace {

class Appearance : public DesktopTest {
protected:
    Appearance() {
        // So wide that the buttons stand at the edge with any font, and below any temporary directory.
        put("fprint/" + std::string(200, 'w') + ".CNF", "junk");
        telling = [this](int x, int y, const char* text, const LOGFONT& font, COLORREF colour) {
            std::string line = Text<400>()
                                   .format("%d,%d  %d/%d/%d/%d  %06x  %s\n", x, y, font.height, font.weight,
                                           font.escapement, font.italic, colour, text)
                                   .c_str();
            const std::size_t place = line.find(root.path());
            texts += place == std::string::npos ? line : line.replace(place, root.path().size(), "ROOT");
        };
    }
    void paint(const char* name, CWnd& window, int width, int height) {
        texts += std::string(name) + "\n";
        answers.text = telling;
        window.InvalidateRect(true);
        window.UpdateWindow();
        answers.text = nullptr;
        Mosaic picture(1, width, height);
        picture.add(window, 0, 0);
        picture.compare((std::string(name) + ".png").c_str());
    }
    void paintMain(const std::string& name) {
        paint((name + "problems").c_str(), *main->problemPane, 748, 171);
        paint((name + "types").c_str(), *main->typesPane, 244, 160);
        paint((name + "entries").c_str(), *main->entriesPane, 490, 160);
    }
    std::function<void(int, int, const char*, const LOGFONT&, COLORREF)> telling;
    std::string texts;
};

} // namespace

TEST_F(Appearance, WindowsAreAsTheyWere) {
    paintMain("first-");
    paint("frame", *main, 749, 240);
    command(103);
    click(*main->problemPane, 10, 90);
    click(*main->entriesPane, 10, 50);
    answers.popupMenu = [this](const CMenu&) { return paintMain("pressed-"), 0U; };
    click(*main->problemPane, solveX() + 20, 30);
    ::database->addunread({"seq/X.DEF", "no reason", Unread::whole});
    command(102);
    paint("status", *main->statusBar, 300, 20);
    TSXentryframe& window = openEntry("Alpha");
    click(*window.gridPane, 150, 10);
    paint("entry", window, 500, 300);
    paint("entry-types", *window.typeNamesPane, 140, 100);
    paint("entry-grid", *window.gridPane, 350, 100);
    if (qEnvironmentVariableIsSet("TX_WRITE_GOLDEN"))
        writeFile(std::string(GOLDEN) + "texts.txt", texts);
    EXPECT_EQ(readFile(std::string(GOLDEN) + "texts.txt"), texts);
}
