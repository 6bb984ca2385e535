#!/usr/bin/env python3
"""What went wrong once: programs on real file trees, each scene judged by what stands on the disk in the end.
Usage: scenes.py [--build DIR] [--case WORD]; some need root"""
import errno
import resource

from place import *

DELETE = ["--solve-all", "corrupt:1", "--solve-all", "side:1", "--solve-all", "empty:1"]
RENAME = ["--solve-all", "duplicate:2", "--save"]


def put(place, name, content, size=None):
    path = pathlib.Path(place.db, name)
    path.write_bytes(content)
    if size is not None:
        os.truncate(path, size)
    return path


def damage(path, at):
    content = path.read_bytes()
    path.write_bytes(content[:at] + bytes([content[at] ^ 1]) + content[at + 1:])


def limited(**sizes):
    """Where the sanitizers, which reserve terabytes, are built in, the address space is not limited."""
    watched = b"__asan_init" in (Place.programs / "txcheck").read_bytes()
    return lambda: [resource.setrlimit(getattr(resource, name), (size, size)) for name, size in sizes.items()
                    if not (watched and name == "RLIMIT_AS")]


def interrupted(place, at=2):
    """A save that was killed when it had written a part: the contents before, and those that it would have led to."""
    whole = place.copy(place.root + "-whole")
    judge(not whole.check(*RENAME).status & FAILED, "no save")
    place.check()
    before = place.contents()
    place.run("txcheck", *RENAME, place.db, calls={"ONLY": "^pwrite .*/db/.*/", "KILL": at})
    judge(place.contents() != before, "nothing was written")
    return before, whole.contents()


def is_finished(place, after, *words, **settings):
    """A check makes all of it new and leaves nothing at work."""
    status, _, said = place.check(*words, **settings)
    now = place.contents()
    judge("interrupted" in said and not status & FAILED, status, said)
    judge({name: now[name] for name in after if name != "open_db.txf"} == {
        name: content for name, content in after.items() if name != "open_db.txf"}, "not finished")
    judge(AT_WORK not in now, "left at work")


@case(("corrupted", "fprint/HUGE.DEF", b"no experiment", 3 << 30), ("empty", "seq/HUGE.DEF", oracle.counted(b"SEQ-DEF-v1.0"), 3 << 30))
def huge_files(place, _, name, content, size):
    """Three of 3 GB, most of it a hole, go and come back within 300 MB of memory."""
    paths = [put(place, name.replace("HUGE", f"HUGE{i}"), content, size) for i in range(3)]
    limit = limited(RLIMIT_AS=300 << 20)
    status, _, said = place.check(*DELETE, preexec_fn=limit)
    judge(not status & FAILED and not any(path.exists() for path in paths), status, said)
    judge(place.undo_files()[0].stat().st_size < 10 << 20, "holes are kept")
    place.restore(place.undo_files()[0], preexec_fn=limit)
    judge(all(path.stat().st_size == size and path.open("rb").read(len(content)) == content for path in paths), "not back")


@case(("listed and gone", r"^(open|openat) .*/DBASE/DBSF001\.DBS$", {"AT": 1, "ERROR": errno.ENOENT}),
      ("ends at once", r"^p?read .*/DBASE/DBSF001\.DBS$", {"END": 1}), ("half of the names", "^readdir .*/DBASE$", {"AT": 4}))
def half_seen(place, _, calls, how):
    """What was not read is neither empty nor corrupted, and nothing is made for its sake."""
    before = place.contents()
    status, document, said = place.check("--preen", *DELETE, "--save", calls={"ONLY": calls, **how})
    now = place.contents()
    judge(status & FAILED and document["unread"] and all(now[name] == before[name] for name in before), status, said)


