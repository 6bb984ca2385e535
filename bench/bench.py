"""Compares the steps of a run with other programs over the same data, pair by pair, and prints a table: the median
ratio, its spread (the width of the middle half of the pairs), the goal, and whether it is met.
Where the spread is larger than the distance to the goal the machine is too noisy, and nothing is judged.
What takes no peer is a share of its goal: instructions, system calls, memory."""
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile
import time

PROGRAMS = pathlib.Path(sys.argv[1]).resolve()
FULL = "--full" in sys.argv[2:]
PAIRS = 7
FRAME = 0.016
STYLES = ("ordered", "shuffled", "prefixed")
SORT = "LC_ALL=C sort -f --parallel=1 {keys} | uniq -Di"
CAT = "find {tree} -type f -print0 | xargs -0 cat"
SQL_TABLE = """CREATE TABLE k(key TEXT);
.mode ascii
.separator "\\001" "\\n"
.import {keys} k
CREATE INDEX i ON k(key COLLATE NOCASE);
"""
SQL_COUNT = "SELECT count(*) FROM (SELECT 1 FROM k GROUP BY key COLLATE NOCASE HAVING count(*) > 1);"
TABLE = "{:<60} {:<30} {:>6} {:>6} {:>5}  {}"
rows = []


def shell(command):
    start = time.perf_counter()
    subprocess.run(["bash", "-c", command], check=True, stdout=subprocess.DEVNULL)
    return time.perf_counter() - start


def steps(*arguments, program="bench_steps"):
    """The seconds that each step has printed."""
    done = subprocess.run([PROGRAMS / "bench" / program, *map(str, arguments)], check=True, capture_output=True, text=True)
    return {name: float(seconds) for name, seconds in (line.split() for line in done.stdout.splitlines())}


def sample(tree, *options):
    subprocess.run([PROGRAMS / "txsample", *map(str, options), tree], check=True, stdout=subprocess.DEVNULL)
    return tree


def judge(ratios, goal):
    middle = statistics.median(ratios)
    low, _, high = statistics.quantiles(ratios, n=4) if len(ratios) > 1 else (middle,) * 3
    if goal is None:
        return middle, high - low, ""
    if high - low > abs(goal - middle):
        return middle, high - low, "too noisy"
    return middle, high - low, "met" if middle <= goal else "not met"


def row(figure, peer, ratios, goal):
    middle, spread, verdict = judge(ratios, goal)
    rows.append((figure, peer, middle, spread, goal, verdict))
    print(TABLE.format(figure, peer, f"{middle:.2f}", f"{spread:.2f}", goal if goal is not None else "", verdict), flush=True)


def compare(figure, peer, ours, others, goal, pairs=PAIRS):
    """One kind of figure: two functions that give seconds, called in turn."""
    row(figure, peer, [ours() / others() for _ in range(pairs)], goal)


def sqlite(script):
    start = time.perf_counter()
    subprocess.run(["sqlite3", "-batch", ":memory:"], input=script, check=True, stdout=subprocess.DEVNULL, text=True)
    return time.perf_counter() - start


def measure_tree(work, label, tree, records, pairs=PAIRS):
    """Load, analysis and a second analysis; the seconds of a record in each run."""
    keys = work / "keys"
    runs, cats, sorts, tables = [], [], [], []
    for _ in range(pairs):
        runs.append(steps("load", tree, keys))
        cats.append(shell(CAT.format(tree=tree)))
        sorts.append(shell(SORT.format(keys=keys)))
        tables.append(sqlite(SQL_TABLE.format(keys=keys) + SQL_COUNT))
    row(f"load, {label}", "cat", [run["load"] / cat for run, cat in zip(runs, cats)], 1.3 if records < 10**6 else 1.5)
    row(f"analysis, {label}", "sort -f | uniq -Di", [run["analysis"] / other for run, other in zip(runs, sorts)], 0.5)
    row(f"analysis, {label}", "sqlite3", [run["analysis"] / other for run, other in zip(runs, tables)], 0.2)
    row(f"second analysis, {label}", "the first", [run["again"] / run["analysis"] for run in runs], 1)
    row(f"analysis where no key has changed, {label}", "the first", [run["looks"] / run["analysis"] for run in runs], 0.05)
    return [(run["load"] + run["analysis"]) / records for run in runs]


