"""What the judges of the disk share: a database with a person's state directory and home, the programs run on it under the
library that sees their calls (calls.c), what stands there in every respect, and how two states of it may differ."""
import argparse
import collections
import contextlib
import concurrent.futures
import json
import os
import pathlib
import random
import re
import shutil
import signal
import stat
import struct
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "endtoend"))
import oracle  # noqa: E402
from oracle import bytes_of  # noqa: E402

AT_WORK = "changing_db.txf"  # stands in a database while it is being changed, and after an interruption
FIELD, CAPACITY = 69, 61
NOBODY, DUPLICATE, REPAIR = 65534, "DBASE/DUPL2.DBS", ["--preen", "--save"]
CHANGED, LEFT, FAILED = 1, 4, 8  # of which an exit status is the sum
Entry = collections.namedtuple("Entry", "mode owner group time attributes names content")
Outcome = collections.namedtuple("Outcome", "status document said")


class Fault(Exception):
    pass


def judge(truth, *what):
    if not truth:
        raise Fault(" ".join(map(str, what)))


def arguments(*rows):
    """The options of a judge, each with its default; --build is that of all, and sets where the programs are."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", default=HERE.parent.parent / "build/release")
    parser.add_argument("--seed", type=int, default=random.randrange(10**6))
    for name, default in rows:
        parser.add_argument(name, **({"action": "store_true"} if default is False else
                                     {"default": default, "type": str if default is None else type(default)}))
    given = parser.parse_args()
    Place.programs = pathlib.Path(given.build).resolve()
    linked = subprocess.run(["ldd", Place.programs / "txcheck"], capture_output=True, text=True, check=True).stdout
    Place.libraries = " ".join([*re.findall(r"=> (\S*libasan\S*)", linked), str(Place.programs / "tests/libcalls.so")])
    return given


class Place:
    """A database, a state directory and a home below one directory."""
    programs = libraries = None
    runtime = tempfile.TemporaryDirectory()  # of the person alone, else Qt makes its own, which stays

    def __init__(self, root):
        self.root = str(root)
        self.db, self.state, self.home = (os.path.join(root, name) for name in ("db", "state", "home"))
        self.calls = {}  # settings of the library for each run

    def run(self, program, *words, calls=None, user=None, state=None, **settings):
        """Without calls the program is run alone; otherwise they are settings of the library."""
        environment = {**os.environ, "LC_ALL": "C", "XDG_STATE_HOME": state or self.state, "XDG_CONFIG_HOME": self.home,
                       "XDG_RUNTIME_DIR": self.runtime.name, "HOME": self.home}
        calls = None if calls is None and not self.calls else {"BELOW": self.root, **self.calls, **(calls or {})}
        if calls is not None:
            environment.update({"CALLS_" + name: str(value).replace("@ROOT", self.root) for name, value in calls.items()},
                               LD_PRELOAD=self.libraries)
        wear = {} if user is None else {"user": user, "group": user, "extra_groups": []}
        file = self.programs / program
        if user is not None or "preexec_fn" in settings:  # to whom the directory of the programs may be closed
            file = shutil.copy(file, self.root)
        return subprocess.run([file, *[str(word).replace("@ROOT", self.root) for word in words]],
                              env=environment, cwd="/tmp", capture_output=True, **{"timeout": 120, **wear, **settings})

    def check(self, *words, **settings):
        """A run of txcheck: its status, its document or nothing, and what was said."""
        where = settings.pop("where", self.db)
        done = self.run("txcheck", "--json", *words, where, **settings)
        said = done.stderr.decode("utf-8", "replace")
        judge(done.returncode in range(CHANGED + LEFT + FAILED + 1), words, "ends with", done.returncode, said)
        document = json.loads(done.stdout.replace(os.fsencode(self.root), b"ROOT")) if done.stdout else None
        return Outcome(done.returncode, document, said)

    def listed(self, *words):
        """The calls of a run of txcheck, each with its path."""
        with tempfile.NamedTemporaryFile() as file:
            self.check(*words, calls={"LIST": file.name})
            return [line.decode("utf-8", "replace") for line in file.read().splitlines()]

    def sample(self, *words):
        os.makedirs(self.home, exist_ok=True)
        judge(self.run("txsample", *words, "--home", self.home, "--name", "Tried", self.db).returncode == 0, "no sample")

    def copy(self, root):
        """The same at another place; its home leads there."""
        subprocess.run(["cp", "-a", self.root, root], check=True)
        place = Place(root)
        for path in filter(os.path.isfile, pathlib.Path(place.home).rglob("*")):
            path.write_bytes(path.read_bytes().replace(os.fsencode(self.root), os.fsencode(place.root)))
        return place

    def undo_files(self):
        return sorted(pathlib.Path(self.state, "txinspect").glob("*.undo"))

    def restore(self, undo, *words, **settings):
        """Brings the database back, and gives the undo file of that."""
        known = self.undo_files()
        status, _, said = self.check("--restore", undo, *words, **settings)
        judge(status == 0, "the restore ends with", status, said)
        return next((path for path in self.undo_files() if path not in known), None)

    def contents(self):
        return contents(self.look())

    def look(self, root=None):
        """Each entry below with all that is known of it; the content of a link is its target, of a directory nothing."""
        found, names, root = {}, collections.defaultdict(list), root or self.db
        for path in [root, *(os.path.join(at, name) for at, below, files in os.walk(root) for name in below + files)]:
            info, key = os.lstat(path), os.path.relpath(path, root)
            if not stat.S_ISDIR(info.st_mode):
                names[info.st_ino].append(key)
            attributes = []
            with contextlib.suppress(OSError):  # of a file system that has none
                attributes = [(name, os.getxattr(path, name, follow_symlinks=False)) for name in sorted(
                    os.listxattr(path, follow_symlinks=False))]
            content = (os.readlink(path) if stat.S_ISLNK(info.st_mode) else
                       pathlib.Path(path).read_bytes() if stat.S_ISREG(info.st_mode) else None)
            found[key] = Entry(info.st_mode, info.st_uid, info.st_gid, info.st_mtime_ns, attributes, names[info.st_ino], content)
        for entry in found.values():
            entry.names.sort()
        return found

    def decorate(self, chance, share=0.1, attributes=True):
        """Owners, permissions and times of all, of some a second name, a symbolic link and extended attributes."""
        pathlib.Path(self.db, "open_db.txf").touch()
        entries = sorted(os.path.join(at, name) for at, below, files in os.walk(self.db) for name in below + files)
        for path in filter(os.path.isfile, entries):
            if os.path.islink(path) or path.endswith("open_db.txf") or chance.random() >= share:
                continue
            if attributes and chance.random() < 0.7:  # a second name, which is found before the file's or after it
                os.link(path, os.path.join(os.path.dirname(path), chance.choice("_z") + os.path.basename(path)))
            else:
                os.rename(path, path + ".old")
                os.symlink(os.path.basename(path) + ".old", path)
        entries = sorted(os.path.join(at, name) for at, below, files in os.walk(self.db) for name in below + files)
        for path in [*reversed(entries), self.db]:
            if os.path.islink(path):
                continue
            if os.geteuid() == 0:
                os.chown(path, chance.choice([0, 0, 1001]), chance.choice([0, 1002]))
            os.chmod(path, chance.choice([0o700, 0o755, 0o2775] if os.path.isdir(path) else [0o600, 0o644, 0o755]))
            if attributes and chance.random() < 0.3:
                os.setxattr(path, "user.note", chance.randbytes(9))
            os.utime(path, ns=(10**18, chance.randrange(2 * 10**18)))


def contents(tree):
    return {name: entry.content if name != AT_WORK else "it holds the time" for name, entry in tree.items()}


def differences(found, wanted):
    return [str((name, found.get(name), wanted.get(name)))[:400] for name in {*found, *wanted}
            if found.get(name) != wanted.get(name)][:2]


def changed_fields(old, new):
    """The starts of the key fields in which two contents of a file differ, the new one perhaps longer."""
    starts = set()
    for at in (i for i in range(len(new)) if old[i:i + 1] != new[i:i + 1]):
        if not any(start in starts for start in range(at - FIELD + 1, at + 1)):
            near = [s for s in range(max(at - FIELD + 1, 0), at + 1) if old[s + 4:s + 8] == struct.pack("<i", CAPACITY)]
            judge(near, "a change at", at, "in no key field")
            starts.add(near[-1])
    return starts


def judge_fields(name, old, new, now, mixed=True):
    """Each key field is as before or as after, all the same unless mixed, and all else as before."""
    judge(len(now) in (len(old), len(new)), name, "has another length")
    rest = bytearray(now)
    for at in changed_fields(old, new):
        piece = now[at:at + FIELD]
        judge(piece in (old[at:at + FIELD], new[at:at + FIELD]), name, "at", at, "is torn")
        judge(mixed or piece == new[at:at + FIELD], name, "at", at, "is old, others are new")
        rest[at:at + FIELD] = old[at:at + FIELD]
    judge(bytes(rest[:len(old)]) == old, name, "has changed beside its keys")


def judge_contents(before, after, now, mixed=True):
    """Each thing is as before or as after: nothing else is there, nothing lost, no field torn."""
    absent = object()
    for name in {*before, *after, *now}:
        old, new, found = (tree.get(name, absent) for tree in (before, after, now))
        if found not in (old, new):
            judge(all(isinstance(content, bytes) for content in (old, new, found)), name, "is lost, another or left over")
            judge_fields(name, old, new, found, mixed)


def attempts(rows, attempt):
    """Makes each attempt, some at once; a row and its fault of each that has one."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for row, job in [(row, pool.submit(attempt, *row)) for row in rows]:
            try:
                job.result()
            except Exception as fault:  # the next one is still worth a look
                yield row, f"{type(fault).__name__}: {str(fault)[:700]}"


