#!/usr/bin/env python3
"""Cuts the power under saves, deletions, restores and the finishing of interrupted runs, and judges what the next run
makes of what is left on the disk.

Usage: powercut.py [--build DIR] [--states N] [--seed N] [--scenario WORD] [--forget WHAT]
  --states N       how many states of a disk are tried, default: 600; a full run has 6000
  --scenario WORD  only the runs of that name
  --forget WHAT    a disk that does not heed the syncs of "files" or of "directories": what the program is spared by them

docs/reliability.md tells what a disk keeps and what is judged.
"""
import copy
import threading

from place import *

HEAD = struct.Struct("<QQqQQ")
OFFSET = 1 << 50  # numbers of files of different runs are so far apart
State = collections.namedtuple("State", "mode owner group time")  # of a file; no time: nobody knows it


class Node:
    """A file, directory or link as it is on the disk, and what was done to it since its last sync."""

    def __init__(self, state, content=b"", names=None):
        self.state, self.content, self.names = state, content, dict(names or {})
        self.pending, self.restated, self.renamed = [], [], []

    def sync(self, with_state):
        if self.pending:
            self.content = kept_content(self.content, self.pending, len(self.pending), lambda *_: True)
            self.state = self.state._replace(time=None)
        self.pending = []
        if with_state:
            self.state = self.restated[-1] if self.restated else self.state
            for name, node in self.renamed:
                set_name(self.names, name, node)
            self.state = self.state._replace(time=None) if self.renamed and not self.restated else self.state
            self.restated, self.renamed = [], []


def set_name(names, name, node):
    if node:
        names[name] = node
    else:
        names.pop(name, None)


def kept_content(content, events, count, kept):
    """The content after the first events, of each of which only the pieces that are kept arrive."""
    content = bytearray(content)
    for number, (place, data) in enumerate(events[:count]):
        if data is None:
            if kept(number, 0):
                content[place:] = bytes(max(place - len(content), 0))
            continue
        for start in range(place - place % 512, place + len(data), 512):
            first, last = max(start, place), min(start + 512, place + len(data))
            if kept(number, start):
                content.extend(bytes(max(first - len(content), 0)))
                content[first:last] = data[first - place:last - place]
    return bytes(content)


class Disk:
    """All files of a place by their numbers, and the records of a run carried out on them one by one."""

    def __init__(self, place, shown):
        self.nodes, self.root = {}, shown(place.root)
        for directory, names, files in os.walk(place.root):
            for name in [".", *names, *files]:
                path = os.path.join(directory, name)
                info, number = os.lstat(path), shown(path)
                content = b"" if stat.S_ISDIR(info.st_mode) else os.fsencode(os.readlink(path)) if stat.S_ISLNK(
                    info.st_mode) else pathlib.Path(path).read_bytes()
                state = State(info.st_mode, info.st_uid, info.st_gid, info.st_mtime_ns)
                self.nodes.setdefault(number, Node(state, content))
                if name != ".":
                    self.nodes[shown(directory)].names[os.fsencode(name)] = number

    def take(self, kind, number, where, name, data):
        if kind in "CB":
            self.nodes[number] = Node(State(where, os.getuid(), os.getgid(), None), data)
        if kind in "CLU":
            holder, found = struct.unpack_from("<QQ", name)
            self.nodes[holder].renamed.append((name[16:], 0 if kind == "U" else found))
            self.nodes[holder].restated.clear()
        elif kind in "WT":
            self.nodes[number].pending.append((where, data if kind == "W" else None))
            self.nodes[number].restated.clear()
        elif kind == "M":
            self.nodes[number].restated.append(State(*struct.unpack("<4q", data)))
        elif kind in "SD" and given.forget != ("directories" if stat.S_ISDIR(self.nodes[number].state.mode) else "files"):
            self.nodes[number].sync(kind == "S")


class Cut:
    """One combination of what a disk keeps when the power goes."""

    def __init__(self, disk, ways):
        self.nodes, self.root = {}, disk.root
        for number, node in disk.nodes.items():
            self.nodes[number] = chance.choice(ways)(node, chance.choice([0.1, 0.5, 0.5, 0.9]))

    def lay_down(self, place, old_root):
        """Makes real files of it; the library will show them under the numbers that they had."""
        made = {}
        self.lay(place.root, self.root, old_root, place.root, made)
        place.calls = {"SHOWN": place.root + ".shown", "ADD": place.added}
        with open(place.root + ".shown", "w") as file:
            file.writelines(f"{os.lstat(path).st_ino} {number}\n" for number, path in made.items())
        return place

    def lay(self, path, number, old_root, new_root, made):
        state, content, names = self.nodes[number]
        if number in made:
            return os.link(made[number], path, follow_symlinks=False)
        made[number] = path
        if stat.S_ISDIR(state.mode):
            os.makedirs(path, exist_ok=True)
            for name, child in names.items():
                self.lay(os.path.join(path, os.fsdecode(name)), child, old_root, new_root, made)
        elif stat.S_ISLNK(state.mode):
            os.symlink(content.replace(os.fsencode(old_root), os.fsencode(new_root)), path)
        else:
            pathlib.Path(path).write_bytes(content)
        if os.geteuid() == 0:
            os.chown(path, state.owner, state.group, follow_symlinks=False)
        if not stat.S_ISLNK(state.mode):
            os.chmod(path, stat.S_IMODE(state.mode))
        if state.time is not None:
            os.utime(path, ns=(10**18, state.time), follow_symlinks=False)