@case()
def written_while_it_is_read(place):
    """A type that only the reading named that was not stable leaves nothing behind."""
    path = pathlib.Path(place.db, "seq/EXP001.DEF")
    name = next(kind["name"] for kind in place.check().document["types"] if kind["class"] == 3).encode()
    put(place, "../other", path.read_bytes().replace(name, name[::-1]))
    seen = place.check(calls={"ONLY": "^fstat .*/seq/EXP001.DEF$", "PAUSE": 2, "DO": f"cat @ROOT/other > {path}"}).document
    judge(path.read_bytes() == pathlib.Path(place.root, "other").read_bytes() and seen == place.check().document, seen["types"])


@case()
def sync_that_failed(place):
    """The next run has the disk keep what the first one wrote before it calls anything good."""
    status, _, said = place.check(*RENAME, calls={"ONLY": "^f(data)?sync .*/db/DBASE/", "FROM": 1})
    judge(status & FAILED, status, said)
    listed = [call for call in place.listed() if re.match("f(data)?sync .*/db/DBASE/", call)]
    judge(listed, "nothing was put on the disk")


@case(("^pwrite .*/db/.*/", {"SHORT": 2, "FROM": 3, "ERROR": errno.ENOSPC}))
def half_a_field(place, calls, how):
    """Half of a field is written, then there is no space: the next run makes it whole."""
    whole = place.copy(place.root + "-whole")
    place.check()
    before = place.contents()
    judge(place.check(*RENAME, calls={"ONLY": calls, **how}).status & FAILED, "no failure")
    whole.check(*RENAME)
    place.check()
    judge_contents(before, {**whole.contents(), "open_db.txf": b""}, place.contents())


@case()
def not_the_interrupted_one(place):
    """What was put back over a half saved database is judged as it stands, and not written."""
    shutil.copytree(place.db, place.root + "/backup")
    interrupted(place)
    subprocess.run(["cp", "-a", place.root + "/backup/.", place.db], check=True)
    before = place.contents()
    place.check()
    without = {"open_db.txf": b"", AT_WORK: b""}
    judge({**before, **without} == {**place.contents(), **without}, "the backup was written")


@case(("moved", "mv @ROOT/db @ROOT/moved"), ("copied", "cp -a @ROOT/db @ROOT/moved"))
def interrupted_and_elsewhere(place, _, command):
    _, after = interrupted(place)
    subprocess.run(["sh", "-c", command.replace("@ROOT", place.root)], check=True)
    place.db = place.root + "/moved"
    is_finished(place, after)


@case(("another person", lambda place: setattr(place, "state", place.root + "/nothing")),
      ("undo files away", lambda place: os.rename(place.state, place.root + "/away")),
      ("a damaged head", lambda place: damage(place.undo_files()[0], 0)),
      ("that of another change", lambda place: shutil.copy(Place(place.root + "-whole").undo_files()[0], place.undo_files()[0])),
      ("a damaged announcement", lambda place: damage(pathlib.Path(place.db, AT_WORK), 99)),
      ("its end damaged", lambda place: damage(path := pathlib.Path(place.db, AT_WORK), path.stat().st_size - 1)))
@case(("another owner, as of a copy", lambda place: os.chown(place.db, NOBODY, NOBODY)), needs_root=True)
def interrupted_and_not_to_be_finished(place, _, do):
    """Who can't finish it says so, judges and changes nothing; forgotten, it is taken as it stands."""
    interrupted(place)
    do(place)
    before = place.contents()
    status, document, said = place.check(*REPAIR)
    judge(status & FAILED and "can't be finished" in said and place.contents() == before, status, said)
    status, _, said = place.check("--forget-interrupted")
    before.pop(AT_WORK, None)
    judge(not status & FAILED and place.contents() == before, status, said)


@case()
def directory_away_while_finishing(place):
    _, after = interrupted(place)
    os.rename(place.db + "/DBASE", place.root + "/away")
    judge(place.check().status & FAILED, "finished without its files")
    os.rename(place.root + "/away", place.db + "/DBASE")
    is_finished(place, after)


@case((-1790000000,), (60 * 86400,))
def wrong_clock(place, seconds):
    """Undo files of a moment ago stay, whatever the clock says."""
    for i in range(11):
        key = place.check("--all").document["keys"][1]
        place.check("--rename", "hex:" + bytes_of(key, "key").hex(), f"key {i}", "--save", calls={"CLOCK": seconds if i == 5 else 0})
    place.check("--rename", "key 10", "key", "--save", calls={"CLOCK": 0})
    judge(len(place.undo_files()) == 12, len(place.undo_files()), "undo files")


