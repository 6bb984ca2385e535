#!/usr/bin/env python3
"""Drives the real programs in a real window: a virtual X display with a window manager, keys and clicks sent by
xdotool, and pixels, files and exit statuses looked at.  Usage: gui.py DIRECTORY-OF-THE-PROGRAMS [SCENARIO...]"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
from programtest import BUSY, contents

PROGRAMS = pathlib.Path(sys.argv[1]).resolve()
SLOW = float(os.environ.get("SLOWNESS", "1"))  # how much longer than usual things may take
MIDDLE = 199  # the black line under the problem list, in client pixels of the main window
START_TITLE = "Databases - Trelvanexis"
SELECTED = (0x99, 0x99, 0x99)


def wait(what, condition, seconds=20):
    end = time.monotonic() + seconds * SLOW
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError("waited in vain for " + what)


def expect(truth, what):
    if not truth:
        raise AssertionError(what)


class Display:
    """The virtual display, its window manager, and a person in front of it."""

    def __init__(self, work):
        read, write = os.pipe()
        self.errors = open(work / "stderr", "a")
        # What libraries keep at an early exit. The window plugin is not among them: it lies under every event.
        (work / "leaks").write_text("leak:libdbus\nleak:libfontconfig\n")
        self.server = subprocess.Popen(["Xvfb", "-noreset", "-displayfd", str(write), "-screen", "0", "1600x1000x24"],
                                       pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as answer:
            number = answer.readline().strip()
        self.environment = dict(os.environ, DISPLAY=":" + number, QT_QPA_PLATFORM="xcb", HOME=str(work),
                                XDG_CONFIG_HOME=str(work / "config"), XDG_RUNTIME_DIR=str(work),
                                LSAN_OPTIONS="suppressions=%s/leaks:print_suppressions=0" % work)
        self.manager = subprocess.Popen(["openbox"], env=self.environment, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)

        def ready():  # without a manager the answer is 0 too, but a failure
            answer = self.call("get_desktop")
            return answer.returncode == 0 and answer.stdout == "0\n"
        wait("the window manager", ready)

    def close(self):
        self.manager.terminate()
        self.server.terminate()
        self.manager.wait()
        self.server.wait()
        self.errors.close()

    def start(self, program, *arguments):
        return subprocess.Popen([PROGRAMS / program, *map(str, arguments)], env=self.environment,
                                cwd=self.environment["HOME"], stdout=self.errors, stderr=self.errors)

    def run(self, program, *arguments):
        return self.start(program, *arguments).wait()

    def call(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.environment, capture_output=True, text=True)

    def xdotool(self, *words, check=True):
        done = self.call(*words)
        expect(done.returncode == 0 or not check, "xdotool %s: %s" % (words, done.stderr))
        return done.stdout

    def windows(self, title):
        pattern = "^" + re.escape(title)
        return self.xdotool("search", "--onlyvisible", "--name", pattern, check=False).split()

    def window(self, title):
        return wait("a window '%s'" % title, lambda: self.windows(title))[0]

    def gone(self, title):
        wait("'%s' to go" % title, lambda: not self.windows(title))

    def activate(self, window):
        self.xdotool("windowactivate", "--sync", window)

    def click(self, window, x, y, *more):
        self.xdotool("mousemove", "--window", window, x, y, "click", *more, 1)

    def key(self, *keys):
        self.xdotool("key", "--delay", 40, *keys)

    def menu(self, window, x, number):
        """Chooses entry number, from 1, of the menu whose title stands at x."""
        self.activate(window)
        self.choose(window, x, 10, *["Down"] * number)

    def choose(self, window, x, y, *keys):
        """Clicks at a place that opens a menu, and chooses the entry that the keys lead to."""
        before = self.shown()
        self.click(window, x, y)
        menu = wait("a menu", lambda: self.shown() - before)
        self.key(*keys, "Return")
        wait("the menu to go", lambda: not self.shown() & menu)

    def shown(self):
        return set(self.xdotool("search", "--onlyvisible", "--class", "txinspect", check=False).split())

    def active(self, title):
        """The active window, when its title begins so."""
        def look():
            window = self.xdotool("getactivewindow", check=False).strip()
            return window if window in self.windows(title) else None
        return wait("'%s' in front" % title, look)

    def settled(self, window):
        """The window's picture, when it does not change any more."""
        pictures = [b""]
        def same():
            pictures.append(self.pixels(window).data)
            time.sleep(0.1 * SLOW)
            return pictures[-1] == pictures[-2]
        wait("a picture that stays", same)
        return self.pixels(window)

    def close_window(self, window):
        self.activate(window)
        self.key("alt+F4")

    def pixels(self, window):
        return Picture(subprocess.run(["import", "-silent", "-window", window, "-depth", "8", "ppm:-"],
                                      env=self.environment, capture_output=True, check=True).stdout)