def left(node, content, names, restated):
    """What is left of a node: its state, content and names."""
    changed = content != node.content or names != node.names
    state = node.state._replace(time=None) if changed else node.state
    return (restated[-1] if restated else state), content, dict(names)


def in_order(node, _, whole=False):
    """Up to a moment everything, as a journal does it."""
    moment = lambda events: len(events) if whole else chance.randint(0, len(events))
    names, count = dict(node.names), moment(node.pending)
    for name, found in node.renamed[:moment(node.renamed)]:
        set_name(names, name, found)
    restated = node.restated[:moment(node.restated)] if count == len(node.pending) else []
    return left(node, kept_content(node.content, node.pending, count, lambda *_: True), names, restated)


def everything(node, _):
    return in_order(node, _, True)


def torn(size, forward=False):
    """Any combination of pieces of writes; forward, each piece of the disk up to a moment of its own."""

    def way(node, share):
        bits, until = {}, {}

        def kept(number, start):
            if forward:
                return number < until.setdefault(start // size, chance.randint(0, len(node.pending)))
            return bits.setdefault((number, start // size), chance.random() < share)

        names, stopped = dict(node.names), set()
        for name, found in node.renamed:
            stopped |= {name} if chance.random() >= share else set()
            if name not in stopped:
                set_name(names, name, found)
        content = kept_content(node.content, node.pending, len(node.pending), kept)
        length = max([len(node.content), *(place + len(data) for place, data in node.pending if data is not None)])
        if not any(data is None for _, data in node.pending) and chance.random() < share / 2:
            content += bytes(length - len(content))  # the length arrives without the bytes
        return left(node, content, names, node.restated[:chance.randint(0, len(node.restated))])

    return way


WAYS = [lambda node, _: left(node, node.content, node.names, []), everything, in_order, torn(512), torn(4096), torn(1 << 40),
        torn(512, True), torn(4096, True)]


class Scenario:
    """A recorded run, the database before and after it, and what a restore from each undo file has to give."""
    runs = 0

    def __init__(self, name, place, words, before, restores, added, mixed, shown=lambda path: os.lstat(path).st_ino):
        """place is as it was when the run began, and before as it was when its changes began; restores gives for undo
        files that stand already the database that they bring back, added that of the one that the run makes."""
        self.name, self.place, self.mixed, self.added = name, place, mixed, added
        self.disk = Disk(place, shown)
        self.begun = copy.deepcopy(self.disk)
        self.before, self.known = before or place.contents(), {path.name: wanted for path, wanted in restores}
        log = place.root + ".log"
        self.status, _, said = place.check(*words, calls={"LOG": log})
        self.after = place.contents()
        self.events = list(read_records(log))
        os.remove(log)
        judge(self.after != self.before, name, "changes nothing:", said)

    def cuts(self, states):
        """Disks after some of the records, all of them where there are enough states."""
        every = range(len(self.events) + 1)
        weights = [1] + [1 if event[0] == "W" else 10 for event in self.events]  # writes are many and alike
        wanted = collections.Counter(chance.sample(every, min(states // 2, len(every))))
        wanted.update(chance.choices(every, weights, k=states - wanted.total()))
        for position in every:
            for _ in range(wanted[position]):
                yield position, Cut(self.disk, WAYS)
            if position < len(self.events):
                self.disk.take(*self.events[position])

    def new_place(self):
        Scenario.runs += 1
        place = Place(tempfile.mkdtemp(dir=work))
        place.added = Scenario.runs * OFFSET
        return place

    def attempt(self, number, position, cut):
        try:
            place = cut.lay_down(self.new_place(), self.place.root)
            self.judge_place(place, number)
            shutil.rmtree(place.root)
        except Fault as fault:
            raise Fault(f"after record {position}: {fault}")
        finally:
            room.release()

    def judge_place(self, place, turn):
        began, undo = place.contents(), [path for path in place.undo_files() if path.exists()]
        began.pop(AT_WORK, None)
        judge(set(self.known) <= {path.name for path in undo}, "an undo file that stood there is gone")
        begun = any(path.name not in self.known for path in undo) or self.added is None
        judge(begun or began == self.before, "changed without an undo file")
        status, document, said = place.check()
        now = place.contents()
        judge(now == began or "interrupted" in said, "changed without a word:", said)
        judge_contents(self.before, self.after, now, self.mixed)
        judge(self.mixed or now in (self.before, self.after), "some is as before, some is new")
        again = place.check(state=place.root + "/nothing")
        same = status & ~CHANGED == again.status and {**document, "status": again.status} == again.document
        judge(same, "a fresh check ends otherwise:", status, said, again)
        judge(place.contents() == now, "a check has changed something")
        if undo:
            path = undo[turn % len(undo)]
            wanted = bare(self.known.get(path.name, self.added))
            place.restore(path)
            judge(bare(place.look()) == wanted, "not restored", differences(bare(place.look()), wanted))


def bare(tree):
    """Of links the target alone, whose state no sync keeps."""
    return {name: entry.content if stat.S_ISLNK(entry.mode) else entry for name, entry in tree.items()}


def read_records(path):
    with open(path, "rb") as file:
        while head := file.read(HEAD.size):
            kind, number, where, name_size, size = HEAD.unpack(head)
            yield chr(kind), number, where, file.read(name_size), file.read(size)


SCENARIOS = {  # options, many keys, several groups of changes, each of which may be all that was done
    "save": (["--solve-all", "duplicate:2", "--save"], True, False),
    "elsewhere": (["--solve-all", "duplicate:2", "--save", "--undo", "@ROOT/other.undo"], False, False),
    "deletion": (["--solve-all", "empty:1", "--solve-all", "corrupt:1", "--solve-all", "side:1"], False, True),
    "preen": (["--preen", "--save"], False, True),
}


def make_place(name, many):
    """Beside damaged files entries under few keys, thousands of them or some, which a repair renames, the last one cut
    off behind its text."""
    place = Place(os.path.join(work, name))
    place.sample("--files", "1", "--entries", "2", "--types", "1", "--experiments", "1", "--records", "9", "--damage",
                 "orphans,empty-files,corrupt-files,side-files,missing-directories")
    os.mkdir(place.state)
    for i in range(4):
        keys = [b"key %d %s" % (n % 7, b"x" * (n % 43)) for n in range(1000 if many else 30)]
        content = oracle.dbs(keys)
        pathlib.Path(place.db, f"DBASE/F{i}.DBS").write_bytes(content[:len(content) - 25 * (i == 3)])
    place.decorate(random.Random(3), attributes=False)
    return place


def scenarios(name):
    """The run of that name, its restore, and what the next run does where it was cut off."""
    words, many, mixed = SCENARIOS[name]
    place = make_place(name, many)
    whole, old = place.look(), place.contents()
    first = Scenario(name, place, words, None, [], whole, mixed)
    yield first
    undo = place.undo_files()
    judge(len(undo) == 1 and not first.status & FAILED, name, "ends with", first.status, "and", len(undo), "undo files")
    again = Scenario(name + ", restored", place, ["--restore", undo[0]], None, [(undo[0], whole)], place.look(), mixed)
    judge(place.look() == whole, name, "is not brought back")
    yield again
    if not mixed:
        place, shown = half_done(first)
        yield Scenario(name + ", finished", place, [], old, [(path, whole) for path in place.undo_files()], None, mixed, shown)


def half_done(scenario):
    """The place where the power goes while the run writes keys, and the disk has some of them in pieces."""
    writes = [i for i, event in enumerate(scenario.events) if event[0] == "W"]
    for event in scenario.events[:writes[len(writes) // 2]]:
        scenario.begun.take(*event)
    place = Cut(scenario.begun, [torn(512)]).lay_down(scenario.new_place(), scenario.place.root)
    shown = dict(map(int, line.split()) for line in open(place.root + ".shown"))
    return place, lambda path: shown.get(os.lstat(path).st_ino, os.lstat(path).st_ino + place.added)


given = arguments(("--states", 600), ("--scenario", ""), ("--forget", None))
chance = random.Random(given.seed)
total = wrong = 0
room = threading.Semaphore(2 * os.cpu_count())
with tempfile.TemporaryDirectory(prefix="powercut-") as work:
    chosen = [name for name in SCENARIOS if name.startswith(given.scenario)]
    for scenario in (scenario for name in chosen for scenario in scenarios(name)):
        states = given.states // (2 * len(chosen) + sum(not SCENARIOS[name][2] for name in chosen))
        rows = ((number, position, cut) for number, (position, cut) in enumerate(scenario.cuts(states)) if room.acquire())
        faults = list(attempts(rows, scenario.attempt))
        print(f"{scenario.name:20} {len(scenario.events):5} records {states:5} states; {len(faults)} wrong", flush=True)
        for _, fault in faults[:3]:
            print("  " + fault)
        total, wrong = total + states, wrong + len(faults)
print(f"powercut: {total} states, {wrong} wrong (seed {given.seed})")
sys.exit(1 if wrong else 0)