@case()
def marker_removed_during_a_save(place):
    """A second run does not take the living one for interrupted."""
    place.check()
    before = place.contents()
    second = f"rm @ROOT/db/open_db.txf; {Place.programs}/txcheck --json @ROOT/db >@ROOT/second 2>&1; echo $? >@ROOT/status"
    place.check(*RENAME, calls={"ONLY": "^pwrite .*/db/.*/", "PAUSE": 1, "DO": second + "; cp -a @ROOT/db @ROOT/then"})
    then = contents(place.look(place.root + "/then"))
    judge(int(pathlib.Path(place.root, "status").read_text()) & FAILED, "the second run is content")
    judge(any(then[name] == before[name] for name in before if name.startswith("DBASE/DUPL")), "finished by the second run")


@case(needs_root=True)
def undo_file_of_somebody(place):
    place.check(*RENAME)
    after = place.contents()
    os.chown(place.undo_files()[0], NOBODY, NOBODY)
    status, _, said = place.check("--restore", place.undo_files()[0])
    judge(status & FAILED and place.contents() == after, status, said)


@case(needs_root=True)
def checked_by_root_first(place):
    """The owner is not locked out of what root has looked at."""
    give_away(place)
    place.check()
    status, _, said = place.check(*REPAIR, user=NOBODY)
    judge(status == CHANGED, status, said)


@case(needs_root=True)
def members_of_one_group(place):
    """What one makes under umask 022 the other can write."""
    for at, below, files in os.walk(place.db):
        for name in [".", *below, *files]:
            os.chown(os.path.join(at, name), 1001, NOBODY)
            os.chmod(os.path.join(at, name), 0o2775 if name in [".", *below] else 0o664)
    os.chmod(place.root, 0o777), os.chmod(place.state, 0o777)
    status, document, said = place.check("--solve-all", "orphan:2", "--save", preexec_fn=lambda: (
        os.umask(0o022), os.setgroups([]), os.setgid(NOBODY), os.setuid(1001)))
    made = [os.path.join(place.db, os.fsdecode(bytes_of(change, "made"))) for change in document["changes"] if "made" in change]
    judge(status & CHANGED and made and all(os.stat(path).st_mode & 0o20 for path in made), status, said)


@case(("a note", "user.note", b"m", 0o444), needs_root=True)
def rights_come_back(place, _, name, value, mode):
    """As an ordinary user: a file that nobody may write keeps its attributes through deletion and restore."""
    path = put(place, "fprint/BAD.DEF", b"no experiment")
    os.setxattr(path, name, value)
    os.chmod(path, mode)
    give_away(place)
    place.check(user=NOBODY)
    before = place.look()
    place.check(*DELETE, user=NOBODY)
    judge(not path.exists(), "not deleted")
    place.restore(place.undo_files()[0], user=NOBODY)
    judge(place.look() == before, differences(place.look(), before))


@case()
def killed_while_a_file_is_made(place):
    """On a file system without nameless files nothing of it stays for ever."""
    words = ["--solve-all", "orphan:2", "--save"]
    whole, made = place.copy(place.root + "-whole"), place.copy(place.root + "-listed").listed(*words)
    whole.check(*words)
    for number in range(1, sum("pwrite" in call for call in made) + 3):
        tried = place.copy(f"{place.root}-{number}")
        tried.run("txcheck", *words, tried.db, calls={"NAMED": 1, "ONLY": "^(pwrite|write|link|linkat|rename.*) ", "KILL": number})
        tried.check(*words, calls={"NAMED": 1})
        judge({*tried.contents()} == {*whole.contents()}, number, {*tried.contents()} ^ {*whole.contents()})


