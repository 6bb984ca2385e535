#!/usr/bin/env python3
"""Sets txcheck before what is around it: things that are no files, files that may not be read or written, links that lead out,
another program between load and save, others who hold the database, file systems and limits that allow less, requests to end.
Usage: around.py [--build DIR] [--case WORD]; some cases need root"""
import errno
import fcntl
import resource
import signal
import socket
import time

from place import *

DBASE = "DBASE/DBSF001.DBS"


def holds_back(place, name, user=None, concerns=True):
    """Whatever stands under the name can't be read: it is named, and no repair touches anything that it may concern."""
    before = place.look()
    status, document, said = place.check(user=user)
    judge(status & FAILED and name in said and name in [thing["name"] for thing in document["unread"]], status, said)
    status, document, said = place.check(*REPAIR, "--solve-all", "empty:1", "--solve-all", "corrupt:1", user=user)
    judge(status & FAILED and (document["changes"] == []) == concerns, status, document["changes"], said)
    before.pop("."), before.pop("open_db.txf", None)
    now = place.look()
    judge(not concerns or all(now[key] == entry for key, entry in before.items()), "the tree was changed")


@case(("DBASE/GONE.DBS", "a link to nothing", lambda path: os.symlink("nowhere", path)),
      ("fprint/RING.DEF", "a link to itself", lambda path: os.symlink("RING.DEF", path)),
      ("DBASE/PIPE.DBS", "a pipe", os.mkfifo),
      ("seq/SOCK.DEF", "a socket", lambda path: socket.socket(socket.AF_UNIX).bind(path)))
def no_file(place, name, _, make):
    make(os.path.join(place.db, name))
    holds_back(place, name)


@case((DBASE, 0, True), ("fprint/EXP001.DEF", 0o200, True), ("seq/TYPE001.CNF", 0, False), ("DBASE", 0, True),
      ("fprint", 0o311, True), ("Library", 0, False), needs_root=True)
def not_readable(place, name, mode, concerns):
    give_away(place)
    os.chmod(os.path.join(place.db, name), mode)
    holds_back(place, name, NOBODY, concerns)
    os.chmod(os.path.join(place.db, name), 0o700)
    judge(place.check(*REPAIR, user=NOBODY).status == (CHANGED if concerns else 0), "repaired once it can be read")


@case()
def no_locks(place):
    """A file system that can't lock is a refusal."""
    before, calls = place.contents(), {"ONLY": "^fcntl ", "FROM": 1, "ERROR": errno.ENOLCK}
    status, document, said = place.check(*REPAIR, calls=calls)
    judge(status == FAILED and document is None and "Error code 50" in said and "can't be written or locked" in said, status, said)
    judge({**before, "open_db.txf": b""} == {**place.contents(), "open_db.txf": b""}, "changed")


@case(("open_db.txf", 0o444, "Ask its owner", False), ("images", 0, "Access is denied", True), (".", 0o311, "", False),
      (DUPLICATE, 0o444, f"{DUPLICATE}: it can't be written", True), needs_root=True)
def not_writable(place, name, mode, told, loaded):
    """What can't be written stays as it is, and the person is told."""
    place.check()
    give_away(place)
    os.chmod(os.path.join(place.db, name), mode)
    kept = place.contents()[name]
    status, document, said = place.check(*REPAIR, user=NOBODY)
    judge(status & FAILED and told.replace("@DB", place.db) in said and loaded == bool(document), status, said)
    judge(place.contents()[name] == kept, name, "was changed")


@case()
def led_out(place):
    """A data file that stands outside of the database is read, and not written."""
    path, outside = os.path.join(place.db, DUPLICATE), os.path.join(place.root, "outside.dbs")
    os.rename(path, outside)
    os.symlink(outside, path)
    content = pathlib.Path(outside).read_bytes()
    status, document, said = place.check(*REPAIR)
    judge(status & FAILED and DUPLICATE in said and pathlib.Path(outside).read_bytes() == content, status, said)


@case(("junk", "printf junk > @F"), ("gone", "rm @F"), ("another", "cp @O @F.x && mv @F.x @F"), ("link out", "ln -sf @O @F"),
      ("twin", "cp @O @DB/DBASE/DBSF003.DBS"), ("other letters", "cp @O @DB/DBASE/dbsf003.dbs"))
