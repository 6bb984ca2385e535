#!/usr/bin/env python3
"""Makes every call of the C library on a database or the state directory fail, one run for each, and judges what it did.

Usage: faults.py [--build DIR] [--step N] [--scenario WORD] [--kind WORD] [--sectors]
  --step N         only each N-th point, for a quick look
  --scenario WORD  only the scenarios that begin so           --kind WORD    only the kinds of failure that begin so
  --sectors        instead of calls each sector of each file, unreadable in turn
"""
import errno
import itertools

from place import *

SMALL = "--files 1 --entries 2 --types 1 --experiments 1 --records 2".split()
LARGE = "--files 1 --entries 40 --types 1 --experiments 1 --records 40".split()  # of several sectors
DAMAGE = {"sound": "none", "cut": "duplicates,blank-keys,orphans,truncated",
          "keys": "duplicates,experiment-duplicates,blank-keys,orphans,missing-directories",
          "files": "empty-files,corrupt-files,side-files,missing-directories"}
DELETE, PREEN = ["--solve-all", "corrupt:1", "--solve-all", "side:1"], ["--preen", "--save"]
# Name, sample, options; what was done before, and how far that came, as a share of its calls.
SCENARIOS = [
    ("check", "sound", []),
    ("report", "keys", ["--report", "@ROOT/home/page.html"]),
    ("log", "sound", ["--log", "@ROOT/home"]),
    ("preen", "keys", PREEN),
    ("empty", "files", ["--solve-all", "empty:1"]),
    ("remove-duplicates", "keys", ["--solve-all", "duplicate:1", "--save"]),
    ("remove-orphans", "keys", ["--solve-all", "orphan:1", "--save"]),
    ("delete", "files", DELETE),
    ("change-key", "keys", ["--change-key", "FD00002-2", "1", "1", "another", "--save"]),
    ("rename", "keys", ["--rename", "FD00002-2", "a new one", "--save"]),
    ("preen-cut", "cut", PREEN),
    ("elsewhere", "keys", [*PREEN, "--undo", "@ROOT/first"]),
    ("restore", "files", ["--restore", "@ROOT/first"], [*PREEN, *DELETE, "--undo", "@ROOT/first"], None),
    ("restore-keys", "keys", ["--restore", "@ROOT/first"], [*PREEN, "--undo", "@ROOT/first"], None),
    ("interrupted", "keys", PREEN, PREEN, 0.8),
    ("interrupted-check", "keys", [], PREEN, 0.97),
    ("interrupted-files", "files", ["--preen", *DELETE], ["--preen", *DELETE], 0.9),
    ("desktop", "keys", ["duplicate:2", "save"]),  # words of desktop.cpp
]
BY_NAME = "^(open|openat|tmpfile|opendir|l?stat|fstatat|readlink(at)?|mkdir(at)?|unlink(at)?|link(at)?|rename[a-z0-9]*) "
WRITES = "^(p?write|tmpfile|mkdir(at)?|symlink(at)?|link(at)?|f?truncate|fallocate) "
# Word, setting of the library, value of errno, calls among which it counts.
KINDS = [
    ("fails", "AT", errno.EIO, "^"), ("all-fail", "FROM", errno.EIO, "^"), ("half", "SHORT", 0, "^p?(read|write) "),
    ("database-fails", "FROM", errno.EIO, " @ROOT/db"), ("state-fails", "FROM", errno.EIO, " @ROOT/state"),
    ("full", "FROM", errno.ENOSPC, WRITES), ("denied", "AT", errno.EACCES, BY_NAME), ("gone", "AT", errno.ENOENT, BY_NAME),
    ("stale", "FROM", errno.ESTALE, "^"), ("signal", "AT", errno.EINTR, "^(open|openat|p?read|p?write|f(data)?sync) "),
    ("end", "END", 0, "^p?read .*/db"),
    ("touched", "PAUSE", 0, "^(open|openat|p?read|fstat|f?statat?) .*/db/.*/[^#]*$"),
]