@case(("report", "--report"), ("known", "--write-known"))
def output_onto_what_is_kept(place, _, option):
    place.check(*RENAME)
    undo, link = place.undo_files()[0], os.path.join(place.root, "link")
    os.symlink(undo, link)
    content = undo.read_bytes()
    for path in (link, undo):
        status, _, said = place.check(option, path)
        judge(undo.read_bytes() == content and status & FAILED and said, "the undo file was written by", path)
    other = place.copy(place.root + "-other")
    place.run("txcheck", option, os.path.join(other.db, DUPLICATE), place.db, other.db)
    judge(other.contents()[DUPLICATE] == place.contents()[DUPLICATE], "another database was written")


@case(needs_root=True)
def no_right_to_write(place):
    """A data file that can be read and not written is left out by a solution, which does the rest and says so."""
    place.check()
    give_away(place)
    os.chmod(os.path.join(place.db, DUPLICATE), 0o444)
    status, document, said = place.check(*RENAME, user=NOBODY)
    judge(status & FAILED and document["solved"][0]["result"] == 0 and "can't be written" in said, status, said)


@case(("too large", 64 << 30, "64 MiB"), ("no memory", 60 << 20, "not enough memory|Line 1 "))
def too_much_is_known(place, _, size, told):
    known = put(place, "../known", b"", size)
    status, _, said = place.check("--known", known, preexec_fn=limited(RLIMIT_AS=200 << 20))
    judge(status & FAILED and re.search(told, said), status, said)


@case(("second name", os.link), ("link", os.symlink), ("other letters", shutil.copy))
def another_name_of_what_goes(place, _, make):
    """What was not read because of a file is looked at when that file has gone."""
    path = put(place, "fprint/BAD.DEF", b"no experiment")
    make(path, os.path.join(place.db, "fprint", "bad.def" if make is shutil.copy else "ZBAD.DEF"))
    document, after = place.check("--solve-all", "corrupt:1").document, place.check().document
    judge([problem["id"] for problem in document["problems"]] == [problem["id"] for problem in after["problems"]],
          document["problems"], after["problems"])


@case()
def plan_with_a_link_to_what_goes(place):
    put(place, "X.CMP", b"junk")
    os.symlink("X.CMP", os.path.join(place.db, "Y.CMP"))
    words = ["--solve-all", "side:1"]
    plan, done = place.check("--plan", *words).document, place.check(*words).document
    judge(plan["changes"] == done["changes"] and plan["problems"] == done["problems"], plan["changes"], done["changes"])


@case(("saved", RENAME), ("saved all the same", [*RENAME, "--yes"]), ("restored", ["--restore", "@UNDO", "--yes"]), ("finished", []))
def backup_of_hard_links(place, _, words):
    """What is written in place does not reach a second name outside of the database."""
    if not words:
        interrupted(place)
    elif "@UNDO" in words:
        place.check(*RENAME)
    subprocess.run(["cp", "-al", place.db, place.root + "/backup"], check=True)
    before = contents(place.look(place.root + "/backup"))
    status, _, said = place.check(*[place.undo_files()[0] if word == "@UNDO" else word for word in words])
    judge(status & FAILED and " names, " in said, status, said)
    judge(contents(place.look(place.root + "/backup")) == before, "the backup has changed")


@case()
def restore_beside_a_key_of_somebody(place):
    """A file that ended in its last key field is not cut off there again, where another key stands in it by now."""
    path = put(place, "DBASE/CUT.DBS", oracle.dbs([b"twin", b"twin"])[:-25])
    place.check(*RENAME)
    path.write_bytes(path.read_bytes()[:-FIELD] + oracle.field(b"of somebody"))
    status, _, said = place.check("--restore", place.undo_files()[0], "--yes")
    judge(status & FAILED and path.read_bytes().endswith(oracle.field(b"of somebody")), status, said)


@case()
def announcement_that_is_no_file(place):
    os.mkdir(os.path.join(place.db, AT_WORK))
    status, document, said = place.check(*REPAIR)
    judge(status == FAILED and document is None and "move it away" in said, status, said)


