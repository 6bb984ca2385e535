#!/usr/bin/env python3
"""Drives the real programs in a real window: a virtual X display with a window manager, keys and clicks sent by
xdotool, and pixels, files and exit statuses looked at.  Usage: gui.py DIRECTORY-OF-THE-PROGRAMS [SCENARIO...]"""

import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
from oracle import contents

PROGRAMS = pathlib.Path(sys.argv[1]).resolve()
MIDDLE = 199  # the black line under the problem list, in client pixels of the main window
START_TITLE = "Databases - Trelvanexis"
BLACK, WHITE, SELECTED = (0, 0, 0), (255, 255, 255), (0x99, 0x99, 0x99)


def wait(what, condition):
    """Gives up only when nothing has come of it for so long that a person would."""
    end = time.monotonic() + 60
    while True:
        try:
            if result := condition():
                return result
        except (FileNotFoundError, ProcessLookupError):  # what went between its listing and its reading
            pass
        expect(time.monotonic() < end, "waited in vain for " + what)
        time.sleep(0.05)


def expect(truth, what):
    if not truth:
        raise AssertionError(what)


class Display:
    """The virtual display, its window manager, and a person in front of it."""

    def __init__(self, work):
        read, write = os.pipe()
        self.errors = open(work / "stderr", "a")
        # What libraries keep at an early exit. The window plugin is not among them: it lies under every event.
        (work / "leaks").write_text("leak:libdbus\nleak:libfontconfig\nleak:QGenericUnixServices\n")
        self.server = subprocess.Popen(["Xvfb", "-noreset", "-displayfd", str(write), "-screen", "0", "1600x1000x24"],
                                       pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as answer:
            number = answer.readline().strip()
        self.environment = dict(os.environ, DISPLAY=":" + number, QT_QPA_PLATFORM="xcb", HOME=str(work),
                                XDG_CONFIG_HOME=str(work / "config"), XDG_STATE_HOME=str(work / "state"), XDG_RUNTIME_DIR=str(work),
                                LSAN_OPTIONS="suppressions=%s/leaks:print_suppressions=0" % work)
        self.manager = subprocess.Popen(["openbox"], env=self.environment, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        wait("the window manager", lambda: self.call("get_desktop").returncode == 0)

    def close(self):
        for process in self.manager, self.server:
            process.terminate()
            process.wait()
        self.errors.close()

    def start(self, program, *arguments):
        return subprocess.Popen([PROGRAMS / program, *map(str, arguments)], env=self.environment,
                                cwd=self.environment["HOME"], stdout=self.errors, stderr=self.errors)

    def run(self, program, *arguments):
        return self.start(program, *arguments).wait()

    def call(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.environment, capture_output=True, text=True)

    def xdotool(self, *words):
        done = self.call(*words)
        expect(done.returncode == 0, "xdotool %s: %s" % (words, done.stderr))

    def windows(self, title):
        return self.call("search", "--onlyvisible", "--name", "^" + re.escape(title)).stdout.split()

    def window(self, title):
        return wait("a window '%s'" % title, lambda: self.windows(title))[0]

    def gone(self, title):
        wait("'%s' to go" % title, lambda: not self.windows(title))

    def key(self, *keys):
        self.xdotool("key", "--delay", 40, *keys)

    def answer(self, title, text, ending):
        """Types into a dialogue and leaves it by a key."""
        self.window(title)
        self.xdotool("type", "--delay", 30, text)
        self.key(ending)
        self.gone(title)

    def menu(self, window, x, number):
        """Chooses entry number, from 1, of the menu whose title stands at x."""
        self.xdotool("windowactivate", "--sync", window)
        self.choose(window, x, 10, *["Down"] * number)

    def choose(self, window, x, y, *keys):
        """Clicks at a place that opens a menu, and chooses the entry that the keys lead to."""
        before = self.shown()
        self.click(window, x, y)
        menu = wait("a menu", lambda: self.shown() - before)
        self.key(*keys, "Return")
        wait("the menu to go", lambda: not self.shown() & menu)

    def shown(self):
        return set(self.call("search", "--onlyvisible", "--class", "txinspect").stdout.split())

    def click(self, window, x, y, *more):
        self.xdotool("mousemove", "--window", window, x, y, "click", *more, 1)

    def open_by_click(self, title, *place):
        """Clicks once more where the window was not ready for it; it may also have gone for the new one."""
        def opened():
            if not self.windows(title):
                self.call("mousemove", "--window", *place, "click", 1)
                time.sleep(0.5)
            return self.windows(title)
        wait("a window '%s'" % title, opened)

    def box(self, window):
        told = subprocess.run(["xwininfo", "-id", window], env=self.environment, capture_output=True, text=True).stdout
        return re.findall(r"(?:Absolute upper-left .|Width|Height): +(\d+)", told)

    def close_window(self, window):
        self.xdotool("windowactivate", "--sync", window)
        self.key("alt+F4")

    def pixels(self, window):
        return Picture(subprocess.run(["import", "-silent", "-window", window, "-depth", "8", "ppm:-"],
                                      env=self.environment, capture_output=True, check=True).stdout)


class Picture:
    def __init__(self, ppm):
        head = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", ppm)
        self.width, self.height = int(head[1]), int(head[2])
        self.data = ppm[head.end():]

    def run(self, colour, y, length):
        """Where in the line the colour first stands that often; -1 if nowhere."""
        place = self.data[3 * y * self.width:3 * (y + 1) * self.width].find(bytes(colour) * length)
        return place // 3 if place >= 0 else -1


class Tool:
    """The running tool: its main window, addressed by the rows of its panes."""

    def __init__(self, display, name):
        self.display = display
        self.main = display.window("Database Check- " + name)
        self.top = wait("the first paint", self.menu_height)
        self.aside = 10
        self.stood = display.box(self.main)
        display.xdotool("windowmove", "--sync", self.main, 780, 40)

    def menu_height(self):
        picture = self.display.pixels(self.main)
        lines = [y for y in range(MIDDLE, picture.height) if picture.run(BLACK, y, 230) >= 0]
        return lines[0] - MIDDLE if lines else 0

    def buttons(self):
        """Left edges of the "Solve" buttons of the first seven rows, which are in view."""
        picture = self.display.pixels(self.main)
        edges = [picture.run(WHITE, self.top + 24 + 20 * row + 1, 39) for row in range(7)]
        return [x for x in edges if x >= 0]

    def solve_first(self):
        """Chooses the last solution of the first problem."""
        self.aside = 40 - self.aside  # two presses at one place may be a double click, which opens nothing
        self.display.choose(self.main, self.buttons()[0] + self.aside, self.top + 24 + 10, "Up")

    def keys_shown(self):
        return self.display.pixels(self.main).run(SELECTED, self.top + 222 + 1, 300) >= 0

    def show_all(self):
        self.display.menu(self.main, 20, 1)
        wait("the keys", self.keys_shown)

    def open_key(self, row):
        self.display.click(self.main, 400, self.top + 222 + 20 * row - 10, "--repeat", 2, "--delay", 60)

    def save(self):
        self.display.menu(self.main, 20, 3)

    def prompt(self, entry, text):
        self.display.menu(entry, 60, 1)
        self.display.window("Change key")
        self.display.xdotool("type", "--delay", 30, text)

    def change_key(self, entry, text, *keys):
        self.prompt(entry, text)
        self.display.key(*keys, "Return")
        self.display.gone("Change key")

    def leave(self, *answer):
        """Ends the tool, which brings back the start-up program, and ends that."""
        self.display.close_window(self.main)
        if answer:
            self.display.window("Warning")
            self.display.key(*answer)
        self.gone()

    def gone(self):
        self.display.gone("Database Check- ")
        self.display.close_window(self.display.window(START_TITLE))
        self.display.gone(START_TITLE)


class Place:
    """A home directory with one sample database, chosen and under inspection or not."""

    def __init__(self, display, work, *sample):
        self.display = display
        self.directory = pathlib.Path(tempfile.mkdtemp(dir=work))
        self.home, self.database, self.name = self.directory / "home", self.directory / "data", "Strains"
        subprocess.run([PROGRAMS / "txsample", *map(str, sample), "--home", self.home, "--name", self.name,
                        self.database], check=True, stdout=subprocess.DEVNULL)

    def choose(self, *more):
        return self.display.run("txstart", "--home", self.home, "--database", self.name, *more)

    def inspect(self):
        expect(self.choose("--inspect") == 0, "txstart could not start the tool")
        return Tool(self.display, self.name)

    def check(self, *options, database=None):
        """What the companion finds, read beside the lock; nothing with a lock that another holds."""
        done = subprocess.run([PROGRAMS / "txcheck", "--json", "--no-progress", *options, database or self.database],
                              env=self.display.environment, capture_output=True, text=True)
        return json.loads(done.stdout) if done.stdout else None

    def keys(self):
        document = self.check("--no-lock", "--all")  # none beside a save that is at work
        return [key["key"] for key in document["keys"]] if document else []


def solving(display, work):
    """Every kind of problem is solved by its button, and the saved tree is that of the companion's same steps."""
    place = Place(display, work, "--damage", "all")
    before = shutil.copytree(place.database, place.directory / "before")
    problems = place.check("--no-lock")["problems"]
    expect({p["kind"] for p in problems} == set(range(1, 8)), "the sample lacks a kind")
    tool = place.inspect()
    expect(place.check() is None, "the tool does not hold its database")
    steps = []
    while problems:
        wait("the problems", lambda: len(tool.buttons()) == min(len(problems), 7))
        tool.solve_first()
        steps += ["--solve", "%s:%d" % (problems[0]["id"], len(problems[0]["solutions"]))]
        shutil.rmtree(place.directory / "copy", ignore_errors=True)
        copy = shutil.copytree(before, place.directory / "copy")
        problems = place.check(*steps, "--save", database=copy)["problems"]
    wait("an empty list", lambda: not tool.buttons())
    tool.save()
    wait("the same tree as the companion's", lambda: contents(place.database) == contents(copy))
    tool.leave()
    expect(place.check()["problems"] == [], "the database is locked or not clean afterwards")
    expect((place.home / "TXLOG.TXT").read_text(errors="replace").endswith(
        "     *  End of TX log file  *\n     ************************\n"), "no trailer")
    expect((place.database / "open_db.txf").exists(), "the marker file has gone")


def keys(display, work):
    """One record gets another key: the window of a key, the prompt, the save, and the question on leaving."""
    place = Place(display, work)
    first, before = place.keys()[0], contents(place.database)
    tool = place.inspect()
    expect(not tool.keys_shown(), "a sound database shows keys")
    tool.show_all()
    tool.open_key(1)
    entry = display.window("Entry " + first)
    display.xdotool("windowmove", "--sync", entry, 800, 300)  # over the main window
    display.xdotool("mousemove", "--window", entry, 200, 200)
    on_top = display.call("getmouselocation").stdout
    display.xdotool("windowactivate", "--sync", tool.main)
    expect(display.call("getmouselocation").stdout == on_top, "the entry window is behind the main window")
    tool.change_key(entry, "Nothing", "Tab", "Tab")  # Return on the Cancel button
    tool.change_key(entry, "Changed 1")
    display.xdotool("windowactivate", "--sync", tool.main)
    for opening, choice in (("F10", "Down"), "Escape"), (("alt", "Right", "Down"), "Escape"), (("alt+f",), "a"):  # Save
        display.key(*opening)
        wait("the menu", lambda: len(display.shown()) > 2)
        display.key(choice)
        wait("the menu to go", lambda: len(display.shown()) == 2)
        display.key("Escape")  # the mark of the menu bar
    wait("the save", lambda: "Changed 1" in place.keys())
    changed = [path for path, content in contents(place.database).items() if content != before[path]]
    expect(len(changed) == 1 and "Nothing" not in place.keys(), "more than a key was written")
    saved, stood = contents(place.database), [display.box(window) for window in (tool.main, entry)]
    display.close_window(entry)
    display.gone("Entry ")
    tool.open_key(3)
    tool.change_key(display.window("Entry "), "Changed 2")
    display.close_window(tool.main)
    display.window("Warning")
    display.key("Escape")
    display.gone("Warning")
    expect(display.windows("Entry "), "Cancel closed a window")
    tool.leave("Tab", "Return")  # No
    expect(contents(place.database) == saved, "No saved the change")
    tool = place.inspect()
    tool.show_all()
    tool.open_key(3)
    expect([tool.stood, display.box(display.window("Entry "))] == stood, "the windows don't stand where they did")
    tool.change_key(display.window("Entry "), "Changed 3")
    display.close_window(display.window("Entry "))
    display.gone("Entry ")
    tool.open_key(2)
    tool.prompt(display.window("Entry "), "unfinished")
    tool.leave("Return")
    expect("Changed 3" in place.keys(), "Yes did not save the change")


def chosen_by_hand(display, place):
    """From nothing to the tool on a database that is added at the second try, beside one that is there."""
    display.start("txstart")
    window = display.window(START_TITLE)
    display.xdotool("windowactivate", "--sync", window)
    display.key("Return")  # what is to be done first
    display.answer("Home directory", place.home, "Return")
    width, height = map(int, display.box(window)[2:])
    for ending in "Escape", "Return":
        display.open_by_click("Directory of the database", window, 40, height - 25)
        display.answer("Directory of the database", place.database, "Return")
        display.answer("Add a database", "Zoo", ending)
        expect((place.home / "Zoo.dbs").exists() == (ending == "Return"), "added, or not, against the answer")
    display.key("alt+d")  # it has moved
    display.answer("Directory of the database", place.home, "Return")
    for key, there in ("Return", True), ("alt+y", False):  # no database lies there; Fourth is taken off the list
        if not there:
            display.click(window, 60, 66)
            display.key("alt+r")
        wait("a question", lambda: len(display.windows(START_TITLE)) == 2)
        display.key(key)
        wait("the end of the question", lambda: len(display.windows(START_TITLE)) == 1)
        wait("the file to go", lambda: (place.home / "Fourth.dbs").exists() == there)
    expect(str(place.database) in (place.home / "Zoo.dbs").read_text(), "moved against the answer")
    display.key("End")
    display.click(window, width - 40, height - 25)
    return Tool(display, "Zoo")


def starting(display, work):
    """What the start-up program writes and refuses, and what keeps the tool from starting: it then stays away."""
    place = Place(display, work)

    def refused(key, status):
        tool = display.start("txinspect")
        display.window("Error" if status == 0 else "Warning")
        display.key(key)
        expect(tool.wait() == status and not display.windows(START_TITLE), "wrong end after a refusal")

    shutil.rmtree(work / "config", ignore_errors=True)
    refused("Return", 0)
    expect(place.choose() == 0, "choose")
    expect(display.run("txstart", "--add", "Other", place.database) == 0, "add")
    expect((place.home / "Other.dbs").read_text().startswith("[DIR]\n%s\n" % place.database), "settings file")
    for arguments in (["--add", "Other", place.database], ["--add", "Third", place.directory / "nowhere"],
                      ["--add", "a/b", place.database], ["--database", "nobody"], ["--home", work / "nowhere"],
                      ["--add", "Fourth", work]):
        expect(display.run("txstart", *arguments) == 8, "not refused: %s" % arguments)
    expect(display.run("txstart", "--yes", "--add", "Fourth", work) == 0, "--yes")

    def unseen(*words):  # without a display
        done = subprocess.run([PROGRAMS / words[0], *words[1:]], env={**display.environment, "DISPLAY": ""},
                              capture_output=True, text=True)
        return done.returncode, done.stdout + done.stderr

    told = unseen("txstart", "--inspect")
    expect(told[0] == 8 and "txstart: No window can be opened" in told[1], told)
    expect(unseen("txstart")[0] == unseen("txinspect")[0] == 8, "no status 8 without a display")
    for program in "txinspect", "txstart":
        told = unseen(program, "--help")
        expect(told[0] == 0 and "txstart" in told[1], told)
    expect("\\x1B" in unseen("txstart", "\x1b")[1], "a control byte reaches the terminal")
    expect(display.run("txstart", "--add", "Other") == 16, "usage")
    shutil.rmtree(work / "config")
    tool = chosen_by_hand(display, place)
    refused("Return", 0)  # the database is held
    tool.leave()
    (place.database / "outside.xdb").touch()
    refused("Escape", 255)
    expect(place.check()["problems"] == [], "a refusal kept the lock")


def strays(display, work):
    """Keys that nobody meant for what they meet solve nothing, also such as delete; those that are meant do."""
    place = Place(display, work, "--damage", "corrupt-files,side-files")
    before = contents(place.database)
    place.choose()
    display.start("txstart")
    display.xdotool("windowactivate", "--sync", display.window(START_TITLE))
    display.xdotool("keydown", "Return")  # on "Inspect", and held
    tool = Tool(display, place.name)
    time.sleep(1.5)
    display.xdotool("keyup", "Return")
    expect(len(display.shown()) == 1, "a key that is held has opened a menu")
    display.xdotool("keydown", "Return", "sleep", 1.5, "keyup", "Return", "key", "Escape")
    wait("the menu to go", lambda: len(display.shown()) == 1)
    process = int(display.call("getwindowpid", tool.main).stdout)
    os.kill(process, signal.SIGSTOP)
    display.key("Return", "Down", "Return", "End")
    os.kill(process, signal.SIGCONT)
    wait("the menu", lambda: len(display.shown()) > 1)
    display.key("Return", "Escape")  # nothing is marked
    time.sleep(0.5)
    expect(contents(place.database) == before, "a key that was held or typed ahead has solved something")
    display.key("Return")
    wait("the menu", lambda: len(display.shown()) > 1)
    display.xdotool("key", "--delay", 2, "Down", "Return", "End")
    wait("the first file to go", lambda: contents(place.database).keys() == before.keys() - {"fprint/BADHEAD.CNF"})
    tool.leave()


def running():
    return [int(process.name) for process in pathlib.Path("/proc").glob("[0-9]*")
            if (process / "comm").read_text() == "txinspect\n" and (process / "exe").exists()  # else it has ended
            and (process / "exe").samefile(PROGRAMS / "txinspect")]  # else it is another run's


def waiting(display, work):
    """While a large database is read the start-up program stays, says how far that is, and can give it up."""
    place = Place(display, work, "--files", 400, "--entries", 1000)
    place.choose()
    display.start("txstart")
    start = display.window(START_TITLE)
    width, height = map(int, display.box(start)[2:])
    display.click(start, width - 40, height - 25)
    tool = wait("the tool", running)[0]
    os.kill(tool, signal.SIGSTOP)  # else a fast machine has read all before anybody looks
    display.window("Reading " + place.name)
    expect(display.windows(START_TITLE), "the start-up program has gone")
    display.key("Escape")
    os.kill(tool, signal.SIGCONT)
    wait("the tool to go", lambda: not running())
    expect(place.check()["problems"] == [], "a reading that was given up kept the lock")
    display.open_by_click("Database Check- ", start, width - 40, height - 25)
    Tool(display, place.name).leave()


def undoing(display, work):
    """A file that was deleted comes back by the menu, and after the end of the session from the start-up program."""
    place = Place(display, work, "--damage", "corrupt-files,side-files")
    before = contents(place.database)
    tool = place.inspect()
    tool.solve_first()
    wait("the first file to go", lambda: contents(place.database) != before)
    display.menu(tool.main, 60, 2)
    wait("it to come back", lambda: contents(place.database) == before)
    tool.solve_first()
    wait("it to go again", lambda: contents(place.database) != before)
    display.close_window(tool.main)
    start = display.window(START_TITLE)
    display.xdotool("windowactivate", "--sync", start)
    display.key("alt+c")
    changes = display.window("Changes of " + place.name)
    display.key("Down", "alt+r")  # the first is what the menu has taken back
    wait("a question", lambda: len(display.windows("Changes of ")) == 2)
    display.key("alt+y")
    wait("the file to come back later", lambda: contents(place.database) == before)
    display.close_window(changes)
    display.close_window(start)
    display.gone(START_TITLE)


SCENARIOS = (starting, solving, keys, strays, waiting, undoing)


def main():
    chosen = [s for s in SCENARIOS if not sys.argv[2:] or s.__name__ in sys.argv[2:]]
    with tempfile.TemporaryDirectory(prefix="gui-") as name:
        work = pathlib.Path(name)
        display = Display(work)
        try:
            for scenario in chosen:
                scenario(display, work)
                print("passed: " + scenario.__name__, flush=True)
        finally:
            display.close()
        errors = (work / "stderr").read_text()
        expect(not re.search("Sanitizer|runtime error", errors), "a sanitizer has spoken\n" + errors)


if __name__ == "__main__":
    main()