class Picture:
    def __init__(self, ppm):
        head = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", ppm)
        self.width, self.height = int(head[1]), int(head[2])
        self.data = ppm[head.end():]

    def at(self, x, y):
        place = 3 * (y * self.width + x)
        return tuple(self.data[place:place + 3])

    def run(self, colour, y, length):
        """Where in the line the colour first stands that often; -1 if nowhere."""
        line = self.data[3 * y * self.width:3 * (y + 1) * self.width]
        place = line.find(bytes(colour) * length)
        return place // 3 if place >= 0 else -1


class Tool:
    """The running tool: its main window, addressed by the rows of its panes."""

    def __init__(self, display, name):
        self.display, self.name = display, name
        self.main = display.window("Database Check- " + name)
        wait("the first paint", self.find_top)
        display.xdotool("windowmove", self.main, 780, 40)

    def find_top(self):
        """The height of the menu bar, above the client area."""
        picture = self.display.pixels(self.main)
        lines = [y for y in range(MIDDLE, picture.height) if picture.run((0, 0, 0), y, 230) >= 0]
        self.top = lines[0] - MIDDLE if lines else 0
        return self.top

    def solve_button(self):
        """Left edge of the first problem's button; -1 if there is no problem."""
        return self.display.settled(self.main).run((255, 255, 255), self.top + 24 + 1, 39)

    def solve_first(self):
        """Chooses the last solution of the first problem."""
        self.display.choose(self.main, self.solve_button() + 20, self.top + 24 + 10, "Up")

    def key_row_selected(self, row):
        return self.display.pixels(self.main).at(600, self.top + 222 + 20 * row - 10) == SELECTED

    def open_key(self, row):
        self.display.click(self.main, 400, self.top + 222 + 20 * row - 10, "--repeat", 2, "--delay", 60)

    def show_all(self):
        self.display.menu(self.main, 20, 1)

    def rebuild(self):
        self.display.menu(self.main, 20, 2)

    def save(self):
        self.display.menu(self.main, 20, 3)

    def leave(self):
        """Ends the tool, which brings back the start-up program, and ends that."""
        self.display.close_window(self.main)
        self.gone()

    def gone(self):
        self.display.gone("Database Check- ")
        self.display.close_window(self.display.window(START_TITLE))
        self.display.gone(START_TITLE)

    def change_key(self, entry, text):
        self.display.menu(entry, 60, 1)
        self.display.window("Change key")
        self.display.xdotool("type", "--delay", 30, text)
        self.display.key("Return")
        self.display.gone("Change key")


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
        """What the companion finds, read beside the lock."""
        done = subprocess.run([PROGRAMS / "txcheck", "--json", "--no-progress", *options, database or self.database],
                              capture_output=True, text=True)
        return json.loads(done.stdout)

    def lock_is_free(self):
        done = subprocess.run([PROGRAMS / "txcheck", self.database], capture_output=True, text=True)
        return BUSY not in done.stderr

    def log(self):
        return (self.home / "TXLOG.TXT").read_text(errors="replace")