@case()
def restored_where_somebody_waits(place):
    """Who holds an empty file open under the name of what comes back gets nothing of it."""
    path = put(place, "fprint/BAD.DEF", b"no experiment")
    place.check(*DELETE)
    with put(place, "fprint/BAD.DEF", b"").open("rb") as held:
        place.restore(place.undo_files()[0])
        judge(path.read_bytes() and not held.read(), "handed out")


@case()
def restored_through_a_link(place):  # somebody has put it where the directory was, so the person has to name one
    place.check(*RENAME)
    os.symlink(shutil.move(place.db, place.root + "/moved"), place.db)
    judge(place.check("--restore", place.undo_files()[0], where="--no-progress").status == FAILED, "restored elsewhere")
    place.restore(place.undo_files()[0])


@case()
def cut_while_it_is_read(place):
    calls = {"ONLY": "^lseek .*/DUPL2.DBS$", "PAUSE": 1, "DO": "truncate -s -30 @ROOT/db/" + DUPLICATE}
    status, _, said = place.check(*REPAIR, calls=calls)
    judge(status & FAILED and "since it was read" in said, status, said)


@case()
def made_by_another_meanwhile(place):
    shutil.rmtree(os.path.join(place.db, "images"))
    calls = {"ONLY": "^mkdirat .*/images$", "PAUSE": 1, "DO": "mkdir @ROOT/db/images"}
    status, document, said = place.check("--preen", calls=calls)
    judge(status & FAILED and {"made": "images"} not in document["changes"], status, document["changes"], said)


@case()
def state_directory_full_while_finishing(place):
    _, after = interrupted(place)
    is_finished(place, after, calls={"ONLY": "^(pwrite|tmpfile|mkdirat|unlinkat) .*/state", "FROM": 1, "ERROR": errno.EROFS})


@case()
def some_have_gone(place):
    """Of twelve empty files another program has removed eight: that is what was asked for."""
    names = [f"seq/E{i:02}.DEF" for i in range(12)]
    for name in names:
        put(place, name, oracle.counted(b"SEQ-DEF-v1.0"))
    calls = {"ONLY": "^unlinkat .*/E03", "PAUSE": 1, "DO": "rm @ROOT/db/seq/E0[4-9].DEF @ROOT/db/seq/E1*.DEF"}
    status, document, said = place.check("--solve-all", "empty:1", calls=calls)
    judge(not status & FAILED and document["solved"][0]["result"] == 1, status, said)
    judge(not {*names} & {*place.contents()}, "still there")


@case()
def made_good_meanwhile(place):
    """What another program has put in the place of a damaged file stays."""
    path = put(place, "fprint/BAD.DEF", b"no experiment")
    status, _, said = place.check(*DELETE, calls={"ONLY": "^openat .*/BAD.DEF$", "PAUSE": 2, "DO": f"echo good > {path}"})
    listed = place.run("txcheck", "--undo-list").stdout.decode()
    judge(status & FAILED and path.read_bytes() == b"good\n" and "no undo files" in listed, status, said, listed)


@case()
def no_new_file(place):
    """One that can't be made at the save stands in the log."""
    calls = {"ONLY": "^linkat .*/DBSF003", "FROM": 1, "ERROR": errno.ENOSPC}
    status, _, said = place.check("--solve-all", "orphan:2", "--save", "--log", place.home, calls=calls)
    judge(status & FAILED and said, status, said)
    judge(b"Could not open file" in pathlib.Path(place.home, "TXLOG.TXT").read_bytes(), "not in the log")


@case(("names in other letters", "seq/{:b}.cnf", []), ("corrupted side files", "seq/S{}.CNF", ["--solve-all", "side:1"]),
      ("a directory that is touched", "DBASE/N{}.DBS", []))
