#include "views/mainframe.h"

#include <algorithm>
#include <string>

#include "analysis/sessionundo.h"
#include "model/database.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "platform/system/letters.h"
#include "platform/window/dc.h"
#include "platform/window/msgbox.h"
#include "platform/window/statusbarctrl.h"
#include "reporting/log.h"
#include "reporting/notify.h"
#include "resources/resources.h"
#include "views/current.h"
#include "views/entriespane.h"
#include "views/entryframe.h"
#include "views/problempane.h"
#include "views/typespane.h"

std::unique_ptr<TSXdatabase> database;
Text<2000> currentDatabase;
TSXmainframe* mainFrame = nullptr;
WindowPlacements placements;

namespace {

// Where the parts of the window meet, in client pixels.
constexpr int topEdge = 24;     // top of the problem list
constexpr int middleEdge = 200; // the lower panes are measured from here
constexpr int columnEdge = 250; // left side of the keys
constexpr int headingsHeight = 22;

struct Heading {
    const char* text;
    int x;
    int y;
};

constexpr Heading headings[] = {
    {"Problem list", 8, 4},
    {"Data types", 8, middleEdge + 3},
    {"Files", 155, middleEdge + 3},
    {"Entries", 195, middleEdge + 3},
};

// An edge under a row of headings.
void drawEdge(CDC& dc, int y, int right) {
    dc.SelectStockObject(WHITE_PEN);
    drawLine(dc, {1, y}, {right, y});
    dc.SelectObject(getPen(darkEdgePen));
    drawLine(dc, {1, y + 1}, {right, y + 1});
}

// The two grooves, five pixels wide: one under the problem list, and one between the lower panes that starts
// in it.
void drawGrooves(CDC& dc, int right, int bottom) {
    const CPen pens[] = {CPen(RGB(255, 255, 255)), CPen(getColour(baseColour)), CPen(getColour(darkColour)),
                         CPen(getColour(darkerColour)), CPen(RGB(0, 0, 0))};
    constexpr int starts[] = {1, 2, 3, 2, 1}; // of the lines of the vertical groove, above the middle edge
    for (int i = 0; i < 5; ++i) {
        dc.SelectObject(&pens[i]);
        drawLine(dc, {1, middleEdge - 5 + i}, {right, middleEdge - 5 + i});
    }
    for (int i = 0; i < 5; ++i) {
        dc.SelectObject(&pens[i]);
        drawLine(dc, {columnEdge - 5 + i, middleEdge - starts[i]}, {columnEdge - 5 + i, bottom});
    }
    dc.SelectStockObject(BLACK_PEN);
}

int unsavedKeys(const TSXdatabase& model) {
    std::ptrdiff_t count = 0;
    for (const auto& list : model.lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            count += std::count(list->files[i]->keydirty.begin(), list->files[i]->keydirty.end(), 1);
    return static_cast<int>(count);
}

// Nothing of no thing.
std::string counted(std::int64_t count, const char* thing, const char* what) {
    return count == 0 ? "" : std::to_string(count) + " " + thing + (count == 1 ? "" : "s") + what;
}

// What was changed on the disk since then, or else in memory.
std::string workDone(const TSXdatabase& model, std::size_t firstChange, int unsavedBefore) {
    const auto first = model.changes.begin() + static_cast<std::ptrdiff_t>(firstChange);
    const auto of = [&](Change::Kind kind) {
        return std::count_if(first, model.changes.end(), [kind](const Change& c) { return c.kind == kind; });
    };
    if (const std::int64_t deleted = of(Change::deletion); deleted > 0)
        return "Deleted " + counted(deleted, "file", "");
    if (of(Change::making) > 0)
        return "Made a directory";
    const int keys = unsavedKeys(model) - unsavedBefore;
    return keys > 0 ? "Changed " + counted(keys, "key", "") : "";
}

std::string withSmallLetter(std::string text) {
    text[0] = static_cast<char>(smallLetter(text[0]));
    return text;
}

std::string namedUnread(const TSXdatabase& model) {
    const auto first = std::find_if(model.unread.begin(), model.unread.end(),
                                    [](const Unread& thing) { return thing.weight != Unread::told; });
    if (first == model.unread.end())
        return "";
    const std::string more = std::to_string(model.unreadcount() - 1);
    return "Could not be read: " + first->name + (more == "0" ? "" : " and " + more + " more");
}

} // namespace

TSXmainframe::TSXmainframe() {
    placement = &placements.main;
}

TSXmainframe::~TSXmainframe() {
    if (mainFrame == this)
        mainFrame = nullptr;
}

void TSXmainframe::createMainWindow() {
    const std::string title = std::string("Database Check- ") + currentDatabase.c_str();
    Create(AfxRegisterWndClass(getBrush(baseBrush), LoadIconA(applicationIcon), mainMenu), title.c_str(),
           RECT{20, 20, 770, 570}, nullptr);
}

void TSXmainframe::frameCreated() {
    typesPane = makePane<TSXtypespane>(*this);
    entriesPane = makePane<TSXentriespane>(*this);
    problemPane = makePane<TSXproblempane>(*this);
    for (TSXrowpane* pane :
         std::initializer_list<TSXrowpane*>{problemPane.get(), typesPane.get(), entriesPane.get()})
        pane->SetTabStop();
    updateScrollRanges();
    undo = std::make_unique<SessionUndo>(*database);
    say("");
}

void TSXmainframe::updateScrollRanges() {
    typesPane->updateScrollRange();
    entriesPane->updateScrollRange();
    problemPane->updateScrollRange();
}

void TSXmainframe::frameSized(int /*type*/, int /*width*/, int /*height*/) {
    const auto [right, bottom] = getInnerSize();
    constexpr int lower = middleEdge + headingsHeight;
    problemPane->placeAt(1, topEdge, right - 1, middleEdge - topEdge - 5);
    typesPane->placeAt(1, lower, columnEdge - 6, bottom - lower);
    entriesPane->placeAt(columnEdge, lower, right - columnEdge, bottom - lower);
    updateScrollRanges();
    InvalidateRect(true);
}

void TSXmainframe::paintFrame(CDC& dc) {
    const auto [right, bottom] = getInnerSize();
    drawEdge(dc, topEdge - 2, right);
    drawEdge(dc, middleEdge + headingsHeight - 2, right);
    drawGrooves(dc, right, bottom);
    dc.SelectObject(getFont(plainFont));
    dc.SetBkMode(TRANSPARENT);
    for (const Heading& heading : headings)
        dc.TextOutA(heading.x, heading.y, heading.text);
}

void TSXmainframe::frameCommand(std::uint32_t id) {
    switch (id) {
    case exitCommand:
        if (canClose() == 1)
            DestroyWindow(); // deletes this object
        break;
    case showAllCommand:
        showAllEntries();
        break;
    case MenuCommand::rebuildCommand:
        rebuildCommand();
        break;
    case MenuCommand::undoCommand:
        undoCommand();
        break;
    case saveCommand:
        save();
        break;
    case editCommand:
        openEntryWindow();
        break;
    default:
        if (id >= removeemptyfilescommand && id <= lastsolutioncommand)
            solveProblem(id);
    }
}

int TSXmainframe::canClose() {
    if (database->ismodified() != 1)
        return 1;
    const int answer =
        MessageBoxA(this, "Database has been changed. Do you want to save these changes on disk?", "Warning",
                    MB_YESNOCANCEL | MB_ICONEXCLAMATION);
    if (answer == IDYES)
        return save() ? 1 : 0; // what could not be saved must not go with the window
    return answer == IDCANCEL ? 0 : 1;
}

bool TSXmainframe::save() {
    const int before = unsavedKeys(*database);
    const bool saved = database->saveall() == 1;
    undo->noteStep("saved " + counted(before - unsavedKeys(*database), "key", ""));
    say(saved ? "Saved" : "");
    return saved;
}

void TSXmainframe::rebuildCommand() {
    SetCursor(IDC_WAIT);
    const bool readable = !database->tree->begin(); // else the analysis tells
    const std::vector<std::string> changed = readable ? database->changedsince() : std::vector<std::string>();
    const bool wanted =
        changed.empty() || database->ismodified() == 0 ||
        askall(changed, "Read these files anew? Keys in them that are not saved are lost then.");
    said = !changed.empty() && wanted ? "Read anew what has changed" : "";
    if (wanted && (!changed.empty() || database->unreadcount() > 0)) {
        closeEntryWindows(); // each shows a key of the index
        database->reread();
    }
    rebuildDatabase();
    SetCursor(IDC_ARROW);
}

void TSXmainframe::undoCommand() {
    const std::string step = undo->next();
    if (step.empty()) {
        say("Nothing is left to undo");
        return MessageBeep();
    }
    SetCursor(IDC_WAIT);
    closeEntryWindows();
    said = (undo->takeBack() ? "Undone: " : "Not undone: ") + step;
    rebuildDatabase();
    SetCursor(IDC_ARROW);
}

// What the person should know although no message box says it, or says it any more.
void TSXmainframe::say(const std::string& text) {
    said = text;
    std::string line = text;
    const auto add = [&line](const std::string& part) {
        if (!part.empty())
            line += (line.empty() ? "" : line.back() == '.' ? " " : "; ") + part;
    };
    const int unread = database->unreadcount();
    add(counted(unsavedKeys(*database), "key", " not saved"));
    add(database->problemcount > 0 ? counted(database->problemcount, "problem", "")
        : unread > 0               ? "No problem in what could be read"
                                   : "Nothing is wrong");
    add(namedUnread(*database));
    add(counted(static_cast<int>(database->unread.size()) - unread, "thing", " left out (see TXLOG.TXT)"));
    add(counted(lostLogLines(), "line", " missing in TXLOG.TXT, which could not be written"));
    SetMenuText(MenuCommand::undoCommand, undo->next().empty() ? "Undo" : "Undo: " + undo->next());
    statusBar->SetText(line.c_str());
    statusBar->UpdateWindow();
}

void TSXmainframe::describeProblem() {
    constexpr const char* costs[] = {"loses nothing", "clears keys", "deletes at once"}; // by Cost
    const TSXproblem* const problem = database->getproblem(selectedProblem);
    std::string text;
    for (int n = 1; problem != nullptr && n <= problem->solutioncount(); ++n)
        text += std::string(problem->solutionlabel(n)) + ": " +
                costs[static_cast<std::size_t>(problem->solution(n).cost)] + ". ";
    say(problem == nullptr ? text : text + problem->facts().meaning);
}

void TSXmainframe::showAllEntries() {
    database->showallkeys();
    entriesPane->InvalidateRect(true);
    entriesPane->updateScrollRange();
}

void TSXmainframe::solveProblem(std::uint32_t command) {
    const TSXproblem* const problem = database->getproblem(selectedProblem);
    int number = problem == nullptr ? 0 : problem->solutioncount();
    while (number > 0 && problem->solutioncommand(number) != static_cast<int>(command))
        --number;
    if (number == 0)
        return MessageBeep();
    SetCursor(IDC_WAIT);
    solve(*problem, number);
    SetCursor(IDC_ARROW);
}

void TSXmainframe::solve(const TSXproblem& problem, int number) {
    const std::string label = problem.solutionlabel(number);
    say(label + " ...");
    const std::size_t changes = database->changes.size();
    const int unsaved = unsavedKeys(*database);
    const bool solved = problem.solve(number) == 1;
    const std::string done = workDone(*database, changes, unsaved);
    undo->noteStep(withSmallLetter(done.empty() ? label : done));
    said = done.empty() ? label + (solved ? ": done" : ": not done") : done;
    if (database->changes.size() > changes && !undo->next().empty())
        said +=
            "; Undo takes " + std::string(database->changes.size() > changes + 1 ? "them" : "it") + " back";
    if (solved || database->changes.size() > changes) // some of the files may have gone all the same
        rebuildDatabase();
    else
        say(said);
    if (!solved)
        MessageBeep();
}

void TSXmainframe::rebuildDatabase() {
    closeEntryWindows(); // each shows a key of the index, which the analysis makes anew
    database->analyse();
    updateScrollRanges();
    say(said);
    InvalidateRect(true);
    entriesPane->InvalidateRect(true);
    typesPane->InvalidateRect(true);
    problemPane->InvalidateRect(true);
}

void TSXmainframe::closeEntryWindows() {
    for (TSXentryframe* window : entryWindows)
        if (window != nullptr)
            window->DestroyWindow();
}

void TSXmainframe::openEntryWindow() {
    TSXkeyentry* const key = database->getvisiblekey(selectedKey);
    if (key == nullptr) {
        MessageBeep();
        return;
    }
    TSXentryframe** free = nullptr;
    for (TSXentryframe*& window : entryWindows) {
        if (window == nullptr)
            free = &window;
        else if (window->showsKey(*key))
            return window->SetActiveWindow();
    }
    if (free == nullptr)
        return;
    *free = new TSXentryframe(*this, *database, *key); // deletes itself with its window
    (*free)->createEntryWindow();
}

void TSXmainframe::entryWindowClosed(const TSXentryframe& window) {
    for (TSXentryframe*& open : entryWindows)
        if (open == &window)
            open = nullptr;
}

void TSXmainframe::changeKey(TSXkeyentry& entry, int type, int n, const char* text) {
    if (database->changekey(entry, type, n, text) != 1)
        return;
    for (TSXentryframe* window : entryWindows)
        if (window != nullptr)
            window->refreshEntry();
    entriesPane->updateScrollRange();
    entriesPane->InvalidateRect(false);
    undo->noteStep("changed 1 key");
    say("");
}