CASES = {}


def case(*rows, needs_root=False):
    """Each row is the name of a case and what its function gets beside the place."""

    def add(function):
        for row in rows or [()]:
            CASES[" ".join([function.__name__.replace("_", " "), *map(str, row[:2])])] = function, row, needs_root
        return function

    return add


def new_place(root):
    place = Place(root)
    place.sample("--files", "2", "--entries", "8", "--types", "1", "--experiments", "1", "--records", "8", "--damage",
                 "duplicates,orphans")
    os.makedirs(place.state)
    os.chmod(os.path.dirname(root), 0o755)
    return place


def give_away(place):
    for at, below, files in os.walk(place.root):
        for name in [".", *below, *files]:
            os.chown(os.path.join(at, name), NOBODY, NOBODY)


def try_cases():
    given = arguments(("--case", ""))
    signal.signal(signal.SIGINT, signal.default_int_handler)  # which a shell lets its background jobs ignore,
    signal.signal(signal.SIGHUP, signal.SIG_DFL)  # and nohup
    wrong = 0
    for name in [name for name in CASES if given.case in name]:
        function, row, needs_root = CASES[name]
        if needs_root and os.geteuid() != 0:
            print(f"left out, it needs root: {name}")
            continue
        with tempfile.TemporaryDirectory() as work:
            faults = [fault for _, fault in attempts([(new_place(os.path.join(work, "place")), *row)], function)]
        wrong += bool(faults)
        if faults or given.case:
            print(f"{name}: {faults[0] if faults else 'good'}", flush=True)
    print(f"{len(CASES)} cases, {wrong} wrong")
    return 1 if wrong else 0