def twice_as_many(place, _, form, words):
    """Twice as many names take twice as many calls, and not four times, whatever another program does meanwhile."""
    listed, touch = [], "cd $0; while touch other; do rm other; done"
    for count in (64, 128):
        tried = place.copy(f"{place.root}-{count}")
        for i in range(count):
            put(tried, form.format(i + count).translate(str.maketrans("01", "aA") if "b" in form else {}), b"junk")
        with subprocess.Popen(["sh", "-c", touch, os.path.join(tried.db, "DBASE")]) as other:
            listed.append(len(tried.listed(*words)))
            other.terminate()
    judge(listed[1] < 2.2 * listed[0], listed)


@case(("types", 201, 1), ("files", 3001, 0))
def key_beside_a_limit(place, _, count, other):
    """What lies beyond a limit keeps no key from being changed."""
    path, document = pathlib.Path(place.db, "seq/EXP001.DEF"), place.check("--all").document
    name = next(kind["name"] for kind in document["types"] if kind["class"] == 3).encode()
    for i in range(count):
        put(place, f"seq/N{i}.DEF", path.read_bytes().replace(name, b"%0*d" % (len(name), i * other)))
    key = next(key for key in document["keys"] if key["counts"][0])
    status, document, said = place.check("--change-key", "hex:" + bytes_of(key, "key").hex(), "0", "1", "another", "--save")
    judge(status & CHANGED and len(document["changes"]) == 1 and document["unread"], status, said)


@case()
def plain_file_in_place_of_a_directory(place):
    os.rename(os.path.join(place.db, "DBASE"), os.path.join(place.db, "dbase"))
    put(place, "DBASE", b"")
    status, _, said = place.check()
    judge(status & FAILED and "'DBASE' is no directory" in said and "in its place" not in said, status, said)


@case()
def settings_that_are_a_link(place):
    """What a link in place of the settings leads to is not written."""
    store, other = pathlib.Path(place.home, "txinspect/settings.json"), pathlib.Path(place.root, "other")
    place.run("txstart", "--home", place.home, "--database", "Tried")
    store.rename(other)
    store.symlink_to(other)
    before = other.read_bytes()
    done = place.run("txstart", "--home", place.home + "/.", "--database", "Tried")
    judge(store.is_symlink() and other.read_bytes() == before and done.returncode, done.returncode, done.stderr)


@case(("tmpfs", "mount -t tmpfs none db"), ("overlay", "mkdir up work && mount -t overlay -o lowerdir=home,upperdir=up,workdir=work none db"),
      ("bindfs", "mkdir below && bindfs below db"), ("fuse2fs", "mkfs.ext4 -q image && fuse2fs image db"),
      ("exfat", "mkfs.exfat image && it=$(losetup -f --show image) && mount.exfat-fuse $it db && losetup -d $it"),
      ("sshfs", "command -v sshfs && mkdir below && (socat tcp-listen:7722,bind=localhost exec:/usr/lib/openssh/sftp-server >log 2>&1 &) && sleep 1 && "
       "sshfs -o directport=7722 localhost:$PWD/below db"),
      ("ntfs", "mkfs.ntfs -F -Q image && ntfs-3g image db"), ("xfs", "mkfs.xfs -q image && mount -o loop image db"),
      ("btrfs", "mkfs.btrfs -q image && mount -o loop image db"), needs_root=True)
def file_system(place, name, command):
    """A save that is killed and finished, deletions and restores, on another one, which has to be on this machine."""
    put(place, "fprint/BAD.DEF", b"no experiment")
    os.rename(place.db, place.root + "/content")
    os.mkdir(place.db)
    put(place, "../image", b"", 400 << 20)
    if subprocess.run(["sh", "-c", command], cwd=place.root, capture_output=True).returncode:
        return print(f"left out, this machine can't mount it: {name}")
    try:
        subprocess.run(["cp", "-r", place.root + "/content/.", place.db], check=True)
        before, after = interrupted(place)
        is_finished(place, after)
        judge(not place.check(*DELETE).status & FAILED and not os.path.exists(place.db + "/fprint/BAD.DEF"), "not deleted")
        for undo in reversed(place.undo_files()):
            place.restore(undo)
        judge(place.contents() == before, differences(place.contents(), before))
    finally:
        subprocess.run(["umount", "-l", place.db], check=True)


sys.exit(try_cases())