def fresh(path):
    subprocess.run(["rm", "-rf", path], check=True)
    return path


def limit(figure, found, goal, unit=""):
    row(figure, f"{goal:,}{unit}", [found / goal], 1)


def instructions(program, *arguments, function=None):
    """What a program takes, or a function of it with all that it calls."""
    done = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
                           *([f"--toggle-collect={function}"] if function else []), PROGRAMS / program, *map(str, arguments)],
                          capture_output=True, text=True)
    return int(re.search(r"Collected : (\d+)", done.stderr)[1])


def used(*arguments):
    """The seconds of the processor, and the MB of memory at its height, of a run of txcheck."""
    started = subprocess.Popen([PROGRAMS / "txcheck", *map(str, arguments)], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    taken = os.wait4(started.pid, 0)[2]
    return taken.ru_utime + taken.ru_stime, taken.ru_maxrss / 1024


def calls(*arguments, which="all"):
    """The system calls of a run of txcheck."""
    with tempfile.NamedTemporaryFile() as lines:
        subprocess.run(["strace", "-qq", "-o", lines.name, "-e", f"trace={which}", PROGRAMS / "txcheck", *map(str, arguments)],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return sum(1 for _ in lines)


def measure_instructions(work):
    """Of which a busy machine makes no more."""
    load, tree, keys = "TSXdatabase::readlists(char const*)", work / "shuffled55", 55000
    limit("load, 55,000 shuffled, instructions", instructions("bench/bench_steps", "load", tree, work / "keys", function=load), 40 * 10**6)
    one, many = [instructions("bench/bench_steps", "load", sample(work / f"types{types}", "--files", 40, "--entries", 1000,
                              "--experiments", 40, "--records", 1000, "--types", types), work / "keys", function=load)
                 for types in (1, 40)]
    row("load, 200,000 records with 200 types, instructions", "with 5 types", [many / one], 1.2)
    plain = instructions("txcheck", "--no-lock", tree)
    for options, goal in ((["--all"], 2000), (["--json", "--all"], 3000)):
        limit(f"{' '.join(options)}, instructions a key", (instructions("txcheck", "--no-lock", *options, tree) - plain) / keys, goal)
    made = instructions("bench/bench_steps", "repairs", work / "empty", 100000, function="TSXdatabase::createkeys()")
    limit("a key for a blank one, of 100,000, instructions", made / 100000, 1500)


def measure_processor(work):
    """What the processor does for steps that a busy disk disturbs, the least of five."""
    for style in ("shuffled", "ordered"):
        found = min(steps("load", work / f"{style}550", work / "keys")["load-processor"] for _ in range(5))
        limit(f"load, 550,000 {style}, seconds of the processor", found, 0.05)


def bare(tree):
    """A sound tree without a data file."""
    return sample(fresh(tree), "--files", 0, "--experiments", 0)


def damaged(tree, count, name):
    """The tree with so many damaged files of that name."""
    for number in range(count):
        (tree / name.format(number)).write_bytes(b"damaged")
    return tree


def measure_files(work):
    """What many files, and many problems, take."""
    def small(files):
        return sample(fresh(work / f"small{files}"), "--files", files, "--entries", 1, "--experiments", 1)

    limit("system calls for a small file", (calls("--no-lock", small(2000)) - calls("--no-lock", small(1000))) // 1000, 6)
    side = "seq/S{:05}.CNF"
    few, many = [used("--no-undo", "--solve-all", "side:1", damaged(bare(work / f"side{count}"), count, side))[0] for count in (400, 4000)]
    row("--solve-all side:1, 4,000 files, processor", "400 files", [many / few], 12)
    tree = damaged(sample(fresh(work / "corrupt"), "--files", 550, "--entries", 1000, "--experiments", 0), 500, "DBASE/BAD{:03}.DBS")
    once = used("--no-lock", tree)[0]
    limit("--solve-all corrupt:1 with 550,000 records, ms a file", (used("--no-undo", "--solve-all", "corrupt:1", tree)[0] - once) * 2, 5)
    known, tree = work / "known.list", damaged(bare(work / "known"), 18000, side)
    limit("memory of a problem, KB", steps("problems", tree, "-")["kilobytes"], 0.3)
    plain = calls("--no-lock", tree, which="newfstatat")
    used("--no-lock", "--write-known", known, tree)
    limit("--known with 18,000 problems, looks at each", (calls("--no-lock", "--known", known, tree, which="newfstatat") - plain) // 18000, 1)


def equal(tree, records):
    """A tree with so many entries of one key."""
    subprocess.run([PROGRAMS / "bench/bench_steps", "equal", bare(tree), str(records)], check=True)
    return tree


def measure_large(work):
    """What large reports and large saves take."""
    tree = equal(work / "equal", 100000)
    limit("--explain of 100,000 equal keys, looks at each of 100 files",
          (calls("--no-lock", "--explain", "duplicate:Database", tree, which="newfstatat")
           - calls("--no-lock", tree, which="newfstatat")) // 100, 1)
    limit("--all --report, a page of 60 MB, MB", used("--no-lock", "--all", "--quiet", "--report", work / "page.html",
                                                      work / "shuffled550")[1], 110)
    tree, undo = equal(work / "equal", 1000000), work / "equal.undo"
    limit("--preen --save of 1,000,000 keys, MB", used("--no-undo", "--preen", "--save", tree)[1], 300)
    limit("the same with its undo file, MB", used("--undo", undo, "--preen", "--save", equal(tree, 1000000))[1], 320)
    limit("its restore, MB", used("--restore", undo, tree)[1], 350)
    undo.unlink()
    fresh(tree)


def measure_undo_files(work):
    tree = damaged(bare(work / "undone"), 1, "seq/S{:05}.CNF")
    plain = instructions("txcheck", tree)
    used("--solve-all", "side:1", tree)
    one = next((work / "state").rglob("*.undo"))
    for number in range(2000):
        one.with_name(f"20200101-{number:06}.undo").write_bytes(one.read_bytes())
    row("a check beside 2,000 undo files, instructions", "with none", [instructions("txcheck", tree) / plain], 1.05)
    fresh(work / "state")


def cold(command):
    subprocess.run("sync; echo 3 >/proc/sys/vm/drop_caches", shell=True, check=True)
    return shell(command)


def measure_cold(work):
    """Where the caches of the machine can be emptied."""
    if not os.access("/proc/sys/vm/drop_caches", os.W_OK):
        return
    many = sample(work / "many", "--files", 3000, "--entries", 1, "--experiments", 3000, "--records", 1)
    for figure, tree in (("550 files of 57 MB", work / "shuffled550"), ("18,000 small files", many)):
        check, cat = f"{PROGRAMS}/txcheck --no-lock {tree}", CAT.format(tree=tree)
        compare(f"txcheck as a whole, {figure}, cold", "cat, cold, and itself, warm", lambda: cold(check),
                lambda: cold(cat) + shell(check), 1.3, 3)
    fresh(many)


def log_of(work, tree):
    """A file with the lines that a load of the tree logs."""
    directory = work / "lines"
    directory.mkdir(exist_ok=True)
    subprocess.run([PROGRAMS / "txcheck", "--no-lock", "--log", directory, tree], stdout=subprocess.DEVNULL, check=True)
    return (directory / "TXLOG.TXT").rename(directory / "lines")


def bare_log(work, lines):
    directory = fresh(work / "barelog")
    directory.mkdir()
    return steps("log", lines, directory, program="bench_bare")["log"]


def measure_log(work, tree):
    lines = log_of(work, tree)
    compare("log, a line a record", "open, write, close", lambda: steps("log", lines, work)["log"],
            lambda: bare_log(work, lines), 1.15)


def measure_check(work, tree, keys, label, goal):
    """The companion from start to exit, beside a database program that checks a file with the same keys."""
    file = work / "check.db"
    file.unlink(missing_ok=True)
    subprocess.run(["sqlite3", "-batch", file], text=True, check=True, stdout=subprocess.DEVNULL,
                   input=SQL_TABLE.format(keys=keys))
    compare(f"txcheck as a whole, {label}", "sqlite3 integrity_check",
            lambda: shell(f"{PROGRAMS}/txcheck --no-lock {tree}"),
            lambda: shell(f"sqlite3 {file} 'PRAGMA integrity_check'"), goal)


def measure_repairs(work):
    empty = work / "empty"
    (empty / "DBASE").mkdir(parents=True)
    small, large = [], []
    for _ in range(PAIRS):
        small.append(steps("repairs", empty, 50000))
        large.append(steps("repairs", empty, 500000))
    for step, figure in (("rename", "rename 500,000 duplicates"), ("create", "keys for 500,000 blank ones"),
                         ("add", "entries for 250,000 orphans")):
        row(figure, "a tenth of them", [b[step] / a[step] for a, b in zip(small, large)], 12)


def measure_writing(work):
    def tree():
        return sample(fresh(work / "save"), "--files", 1000, "--entries", 1000, "--experiments", 0, "--fields", 0)

    compare("save 1,000,000 changed keys in 1,000 files", "seek, write, fdatasync a file",
            lambda: steps("save", tree(), "-")["save"],
            lambda: steps("save", work / "save" / "DBASE", "-", program="bench_bare")["save"], 1.5, 3)
    compare("the same with its undo file, processor time", "the same loop",
            lambda: steps("save", tree(), "undo")["save-processor"],
            lambda: steps("save", work / "save" / "DBASE", "-", program="bench_bare")["save-processor"], 2, 3)

    # None is removed before the end: file systems pass over what was just given free, and take their time for it.
    def empty(name):
        root = pathlib.Path(tempfile.mkdtemp(dir=work, prefix=name))
        (root / "DBASE").mkdir()
        return root

    compare("make 3,000 new files", "make, write, fsync, link", lambda: steps("make", empty("make"), 3000)["make"],
            lambda: steps("make", empty("bare") / "DBASE", 3000, program="bench_bare")["make"], 2, 3)


def measure_window(work):
    for files, entries, problems in ((10, 100, 2000), (1000, 1000, 18000)):
        tree = sample(work / f"window{files}", "--files", files, "--entries", entries, "--types", 4, "--experiments", 1)
        found = {}
        for _ in range(3):
            done = subprocess.run([PROGRAMS / "bench/bench_repaint", tree, str(problems)], capture_output=True, text=True, check=True,
                                  env=dict(os.environ, XDG_RUNTIME_DIR=str(work)))
            for pane, whole, step in (line.split() for line in done.stdout.splitlines()[1:]):
                found.setdefault(f"{pane} whole", []).append(float(whole) / 1000 / FRAME)
                found.setdefault(f"{pane} one step", []).append(float(step) / 1000 / FRAME)
        for name, ratios in found.items():
            row(f"repaint {name}, {files * entries:,} keys, {problems:,} problems", "a frame at 60 Hz", ratios, 1)


def first_picture(work, surroundings):
    """The desktop tool from its start until its window has reached a display that nobody sees."""
    (work / "home/TXLOG.TXT").unlink(missing_ok=True)
    start = time.perf_counter()
    tool = subprocess.Popen([PROGRAMS / "txinspect"], stderr=subprocess.PIPE, env=surroundings, text=True)
    shown = any("Flushing" in line for line in tool.stderr)
    seconds = time.perf_counter() - start
    tool.kill()
    tool.communicate()
    if not shown or (work / "home/TXLOG.TXT").stat().st_size < 0.99 * (work / "lines/lines").stat().st_size:
        sys.exit("bench: txinspect has shown no window on the whole database")
    return seconds


def measure_start(work):
    tree = sample(work / "start", "--files", 550, "--entries", 1000, "--experiments", 0, "--home", work / "home", "--name", "Bench")
    surroundings = dict(os.environ, QT_QPA_PLATFORM="offscreen", QT_LOGGING_RULES="qt.widgets.painting=true",
                        QT_FORCE_STDERR_LOGGING="1", XDG_CONFIG_HOME=str(work / "config"))
    subprocess.run([PROGRAMS / "txstart", "--home", work / "home", "--database", "Bench"], check=True, env=surroundings,
                   stdout=subprocess.DEVNULL)
    lines = log_of(work, tree)
    compare("txinspect to its first picture, 550,000 records", "the bare log and txcheck",
            lambda: first_picture(work, surroundings),
            lambda: bare_log(work, lines) + shell(f"{PROGRAMS}/txcheck --no-lock {tree}"), 1.3, 5)


def measure_full(work, style):
    tree = sample(work / "full", "--files", 3000, "--entries", 1000, "--experiments", 3000, "--records", 1000,
                  "--types", 1, "--keys", style)
    costs = measure_tree(work, f"15,003,000 {style}", tree, 15003000, pairs=3)
    if style == "shuffled":
        compare("txcheck as a whole, 15,003,000 records", "cat", lambda: shell(f"{PROGRAMS}/txcheck --no-lock {tree}"),
                lambda: shell(CAT.format(tree=tree)), 4, 3)
    fresh(tree)
    return costs


def measure_memory(work):
    """18,000,000 distinct keys; no files could hold them, since a file of one of the classes holds one record."""
    found = {types: [steps("memory", work / "empty", types)["memory"] for _ in range(3)] for types in (5, 200)}
    row("memory of 18,000,000 keys, 5 types, GiB", "", found[5], 2.4)
    row("memory of 18,000,000 keys, 200 types", "5 types", [b / a for a, b in zip(found[5], found[200])], 1.05)


def picture(costs, path):
    """Microseconds of a record against the number of records."""
    points = [(160 + 90 * i, 220 - 150 * cost * 1e6, f"{records:,}", f"{cost * 1e6:.2f}")
              for i, (records, cost) in enumerate((records, statistics.median(each)) for records, each in costs.items())]
    line = " ".join(f"{x},{y:.0f}" for x, y, _, _ in points)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{points[-1][0] + 90}" height="270" font-family="sans-serif" font-size="12">',
             '<text x="10" y="20">Load and analysis: microseconds a record, by number of records</text>',
             f'<path d="M100 40V220H{points[-1][0] + 60}" fill="none" stroke="#888"/>',
             f'<polyline points="{line}" fill="none" stroke="#06c" stroke-width="2"/>']
    parts += [f'<circle cx="{x}" cy="{y:.0f}" r="3" fill="#06c"/><text x="{x}" y="{y - 10:.0f}" text-anchor="middle">{cost}</text>'
              f'<text x="{x}" y="240" text-anchor="middle">{records}</text>' for x, y, records, cost in points]
    path.write_text("\n".join(parts) + "\n</svg>\n")


def main():
    print(TABLE.format("figure", "beside", "ratio", "spread", "goal", ""), flush=True)
    costs = {}
    with tempfile.TemporaryDirectory() as directory:
        work = pathlib.Path(directory)
        os.environ["XDG_STATE_HOME"] = str(work / "state")
        for files in (55, 550):
            for style in STYLES:
                tree = sample(work / f"{style}{files}", "--files", files, "--entries", 1000, "--experiments", 0, "--keys", style)
                cost = measure_tree(work, f"{files},000 {style}", tree, files * 1000)
                if style == "shuffled":
                    costs[files * 1000] = cost
                    measure_check(work, tree, work / "keys", f"{files},000 records", 0.5 if files > 55 else 1)
        compare("start of txcheck", "that of txsample", lambda: shell(f"for i in {{1..50}}; do {PROGRAMS}/txcheck --version; done"),
                lambda: shell(f"for i in {{1..50}}; do {PROGRAMS}/txsample --version; done"), 1.15)
        measure_cold(work)
        measure_log(work, work / "shuffled55")
        measure_repairs(work)
        for measure in (measure_instructions, measure_processor, measure_files, measure_large, measure_undo_files):
            measure(work)
        measure_writing(work)
        measure_window(work)
        measure_start(work)
        if FULL:
            for style in STYLES:
                cost = measure_full(work, style)
                if style == "shuffled":
                    costs[15003000] = cost
            small = statistics.median(costs[55000])
            row("cost of a record, 15,003,000 records", "at 55,000", [cost / small for cost in costs[15003000]], 1.3)
            measure_memory(work)
    picture(costs, PROGRAMS / "cost.svg")
    print(f"bench: {sum(r[5] == 'met' for r in rows)} met, {sum(r[5] == 'not met' for r in rows)} not met, "
          f"{sum(r[5] == 'too noisy' for r in rows)} too noisy to judge; picture in {PROGRAMS}/cost.svg")


main()