def another_program(place, _, command):
    """It asks for no lock and acts between load and save: what it did stays, nothing outside is written, and it is told."""
    path, outside = pathlib.Path(place.db, DUPLICATE), pathlib.Path(place.root, "outside.dbs")
    content = path.read_bytes()
    outside.write_bytes(content)
    command = command.replace("@F", str(path)).replace("@O", str(outside)).replace("@DB", place.db)
    ask = (r"^(open|openat) .*/DUPL2\.DBS$", 2) if "dbsf003" not in command.lower() else (r"^tmpfile .*/DBASE(/\.)?$", 1)
    noted = os.path.join(place.root, "noted")
    status, document, said = place.check(*REPAIR, calls={"ONLY": ask[0], "PAUSE": ask[1], "DO": f"{command}; cp -a @ROOT/db {noted}"})
    foreign, now = contents(place.look(noted)), place.contents()
    names = ["DBASE/DBSF003.DBS", "DBASE/dbsf003.dbs"] if ask[1] == 1 else [DUPLICATE]
    judge(all(now.get(name) == foreign.get(name) for name in names), "what the other program made was changed")
    judge(outside.read_bytes() == content, "written outside")
    judge(status & FAILED and document["saved"] == 0 and said, status, said)


@case()
def held_by_another(place):
    """Refused and not touched; of many at once one repairs."""
    log = pathlib.Path(place.home, "TXLOG.TXT")
    log.write_bytes(b"of the run before")
    with open(os.path.join(place.db, "open_db.txf"), "w") as marker:
        fcntl.fcntl(marker, fcntl.F_OFD_SETLK, struct.pack("hhqqi4x", fcntl.F_WRLCK, os.SEEK_SET, 0, 0, 0))
        before = place.look()
        status, document, said = place.check(*REPAIR, "--log", place.home)
        judge(status == FAILED and document is None and "Error code 32" in said and "The lock is" not in said and place.look() == before, status, said)
        judge(log.read_bytes() == b"of the run before" and place.check("--no-lock").status == LEFT, "the log has gone")
    with concurrent.futures.ThreadPoolExecutor(12) as pool:
        ends = list(pool.map(lambda _: place.check(*REPAIR), range(12)))
    judge([end.status for end in ends].count(CHANGED) == 1 and {end.status for end in ends} <= {0, CHANGED, FAILED}, ends)


@case((0,), (1,))
def small_files_only(place, blocks):
    """Under ulimit -f nothing can be written from there on: the run says so, and is not ended by the signal."""
    before = place.contents()
    limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (blocks * 512, blocks * 512))
    status, document, said = place.check(*REPAIR, preexec_fn=limit)
    judge(status & FAILED and document["saved"] == 0 and said, status, said)
    judge({**before, "open_db.txf": b""} == place.contents() and place.check(*REPAIR).status == CHANGED, "changed")


@case(("", {"NAMED": 1}), ("nor second ones", {"ONLY": "^(tmpfile|link|linkat|symlink|symlinkat) ", "FROM": 1, "ERROR": 1}))
def no_nameless_files(place, _, calls):
    """A file system that makes only files with names: nothing is left over, and all comes back."""
    place.check()
    shutil.rmtree(os.path.join(place.db, "images"))
    pathlib.Path(place.db, "seq/BAD.DEF").write_bytes(b"damaged")
    before = place.contents()
    status, document, said = place.check("--solve-all", "corrupt:1", *REPAIR, calls=calls)
    made = {change["made"] for change in document["changes"] if "made" in change}
    judge(status == CHANGED and {*place.contents()} ^ {*before} == {*made, "seq/BAD.DEF"}, status, said, {*place.contents()} ^ {*before})
    judge(os.listdir(place.state + "/txinspect") == [path.name for path in place.undo_files()], "left over beside undo files")
    place.restore(place.undo_files()[0], calls=calls)
    judge(place.contents() == before, "not brought back")


@case()
def no_state_directory(place):
    """Without a place for undo files nothing is changed; with one that is given the run goes on."""
    os.rmdir(place.state)
    pathlib.Path(place.state).touch()
    place.check()
    before, undo = place.contents(), os.path.join(place.root, "mine.undo")
    status, document, said = place.check(*REPAIR)
    judge(status & FAILED and place.contents() == before and place.state in said, status, said)
    status, document, said = place.check(*REPAIR, "--undo", undo)
    judge(status == CHANGED and document["saved"] == 1, status, said)
    judge(place.check("--restore", undo, "--no-undo").status == 0 and place.contents() == before, "not brought back")


