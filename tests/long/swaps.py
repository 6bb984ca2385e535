#!/usr/bin/env python3
"""Swaps names under a root that checks, repairs and restores the database of somebody who wants more: at each call on it
in turn a file, directory or marker gives way to a link that leads out. Nothing outside may change in any respect.
Usage: swaps.py [--build DIR] [--tries N] [--case WORD]; needs root"""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "disk"))
from place import *  # noqa: E402

BAD = ["--solve-all", "corrupt:1", "--solve-all", "side:1"]
LINK = "rm -f @ROOT/{0}; ln -s @ROOT/outside/{1} @ROOT/{0}"
SEQ = "mv @ROOT/db/seq @ROOT/db/moved; ln -s @ROOT/outside/seq @ROOT/db/seq"
RACES = {  # what is run, and what happens meanwhile; a restore takes back BAD
    "marker": (REPAIR, LINK.format("db/open_db.txf", "secret")),
    "announcement": (REPAIR, LINK.format("db/" + AT_WORK, "secret")),
    "data file": (REPAIR, LINK.format(DUPLICATE.join(["db/", ""]), "DUPL2.DBS")),
    "second name": (REPAIR, "ln -f @ROOT/outside/DUPL2.DBS @ROOT/db/" + DUPLICATE),
    "new file": (["--solve-all", "orphan:2", "--save"], LINK.format("db/DBASE/DBSF003.DBS", "made")),
    "directory of what goes": (BAD, SEQ),
    "made directory": (["--preen"], LINK.format("db/images", "seq").replace("rm -f", "rmdir")),
    "restored file": (["--restore", "@UNDO"], LINK.format("db/fprint/BAD.DEF", "secret")),
    "directory of what comes": (["--restore", "@UNDO"], SEQ),
    "planted undo file": ([*REPAIR, "--undo", "@ROOT/spool/mine.undo"], LINK.format("spool/mine.undo", "secret")),
    "foreign state directory": (BAD, "mv @ROOT/state/txinspect @ROOT/moved; ln -s @ROOT/outside @ROOT/state/txinspect"),
}


def prepare(work, words):
    place = new_place(os.path.join(work, "place"))
    outside = pathlib.Path(place.root, "outside")
    for name in ("seq/BAD.CNF", "fprint/BAD.DEF"):
        pathlib.Path(place.db, name).write_bytes(b"damaged")
    os.rmdir(os.path.join(place.db, "images"))
    give_away(place)
    if "@UNDO" in words:
        place.check(*BAD)
    outside.mkdir(0o700)
    subprocess.run(["cp", "-a", place.db + "/seq", place.db + "/" + DUPLICATE, outside], check=True)
    (outside / "secret").write_bytes(b"secret")
    os.makedirs(os.path.join(place.root, "spool"))
    return place


def attempt(fresh, number, words, calls, swap):
    place, call = fresh.copy(f"{fresh.root}-{number}"), 1 + number * 7919 % calls  # some from everywhere, or all
    outside = place.look(place.root + "/outside")
    words = [str(place.undo_files()[0]) if word == "@UNDO" else word for word in words]
    place.check(*words, calls={"PAUSE": call, "DO": swap.replace("@ROOT", place.root)})
    judge(place.look(place.root + "/outside") == outside, "changed outside at call", call)
    shutil.rmtree(place.root)


given, wrong = arguments(("--tries", 2000), ("--case", "")), 0
for name, (words, swap) in RACES.items():
    if given.case not in name:
        continue
    with tempfile.TemporaryDirectory(prefix="swaps-") as work:
        os.chmod(work, 0o755)
        fresh = prepare(work, words)
        once = fresh.copy(fresh.root + "-once")
        calls = len(once.listed(*[once.undo_files()[0] if word == "@UNDO" else word for word in words]))
        faults = list(attempts([(fresh, number, words, calls, swap) for number in range(given.tries)], attempt))
    print(f"{name:24} {calls:5} calls {given.tries:5} tries {len(faults):4} wrong {faults[:1] and faults[0][1]}", flush=True)
    wrong += len(faults)
sys.exit(1 if wrong else 0)
