#!/usr/bin/env python3
"""Plans, does and undoes random sequences of repairs and key changes on random databases, by txcheck and by the desktop tool.

Usage: undone.py [--build DIR] [--trees N] [--desktop N] [--seed N]
  --trees N      databases for txcheck, default: 60; a full run has 400
  --desktop N    databases for the desktop tool without a screen, default: 12; a full run has 60
  --seed N       of the first database; default: by chance
"""
from place import *

given = arguments(("--trees", 60), ("--desktop", 12))
sys.argv = ["undone", str(Place.programs)]
import trees  # noqa: E402

KINDS = {"empty": 1, "duplicate": 2, "blank": 2, "orphan": 2, "missing": 1, "corrupt": 1, "side": 1}  # and their solutions
DAMAGES = ["all", "duplicates,orphans,blank-keys", "empty-files,corrupt-files,side-files,missing-directories",
           "experiment-duplicates,odd-bytes,case-variants"]


class Random(Place):
    """A random database."""

    def __init__(self, work, seed):
        super().__init__(work)
        self.chance = random.Random(seed)
        os.mkdir(self.home)
        if seed % 2:
            trees.Tree(self.db, seed)
            pathlib.Path(self.home, "Tried.dbs").write_text(f"[DIR]\n{self.db}\n[BACKCOL]\n192\n192\n192\n")
        else:
            self.sample("--seed", str(seed), "--files", "2", "--entries", "12", "--types", "2", "--experiments", "2",
                        "--records", "9", "--damage", self.chance.choice(DAMAGES))
        self.decorate(self.chance)

    def solution(self):
        kind = self.chance.choice(list(KINDS))
        return "%s:%d" % (kind, self.chance.randint(1, KINDS[kind]))

    def key_changes(self, document):
        """Some keys of the document with others, taken or not."""
        keys = [bytes_of(entry, "key") for entry in document["keys"] if entry["counts"]]
        keys = [key for key in keys if key]
        for key in self.chance.sample(keys, min(len(keys), self.chance.choice([0, 0, 1]))):
            new = self.chance.choice([b"new", b"N\xc3\xa4he", b"\xff", key + b"2", *keys])[:60]
            words = ["hex:" + key.hex(), "hex:" + new.hex()]
            if self.chance.random() < 0.5:
                yield from ["--rename", *words]
            else:
                counts = next(entry["counts"] for entry in document["keys"] if bytes_of(entry, "key") == key)
                kind = next((i for i, count in enumerate(counts) if count), 0)
                yield from ["--yes", "--change-key", words[0], str(kind), "1", words[1]]

    def repairs(self):
        _, document, _ = self.check("--all")
        words = [word for _ in range(self.chance.choice([0, 1, 2])) for word in ("--solve-all", self.solution())]
        words += ["--preen"] * (self.chance.random() < 0.5)
        return [*words, *(self.key_changes(document) if document else [])] or ["--preen"]


def as_planned(before, changes):
    """The contents that the changes of a document give."""
    tree = contents(before)
    for change in changes:
        kind = next(iter(change))
        name = os.fsdecode(bytes_of(change, kind))
        if kind == "deleted":
            del tree[name]
        elif kind == "made":
            judge(name not in tree, "made where something stands:", name)
            tree[name] = "made"
        else:
            while isinstance(tree[name], str):
                name = os.path.normpath(os.path.join(os.path.dirname(name), tree[name]))
            at, data = change["offset"], tree[name]
            judge(data[at + 8:].startswith(bytes_of(change, "old")), "another key than the plan says stands at", at, "in", name)
            data = data[:at] + oracle.field(bytes_of(change, "new")) + data[at + FIELD:]
            for other in before[name].names:
                tree[other] = data
    return tree


def try_plan(place, words):
    """What was done by a run after its plan, and the state before it."""
    state = lambda: place.look(place.state) if os.path.exists(place.state) else None
    before, kept = place.look(), state()
    status, plan, said = place.check("--plan", *words)
    judge(place.look() == before, "a plan has changed", differences(place.look(), before))
    judge(state() == kept, "a plan has changed the state directory")
    status, document, said = place.check(*words, "--save")
    judge((plan is None) == (document is None), "only one of plan and run has a document")
    if plan is None:
        return before, []
    judge(plan["changes"] == document["changes"], "planned", plan["changes"], "and done", document["changes"], said)
    judge(plan["solved"] == document["solved"], "planned", plan["solved"], "and solved", document["solved"])
    now, wanted = place.contents(), as_planned(before, plan["changes"])
    judge({*now} == {*wanted}, "planned names", {*now} ^ {*wanted})
    wrong = [name for name in now if wanted[name] not in ("made", now[name])]
    judge(not wrong, "other bytes than the plan tells in", wrong)
    beside = lambda tree, name: tree[name][:3] + tuple(tree[name].attributes)
    after = place.look()
    wrong = [name for name in now if name in before and beside(before, name) != beside(after, name)]
    judge(not wrong, "other owners, permissions or attributes of", wrong)
    return before, document["changes"]


def undo_all(place, done):
    """Takes back the runs, of each of which the undo file and the state before is given, the last first."""
    after, own = place.look(), None
    for undo, before in reversed(done):
        own = own or place.restore(undo)
        judge(own is not None, "a restore without an undo file of its own")
        judge(place.look() == before, "not restored", differences(place.look(), before))
        if undo is done[-1][0]:
            again = place.restore(own)
            judge(place.look() == after, "the restore is not taken back", differences(place.look(), after))
            place.restore(again)
        own = None
    judge(place.look() == done[0][1], "not restored", differences(place.look(), done[0][1]))


def by_txcheck(seed, tried):
    with tempfile.TemporaryDirectory(prefix="undone-") as work:
        place, done = Random(work, seed), []
        for _ in range(place.chance.randint(1, 4)):
            known = place.undo_files()
            before, changes = try_plan(place, place.repairs())
            made = [path for path in place.undo_files() if path not in known]
            judge(len(made) == (1 if changes else 0), len(changes), "changes and", len(made), "undo files")
            done += [(undo, before) for undo in made]
            tried.append(len(changes))
        if done:
            undo_all(place, done)


def by_desktop(seed, tried):
    with tempfile.TemporaryDirectory(prefix="undone-") as work:
        place = Random(work, seed)
        place.run("txstart", "--home", place.home, "--database", "Tried")
        before, words = place.look(), [place.solution() for _ in range(place.chance.randint(1, 5))]
        words.insert(place.chance.randint(0, len(words)), "save")
        ended = place.run("tests/desktopfaults", *words, "save")
        judge(ended.returncode in range(1, 14) and ended.stdout, words, "ends with", ended.returncode, ended.stderr)
        undo = place.undo_files()
        judge(len(undo) == (1 if place.look() != before else 0), words, "made", len(undo), "undo files")
        tried.append(len(undo))
        if undo:
            undo_all(place, [(undo[0], before)])


def main():
    wrong = 0
    for attempt, number in ((by_txcheck, given.trees), (by_desktop, given.desktop)):
        tried = []
        faults = list(attempts([(seed, tried) for seed in range(given.seed, given.seed + number)], attempt))
        for (seed, _), fault in faults[:5]:
            print(f"undone: {attempt.__name__} {seed}: {fault}")
        print(f"undone: {number} databases {attempt.__name__}, {len(tried)} runs, {sum(tried)} changes or undo files; "
              f"{len(faults)} wrong (seed {given.seed})", flush=True)
        wrong += len(faults)
    return 1 if wrong else 0


sys.exit(main())