def solving(display, work):
    """Every kind of problem is solved by its button, and the saved tree is that of the companion's same steps."""
    place = Place(display, work, "--damage", "all")
    before = shutil.copytree(place.database, place.directory / "before")
    expect({p["kind"] for p in place.check("--no-lock")["problems"]} == set(range(1, 8)), "the sample lacks a kind")
    tool = place.inspect()
    size = display.xdotool("getwindowgeometry", tool.main)
    expect("Geometry: 750x550" in size, size)
    expect(not place.lock_is_free(), "the tool does not hold its database")
    steps = []
    while True:
        shutil.rmtree(place.directory / "copy", ignore_errors=True)
        copy = shutil.copytree(before, place.directory / "copy")
        problems = place.check(*steps, "--save", database=copy)["problems"]
        if not problems:
            break
        expect(tool.solve_button() >= 0, "the tool has no problem left, the companion has")
        tool.solve_first()
        steps += ["--solve", "%s:%d" % (problems[0]["id"], len(problems[0]["solutions"]))]
    expect(tool.solve_button() == -1, "the tool has a problem left")
    tool.save()
    wait("the same tree as the companion's", lambda: contents(place.database) == contents(copy), 5)
    tool.leave()
    expect(place.lock_is_free() and place.check()["problems"] == [], "the database is not clean afterwards")
    expect(place.log().endswith("     *  End of TX log file  *\n     ************************\n"), "no trailer")
    expect((place.database / "open_db.txf").exists(), "the marker file has gone")


def keys(display, work):
    """One record gets another key: the window of a key, the prompt, the save, and the question on leaving."""
    place = Place(display, work)
    first = place.check("--no-lock", "--all")["keys"][0]["key"]
    tool = place.inspect()
    expect(not tool.key_row_selected(1), "a sound database shows keys")
    tool.show_all()
    wait("the keys", lambda: tool.key_row_selected(1))
    tool.open_key(1)
    entry = display.window("Entry " + first)
    tool.open_key(3)
    wait("a second window", lambda: len(display.windows("Entry ")) == 2)
    tool.open_key(1)
    expect(display.active("Entry " + first) == entry and len(display.windows("Entry ")) == 2, "a key has two windows")

    display.xdotool("windowmove", "--sync", entry, 800, 60)
    entry_looks = display.settled(entry).data
    display.activate(tool.main)
    expect(display.settled(entry).data == entry_looks, "the entry window is behind the main window")
    display.xdotool("windowmove", "--sync", entry, 120, 120)
    before = contents(place.database)
    tool.change_key(entry, "Changed 1")
    expect(contents(place.database) == before, "a change reached the disk before it was saved")
    tool.save()
    changed = wait("the save", lambda: [p for p, b in contents(place.database).items() if b != before[p]], 5)
    old, new = before[changed[0]], contents(place.database)[changed[0]]
    places = [i for i in range(len(old)) if old[i] != new[i]]
    expect(len(changed) == 1 and len(old) == len(new) and places[-1] - places[0] < 69, "more than a key was written")
    expect("Changed 1" in [k["key"] for k in place.check("--no-lock", "--all")["keys"]], "the key is not on disk")

    saved = contents(place.database)
    tool.open_key(3)
    tool.change_key(display.active("Entry "), "Changed 2")
    for answer, keys_pressed in ("Cancel", ["Escape"]), ("No", ["Tab", "Return"]):
        display.close_window(tool.main)
        display.window("Warning")
        display.key(*keys_pressed)
        display.gone("Warning")
        if answer == "Cancel":
            expect(len(display.windows("Entry ")) == 2, "Cancel closed a window")
    tool.gone()
    expect(contents(place.database) == saved, "No saved the change")

    tool = place.inspect()
    tool.show_all()
    tool.open_key(3)
    tool.change_key(display.active("Entry "), "Changed 3")
    display.menu(tool.main, 20, 4)
    display.window("Warning")
    display.key("Return")
    tool.gone()
    expect("Changed 3" in [k["key"] for k in place.check("--all")["keys"]], "Yes did not save the change")


