// All that the windows paint, compared with what stands in golden/: texts with their places, fonts and
// colours, and without them the shapes as pictures. With TX_WRITE_GOLDEN set they are made anew, to be looked
// at before they are kept.
#include <QSizeGrip>

#include "desktoptest.h"
#include "model/problem.h"
#include "platform/window/menu.h"
#include "platform/window/statusbarctrl.h"

namespace {

class Appearance : public DesktopTest {
protected:
    Appearance() {
        // So wide that the buttons stand at the edge with any font, and below any temporary directory.
        put("fprint/" + std::string(200, 'w') + ".CNF", "junk");
        put(2, "ZZZ", dataFile(2, "Last", {"Alpha", "Alpha"})); // the number at the end of a row is bold
    }
    static void compare(const std::string& name, const CWnd& window, int width, int height) {
        Mosaic picture(1, width, height);
        picture.add(window, 0, 0);
        picture.compare((name + ".png").c_str());
    }
    void paint(const std::string& name, CWnd& window, int width, int height) {
        texts += name + "\n" + textsOn(window);
        compare(name, window, width, height);
    }
    void paintMain(const std::string& name) {
        paint(name + "problems", *main->problemPane, 748, 171);
        paint(name + "types", *main->typesPane, 244, 160);
        paint(name + "entries", *main->entriesPane, 490, 160);
    }
    std::string texts, last;
};

} // namespace

TEST_F(Appearance, WindowsAreAsTheyWere) {
    answers.text = [this](int x, int y, unsigned, const char* text, const LOGFONT&, COLORREF) {
        last = std::to_string(x) + "," + std::to_string(y) + "  " + text + "\n";
    };
    paintMain("first-");
    paint("frame", *main, 749, 240);
    command(103);
    click(*main->problemPane, 10, 90);
    click(*main->entriesPane, 10, 50);
    answers.popupMenu = [this](const CMenu&) {
        return texts += last, compare("pressed", *main->problemPane, 748, 171), 0U;
    };
    click(*main->problemPane, solveX() + 20, 30);
    paintMain("later-");
    std::filesystem::create_symlink("nowhere", root / "seq/X.DEF");
    command(102);
    paint("status", *main->statusBar, 300, 20);
    EXPECT_NE(outerWidget(*main->statusBar)->findChild<QSizeGrip*>(), nullptr);
    TSXentryframe& window = openEntry("Alpha");
    click(*window.gridPane, 150, 10);
    paint("entry", window, 500, 300);
    paint("entry-types", *window.typeNamesPane, 140, 100);
    paint("entry-grid", *window.gridPane, 350, 100);
    outerWidget(*main)->resize(300, 260);
    for (const TSXscrollpane* pane : std::initializer_list<const TSXscrollpane*>{
             main->problemPane.get(), main->typesPane.get(), main->entriesPane.get()})
        texts += std::to_string(pane->vRange) + " " + std::to_string(pane->hRange) + "\n";
    EXPECT_EQ(outerWidget(*main->statusBar)->height(), 21);
    if (qEnvironmentVariableIsSet("TX_WRITE_GOLDEN"))
        writeFile(std::string(GOLDEN) + "texts.txt", texts);
    EXPECT_EQ(readFile(std::string(GOLDEN) + "texts.txt"), texts);
}