def said(document):
    """Without the rows at which problems stood and the order of their solutions, which a thing that could not be looked at in
    one pass and could be in the next moves."""
    if isinstance(document, dict) and "changes" in document:
        for step in document["solved"]:
            del step["row"]
        document["solved"].sort(key=str)
        document["changes"].sort(key=str)
    return document


def problems_in(document):
    return {problem["id"] if isinstance(problem, dict) else problem for problem in document["problems"]}


class Scenario:
    """One run, made again and again in directories of its own."""

    def __init__(self, work, sectors, name, sample, words, earlier=None, share=None):
        self.name, self.words, self.earlier, self.work, self.cut = name, words, earlier, work, {}
        self.fresh, self.numbers = Place(os.path.join(work, f"{name}-{'fresh':>9}")), itertools.count()
        self.fresh.sample(*(LARGE if sectors else SMALL), "--damage", DAMAGE[sample])
        self.fresh.run("txstart", "--home", self.fresh.home, "--database", "Tried")
        self.fresh.decorate(random.Random(5), 0.3)
        if share is not None:
            self.cut = {"KILL": int(share * len(self.copy().listed(*earlier)))}
        place = self.place(None)
        self.before = place.look()
        self.known = len(place.undo_files())
        self.plain = self.start(place, {"LIST": place.root + ".calls"})
        self.after = place.look()
        judge(AT_WORK not in self.after, "a change is left at work")
        judge(not name.startswith("restore") or self.after == self.fresh.look(), "not restored without a fault")
        self.calls = pathlib.Path(place.root + ".calls").read_text("utf-8", "replace").replace(place.root, "@ROOT").splitlines()

    def copy(self):
        return self.fresh.copy(os.path.join(self.work, f"{self.name}-{next(self.numbers):>09}"))

    def place(self, before):
        """A copy in which all is done that was done earlier, the same each time: on a slow machine, which looks into
        directories at other moments, an interruption can come at another point, and is tried again."""
        for _ in range(5):
            place = self.copy()
            if self.earlier:
                place.run("txcheck", "--json", *self.earlier, place.db, calls=self.cut)
            if before is None or place.contents() == contents(before):
                return place
            shutil.rmtree(place.root)
        raise Fault("the interruption came at another point five times")

    def start(self, place, calls, words=None):
        words = self.words if words is None else words
        if self.name != "desktop":
            outcome = place.check(*words, calls=calls)
            return outcome._replace(document=said(outcome.document))
        done = place.run("tests/desktopfaults", *words, calls={"ONLY": " @ROOT/db", **calls})
        judge(done.returncode in range(16), "the desktop tool ends with", done.returncode, done.stderr)
        refused = not done.stdout and done.stderr  # the start, which ends with status 0
        return Outcome(8 if refused else done.returncode, json.loads(done.stdout or "{}"), done.stderr.decode("utf-8", "replace"))

    def points(self, kinds, sectors):
        """Each as a name and settings of the library."""
        if sectors:
            for name, entry in sorted(self.before.items()):
                for sector in range((len(entry.content) + 511) // 512 if isinstance(entry.content, bytes) else 0):
                    yield f"{name}:{sector}", {"SECTOR": f"@ROOT/db/{name}:{sector}"}
        for word, setting, error, pattern in [] if sectors else kinds:
            chosen = [call for call in self.calls if re.search(pattern, call)]
            for number, call in enumerate(chosen, 1):
                yield f"{word} {number} {call}", {setting: number, "ERROR": error, "ONLY": pattern, "DO": 'touch "$CALLS_PATH"'}

    def attempt(self, name, calls, number):
        place = self.place(self.before)
        try:
            found, tree = self.start(place, calls), place.look()
            touched = name.startswith("touched")
            self.judge_run(found, tree, touched)
            if tree != self.after and not touched:
                (self.judge_next if number % 2 else self.judge_undo)(place)
        finally:
            shutil.rmtree(place.root)

    def judge_run(self, found, tree, touched):
        before, after, now = map(contents, (self.before, self.after, tree))
        now = {name: content for name, content in now.items() if content != b"" or not touched or before.get(name) == b""}
        made_by_touch = {*tree} - {*now}
        if found.status & FAILED:
            now.pop(AT_WORK, None)
            self.judge_new(found, before, now)
        judge_contents(before, after, now)
        if found.status & FAILED or made_by_touch:  # which may be a problem of its own
            return judge(found.said or self.plain.status & FAILED or not found.status & FAILED, "status", found.status, "without a word")
        # A restore answers for what it brings back, not for what the check after it can't read.
        same = found.status == self.plain.status and (self.name.startswith("restore") or found.document == self.plain.document)
        judge(same, "status", found.status, "with another document than without the fault")
        judge(now == after, "status", found.status, ", and not all was done")
        restored = self.name.startswith("restore") and not touched
        judge(not restored or tree == self.after, "not all came back", differences(tree, self.after))

    def judge_new(self, found, before, now):
        """Where a solution could not do all, a new file has entries for the keys that are left; it is sound all the same."""
        for name in {*now} - {*before} if any(step["result"] == 0 for step in (found.document or {}).get("solved", [])) else []:
            keys = [now[name][at + 8:at + 8 + now[name][at]] for at in range(41, len(now[name] or b""), FIELD)]
            if name.endswith(".DBS") and now[name] == oracle.dbs(keys) and len({*keys}) == len(keys):
                now[name] = contents(self.after).get(name, now[name])

    def judge_next(self, place):
        """Keys may get other numbers: of two blank keys of which one was written the other is no problem any more."""
        once = self.name in ("change-key", "rename")  # what can't be done again where a part was done
        again = self.start(place, {}, [] if once else self.words[:-2] if "--undo" in self.words else None)
        judge(not again.status & FAILED & ~self.plain.status, "the next run ends with", again.status, again.said)
        judge(AT_WORK not in place.look(), "a change is left at work")
        judge(once or problems_in(again.document) <= problems_in(self.plain.document), "the next run leaves", again.document)
        restored = self.name.startswith("restore")
        judge(not restored or place.look() == self.after, "the next restore does not bring all back")

    def judge_undo(self, place):
        """The undo files of the run bring back what was there, the last first, after a check has seen to what was cut off."""
        place.check()
        taken_back = self.earlier and not self.cut  # a restore, after which as much stands there as before it
        split = False  # of names of one file one may have gone alone, which the restore says
        given = [place.root + "/first"] if self.name == "elsewhere" else []  # to which no link may have been made
        for undo in reversed(place.undo_files()[self.known if taken_back else 0:] or [*filter(os.path.exists, given)]):
            status, _, said = place.check("--restore", undo)
            split = split or "it had more names" in said
            judge(status == 0 or split, "the restore ends with", status, said)
        found, wanted = place.look(), self.before if taken_back else self.fresh.look()
        found, wanted = (contents(found), contents(wanted)) if taken_back or split else (found, wanted)
        judge(found == wanted, "not brought back", differences(found, wanted))


def main():
    given = arguments(("--step", 1), ("--scenario", ""), ("--kind", ""), ("--sectors", False))
    kinds = [kind for kind in KINDS if kind[0].startswith(given.kind)]
    total = wrong = 0
    for row in [row for row in SCENARIOS if row[0].startswith(given.scenario)]:
        with tempfile.TemporaryDirectory() as work:
            scenario = Scenario(work, given.sectors, *row)
            points = list(scenario.points(kinds, given.sectors))
            points = points[given.seed % given.step::given.step]
            faults = list(attempts([(*point, number) for number, point in enumerate(points)], scenario.attempt))
        for (name, *_), fault in faults[:5]:
            print(f"  {row[0]} {name}: {fault}")
        print(f"{row[0]:18} status {scenario.plain.status} {len(scenario.calls):6} calls {len(points):7} points "
              f"{len(faults):5} wrong", flush=True)
        total, wrong = total + len(points), wrong + len(faults)
    print(f"faults: {total} points, {wrong} wrong (seed {given.seed})")
    return 1 if wrong else 0


sys.exit(main())