def windows(display, work):
    """Fifty entry windows at most; a rebuild closes them, and an end with windows and a prompt open is clean."""
    place = Place(display, work, "--files", 3, "--entries", 60)
    tool = place.inspect()
    tool.show_all()
    for count in range(1, 51):
        tool.open_key(2)
        wait("window %d" % count, lambda: len(display.windows("Entry ")) == count)
        display.xdotool("mousemove", "--window", tool.main, 400, tool.top + 300, "click", 5)
    tool.open_key(2)
    time.sleep(0.5 * SLOW)
    expect(len(display.windows("Entry ")) == 50, "there is a fifty-first entry window")
    tool.rebuild()
    display.gone("Entry ")
    tool.show_all()
    tool.open_key(1)
    entry = display.window("Entry ")
    display.menu(entry, 60, 1)
    display.window("Change key")
    tool.rebuild()
    display.gone("Change key")
    display.gone("Entry ")
    tool.show_all()
    tool.open_key(1)
    display.menu(display.window("Entry "), 60, 1)
    display.window("Change key")
    tool.leave()


def refusals(display, work):
    """What keeps the tool from starting is told in a box, and the start-up program does not come."""
    place = Place(display, work)
    shutil.rmtree(work / "config", ignore_errors=True)

    def refused(title, key, status):
        tool = display.start("txinspect")
        display.window(title)
        display.key(key)
        expect(tool.wait() == status, "wrong exit status after the box '%s'" % title)
        expect(not display.windows(START_TITLE), "the start-up program came")

    refused("Error", "Return", 0)
    expect(place.choose() == 0 and place.check("--no-lock")["problems"] == [], "could not choose the database")
    tool = place.inspect()
    log = place.log()
    refused("Error", "Return", 0)
    expect(place.log() == log, "the second one touched the log of the first")
    tool.leave()
    (place.database / "outside.xdb").touch()
    refused("Warning", "Escape", 255)
    expect(place.lock_is_free(), "a refusal kept the lock")
    (place.home / "Strains.dbs").write_text("[DIR]\n%s\n" % (place.directory / "nowhere"))
    refused("Error", "Return", 0)
    (place.home / "Strains.dbs").unlink()
    refused("Error", "Return", 0)


def starting(display, work):
    """The start-up program without a window: what it writes and what it refuses."""
    place = Place(display, work)
    run = display.run
    expect(place.choose() == 0, "choose")
    expect(run("txstart", "--add", "Other", place.database) == 0, "add")
    expect((place.home / "Other.dbs").read_text().startswith("[DIR]\n%s\n" % place.database), "settings file")
    for arguments in (["--add", "Other", place.database], ["--add", "Third", place.directory / "nowhere"],
                      ["--add", "a/b", place.database], ["--database", "nobody"], ["--home", work / "nowhere"]):
        expect(run("txstart", *arguments) == 8, "not refused: %s" % arguments)
    expect(run("txstart", "--add", "Other") == 16 and run("txstart", "--help") == 0, "usage")
    display.start("txstart")
    window = display.window(START_TITLE)
    display.activate(window)
    display.key("Return")  # inspects the current database
    Tool(display, place.name).leave()


SCENARIOS = (refusals, starting, solving, keys, windows)


def main():
    chosen = [s for s in SCENARIOS if not sys.argv[2:] or s.__name__ in sys.argv[2:]]
    work = pathlib.Path(tempfile.mkdtemp(prefix="gui-"))
    display = Display(work)
    try:
        for scenario in chosen:
            scenario(display, work)
            print("passed: " + scenario.__name__, flush=True)
    except AssertionError as failure:
        subprocess.run(["import", "-silent", "-window", "root", work / "failure.png"], env=display.environment)
        print("FAILED in %s: %s (see %s)" % (scenario.__name__, failure, work), flush=True)
        return 1
    finally:
        display.close()
    errors = (work / "stderr").read_text()
    if re.search("Sanitizer|runtime error", errors):
        print("FAILED: a sanitizer has spoken\n" + errors)
        return 1
    shutil.rmtree(work)
    print("%d passed, 0 failed" % len(chosen))
    return 0


if __name__ == "__main__":
    sys.exit(main())