@case()
def damaged_undo_file(place):
    """Neither a byte nor the end can be another: it is refused, and changes nothing."""
    place.check(*REPAIR)
    after, undo = place.look(), place.undo_files()[0]
    whole = undo.read_bytes()
    for at in range(0, len(whole), len(whole) // 60):
        for damaged in (whole[:at] + bytes([whole[at] ^ 1 << at % 8]) + whole[at + 1:], whole[:at]):
            undo.write_bytes(damaged)
            judge(place.check("--restore", undo).status == FAILED and place.look() == after, "taken at", at)
    undo.write_bytes(whole)
    place.restore(undo)


@case()
def undo_files_are_private_and_kept_for_a_time(place):
    """The last ten of a database stay, others go with 30 days, but not by a clock that is far ahead of the newest."""

    def one_more(i):
        key = place.check("--all").document["keys"][1]
        status, _, said = place.check("--rename", "hex:" + bytes_of(key, "key").hex(), f"key {i}", "--save")
        judge(status & CHANGED, status, said)
        return len(place.undo_files())

    judge([one_more(i) for i in range(12)] == [*range(1, 13)], "none is made, or one removed")
    modes = {stat.S_IMODE(path.stat().st_mode) for path in [*place.undo_files(), *place.undo_files()[0].parents[:1]]}
    judge(modes == {0o600, 0o700}, modes)
    for path in place.undo_files():
        path.rename(path.with_name("20010101" + path.name[8:]))
    judge([one_more(12), one_more(13)] == [13, 10], len(place.undo_files()), "are kept")


@case(*((sign, program) for sign in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP) for program in ("txcheck", "tests/desktopfaults")))
def asked_to_end(place, sign, program):
    """A request to end during a save waits for its end, and then takes effect."""
    place.run("txstart", "--home", place.home, "--database", "Tried")
    wanted = place.copy(place.root + "-whole")
    words = {"txcheck": ["--solve-all", "duplicate:2", "--save", place.db], "tests/desktopfaults": ["duplicate:2"] * 9 + ["save"]}
    judge(not wanted.run(program, *[word.replace(place.db, wanted.db) for word in words[program]]).returncode & FAILED, "failed")
    ask = {"ONLY": "^pwrite .*/db/", "PAUSE": 2, "DO": f"kill -{int(sign)} $PPID; sleep 0.05"}
    done = place.run(program, *words[program], calls=ask)
    told = program == "txcheck" and sign != signal.SIGHUP  # changed, something left, ended by the person
    judge(done.returncode == (37 if told else -sign), "ended with", done.returncode, done.stderr)
    judge(place.contents() == wanted.contents(), "the save did not come to its end")
    judge("interrupted" not in place.check().said, "taken for interrupted")


@case()
def ended_while_it_reads(place):
    ask = {"ONLY": "^openat .*/DBSF001", "PAUSE": 1, "DO": "kill -2 $PPID; sleep 0.05"}
    done = place.run("txcheck", place.db, calls=ask)
    judge(done.returncode == 32 and b"You have ended it" in done.stderr, done.returncode, done.stderr)


@case()
def all_calls_are_seen(place):
    """What the judges of the disk go by: the library sees each call that the kernel sees."""
    if shutil.which("strace") is None:
        return print("around: left out, there is no strace")
    place.check()
    other, names = place.copy(place.root + "-other"), "unlink|linkat|mkdir|pwrite|pread|read|fsync|fdatasync|ftruncate|fchmod|fchown"
    seen = collections.Counter(re.match("[a-z]+", call)[0] for call in place.listed(*REPAIR, "--solve-all", "side:1"))
    command = ["strace", "-f", "-y", "-o", place.root + "/strace", Place.programs / "txcheck", *REPAIR, "--solve-all", "side:1"]
    subprocess.run([*command, other.db], capture_output=True, env={**os.environ, "XDG_STATE_HOME": other.state})
    lines = [line.split(None, 1)[1] for line in open(place.root + "/strace", errors="replace") if other.root in line]
    kernel = collections.Counter(re.match("[a-z]+", line)[0] for line in lines if "exec" not in line)
    opens, states = [sum(seen[name] for name in words.split()) for words in ("open openat opendir tmpfile", "stat lstat fstat fstatat")]
    judge(all(kernel[name] == seen[name] for name in names.split("|")) and kernel["openat"] == opens and
          kernel["newfstatat"] + kernel["fstat"] >= states > 0, seen, kernel)


sys.exit(try_cases())
